// The data-buffer protocol where it refuses or fails: wrong storage, characters out of range and linked lists.
#include <climits>
#include <new>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/data_buffer_cases.h"
#include "tests/support/lists.h"

namespace vorn::tests {
namespace {

class DataBufferErrors : public RuntimeTest {};
class CommitErrors : public RuntimeTest, public ::testing::WithParamInterface<Commit> {};

INSTANTIATE_TEST_SUITE_P(Natives, CommitErrors, ::testing::ValuesIn(commits()),
                         [](const auto& param) { return std::string(param.param.name); });

// ---- Wrong storage --------------------------------------------------------------------------------------------------

TEST_P(CommitErrors, EveryUnboxedStorage_IsTakenOrRefusedWithTheListUnchanged) {
  for (const std::string& type : primitiveNames()) {
    for (const bool synchronised : {false, true}) {
      for (const long long n : {0LL, 1LL, 2LL, -1LL, LLONG_MIN}) {
        SCOPED_TRACE(type + " " + std::to_string(n));
        const Handle target = list(className(false, synchronised, type), {box(type, 1), box(type, 0)});
        ASSERT_EQ(storageOf(target), type);
        const Snapshot before(target);
        GetParam().call(target, n);
        if (takes(GetParam(), type)) {
          EXPECT_NOTHING_RAISED();
          EXPECT_EQ(vorn_collections_ArrayList_size(target), n > 0 ? n : 0);
          EXPECT_AT_REST(target);
        } else {
          EXPECT_RAISED(GetParam().error);
          EXPECT_UNTOUCHED(target, before);
        }
      }
    }
  }
}

TEST_P(CommitErrors, BoxedAndLinkedStorage_IsRefusedWithTheListUnchanged) {
  const Handle one = integer("Int", 1);
  const Handle half = floating("Double", 0.5);
  const Handle word = string("x");
  for (const Handle& target : {list("ArrayList"), list("ArrayList<Int>"), list("ArrayListSync<Double>"),
                               list("ArrayList", {one, half}), list("ArrayListSync", {word, nullptr}),
                               list("LinkedList"), list("LinkedList<Int>", {one}), list("LinkedListSync", {half})}) {
    for (const long long n : {0LL, 1LL, -1LL}) {
      const Snapshot before(target);
      GetParam().call(target, n);
      EXPECT_RAISED(GetParam().error);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_P(CommitErrors, NullList_DoesNothing) {
  for (const long long n : {-1LL, 0LL, 3LL}) GetParam().call(nullptr, n);
  EXPECT_NOTHING_RAISED();
}

TEST_P(CommitErrors, ImpossibleSize_ThrowsWithTheListUnchanged) {
  const std::string type = GetParam().integers ? "Int" : "Double";
  const Handle target = list("ArrayListSync<" + type + ">", {box(type, 1), box(type, 0)});
  const Snapshot before(target);
  EXPECT_ANY_THROW(GetParam().call(target, LLONG_MAX));
  EXPECT_UNTOUCHED(target, before);
}

TEST_P(CommitErrors, HeldLock_StopsAllButTheFastForms) {
  for (const std::string& type : primitiveNames()) {
    if (!takes(GetParam(), type)) continue;
    SCOPED_TRACE(type);
    const Handle target = list("ArrayListSync<" + type + ">", {box(type, 1), box(type, 1)});
    const Snapshot before(target);
    {
      const HeldMutex held(target);
      if (GetParam().fast) {
        EXPECT_NO_THROW(GetParam().call(target, 1));
      } else {
        try {
          GetParam().call(target, 1);
          ADD_FAILURE() << "did not lock";
        } catch (const std::system_error& error) {
          EXPECT_EQ(error.code().value(), EDEADLK);
        }
      }
    }
    if (GetParam().fast) {
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 1);
      EXPECT_AT_REST(target);
    } else {
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_P(CommitErrors, HeldLock_FastFormsRefuseAndGrowWithoutLocking) {
  if (!GetParam().fast) return;  // the others: see HeldLock_StopsAllButTheFastForms
  const Handle boxed = list("ArrayListSync", {string("x")});
  {
    const HeldMutex held(boxed);
    EXPECT_NO_THROW(GetParam().call(boxed, 1));
  }
  EXPECT_RAISED(GetParam().error);
  const std::string type = GetParam().integers ? "Long" : "Double";
  const Handle target = list("ArrayListSync<" + type + ">", {box(type, 1)});
  {
    const HeldMutex held(target);
    EXPECT_NO_THROW(GetParam().call(target, 50));
  }
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 50);
  EXPECT_EQ(getListData(target)->primitive.capacity, 64U);
  EXPECT_AT_REST(target);
}

TEST_P(CommitErrors, LockIsReleasedAfterARefusal) {
  const Handle target = list("ArrayListSync", {string("x")});
  GetParam().call(target, 1);
  EXPECT_RAISED(GetParam().error);
  EXPECT_TRUE(isUnlocked(target));
}

// ---- Characters out of range ----------------------------------------------------------------------------------------

struct Refused {
  const char* type;
  long long value;
  const char* error;
};

const std::vector<Refused>& refusedValues() {
  static const std::vector<Refused> values = {{"Char", 0xD800, kCharError},
                                              {"Char", 0xDFFF, kCharError},
                                              {"Char", 0x110000, kCharError},
                                              {"Char", -1, kCharError},
                                              {"Char", LLONG_MIN, kCharError},
                                              {"Char", 0x1'0000'0041LL, kCharError},
                                              {"CodeUnit", 0x10000, kCodeUnitError},
                                              {"CodeUnit", -1, kCodeUnitError},
                                              {"CodeUnit", LLONG_MAX, kCodeUnitError},
                                              {"CodeUnit", 0x1'0000'0041LL, kCodeUnitError}};
  return values;
}

TEST_F(DataBufferErrors, CharacterOutOfRange_IsRefusedWithTheElementsUnchanged) {
  for (const auto commit : {vorn_collections_ArrayList_commitPrimitiveI64DataSize,
                            vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast}) {
    for (const Refused& refused : refusedValues()) {
      for (const int position : {0, 1, 2}) {
        SCOPED_TRACE(std::string(refused.type) + " " + std::to_string(refused.value));
        const std::string type = refused.type;
        const Handle target = list("ArrayListSync<" + type + ">", {box(type, 'a'), box(type, 'b'), box(type, 'c')});
        vorn_collections_ArrayList_i64DataPtr(target)[position] = refused.value;
        const Snapshot before(target);
        commit(target, 3);
        EXPECT_RAISED(refused.error);
        EXPECT_UNTOUCHED(target, before);
        EXPECT_EQ(elementsOf(target), (Elements{type + " 97", type + " 98", type + " 99"}));
      }
    }
  }
}

TEST_F(DataBufferErrors, CharacterOutOfRange_AfterPrepare_LeavesTheListEmptyAndTyped) {
  for (const Refused& refused : refusedValues()) {
    const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
    long long* const data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 2, refused.type);
    data[0] = 'a';
    data[1] = refused.value;
    const Snapshot before(target);
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 2);
    EXPECT_RAISED(refused.error);
    EXPECT_UNTOUCHED(target, before);
    EXPECT_EQ(storageOf(target), refused.type);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
  }
}

TEST_F(DataBufferErrors, CharacterOutOfRange_BehindTheCommittedCount_DoesNotMatter) {
  for (const Refused& refused : refusedValues()) {
    const Handle target = object("ArrayList");
    long long* const data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 2, refused.type);
    data[0] = 'a';
    data[1] = refused.value;
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 1);
    EXPECT_EQ(elementsOf(target), (Elements{std::string(refused.type) + " 97"}));
  }
}

TEST_F(DataBufferErrors, CharactersAtTheEndsOfTheirRange_AreTaken) {
  const Handle target = object("ArrayList");
  const std::vector<long long> scalars = {0, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF};
  long long* data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 6, "Char");
  for (std::size_t i = 0; i < scalars.size(); ++i) data[i] = scalars[i];
  vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 6);
  EXPECT_EQ(elementsOf(target),
            (Elements{"Char 0", "Char 55295", "Char 57344", "Char 65535", "Char 65536", "Char 1114111"}));
  data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 3, "CodeUnit");
  data[0] = 0;
  data[1] = 0xD800;
  data[2] = 0xFFFF;
  vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(target, 3);
  EXPECT_EQ(elementsOf(target), (Elements{"CodeUnit 0", "CodeUnit 55296", "CodeUnit 65535"}));
}

TEST_F(DataBufferErrors, SameKindUnderAnotherName_TakesAnyValue) {
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, "UInt")[0] = 0xD800;
  vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 1);
  EXPECT_EQ(elementsOf(target), (Elements{"UInt 55296"}));
  vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, "UShort")[0] = 0x10005;
  vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 1);
  EXPECT_EQ(elementsOf(target), (Elements{"UShort 5"}));
}

// ---- New lists ------------------------------------------------------------------------------------------------------

TEST_F(DataBufferErrors, NewPrimitiveData_TypeThatIsNotPrimitive_RaisesAndGivesNothing) {
  for (const char* type : {"String", "vorn.String", "Object", "app.Item", "int", "Integer", "ArrayList<Int>"}) {
    SCOPED_TRACE(type);
    void* out = &out;
    EXPECT_EQ(vorn_collections_ArrayList_newPrimitiveData(3, type, &out), nullptr);
    EXPECT_EQ(out, nullptr);
    EXPECT_RAISED(kPrimitiveStorageError);
    out = &out;
    EXPECT_EQ(vorn_collections_ArrayListSync_newPrimitiveData(3, type, &out), nullptr);
    EXPECT_EQ(out, nullptr);
    EXPECT_RAISED(kPrimitiveStorageError);
  }
}

TEST_F(DataBufferErrors, NewData_ImpossibleSize_ThrowsWithANullList) {
  void* out = &out;
  EXPECT_ANY_THROW(vorn_collections_ArrayList_newPrimitiveData(LLONG_MAX, "Int", &out));
  EXPECT_EQ(out, nullptr);
  out = &out;
  EXPECT_ANY_THROW(vorn_collections_ArrayListSync_newPrimitiveData(LLONG_MAX, "Double", &out));
  EXPECT_EQ(out, nullptr);
  out = &out;
  EXPECT_ANY_THROW(vorn_collections_ArrayList_newPrimitiveI64Data(LLONG_MAX, "Int", &out));
  EXPECT_EQ(out, nullptr);
  out = &out;
  EXPECT_ANY_THROW(vorn_collections_ArrayList_newDoubleData(LLONG_MAX, "Double", &out));
  EXPECT_EQ(out, nullptr);
}

// ---- Linked lists ---------------------------------------------------------------------------------------------------

TEST_F(DataBufferErrors, LinkedList_IsEmptiedAndDeclared_AndTheCommitRaises) {
  for (const bool synchronised : {false, true}) {
    for (const Commit& commit : commits()) {
      SCOPED_TRACE(commit.name);
      const Handle target = list(className(true, synchronised), {string("x"), integer("Int", 1)});
      if (commit.integers) {
        long long* const data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 20, "Short");
        ASSERT_NE(data, nullptr);
        for (int i = 0; i < 20; ++i) data[i] = i;
        EXPECT_EQ(declaredTypeOf(target), "Short");
      } else {
        double* const data = vorn_collections_ArrayList_prepareDoubleData(target, 20, "Float");
        ASSERT_NE(data, nullptr);
        for (int i = 0; i < 20; ++i) data[i] = i;
        EXPECT_EQ(declaredTypeOf(target), "Float");
      }
      EXPECT_EQ(storageOf(target), "linked");
      EXPECT_EQ(kindOf(target), Kind::None);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
      EXPECT_AT_REST(target);
      const Snapshot before(target);
      commit.call(target, 20);
      EXPECT_RAISED(commit.error);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_F(DataBufferErrors, LinkedList_PrepareIntData_DeclaresInt) {
  const Handle target = list("LinkedList<Double>", {floating("Double", 0.5)});
  ASSERT_NE(vorn_collections_ArrayList_prepareIntData(target, 2), nullptr);
  EXPECT_EQ(declaredTypeOf(target), "Int");
  EXPECT_EQ(storageOf(target), "linked");
  vorn_collections_ArrayList_add(target, string("x"));
  EXPECT_RAISED(listTypeError("Int", "vorn.String"));
  vorn_collections_ArrayList_addInt(target, 4);
  EXPECT_EQ(elementsOf(target), (Elements{"Int 4"}));
  EXPECT_AT_REST(target);
}

}  // namespace
}  // namespace vorn::tests
