// The data-buffer protocol on existing lists where it succeeds: prepare, write through the pointer, commit, and the
// data pointers.
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/data_buffer_cases.h"

namespace vorn::tests {
namespace {

// ---- Preparing an existing list -------------------------------------------------------------------------------------

TEST_F(DataBuffers, PrepareIntData_EmptiesAndTypesTheList) {
  const std::vector<Handle> targets = {list("ArrayList<Byte>", {integer("Byte", 3)}),
                                       list("ArrayList", {string("x"), nullptr, integer("Int", 1)}),
                                       list("ArrayListSync<Double>", {floating("Double", 0.5)}),
                                       list("ArrayList<app.Item>", {item(1)}), list("ArrayList<Int>")};
  for (const Handle& target : targets) {
    long long* const data = vorn_collections_ArrayList_prepareIntData(target, 3);
    EXPECT_EQ(data, getListData(target)->i64Mirror.data);
    expectTyped(target, "Int", Kind::Int, 0);
    expectMirrorsEmpty(target);
    data[0] = 1;
    data[1] = -1;
    data[2] = 0x1'0000'0005LL;
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
    vorn_collections_ArrayList_commitIntDataSize(target, 3);
    expectTyped(target, "Int", Kind::Int, 3);
    EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int -1", "Int 5"}));
  }
}

TEST_F(DataBuffers, PreparePrimitiveI64Data_EveryIntegerTypeAndBoolean) {
  for (const std::string& type : integerNames(true)) {
    for (const bool fast : {false, true}) {
      SCOPED_TRACE(type);
      const Handle target = list("ArrayList", {string("x"), string("y")});
      long long* const data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, 5, type.c_str());
      EXPECT_EQ(data, getListData(target)->i64Mirror.data);
      expectTyped(target, type, primitiveKindForType(type), 0);
      for (long long i = 0; i < 5; ++i) data[i] = (i + 1) % 2;
      (fast ? vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast
            : vorn_collections_ArrayList_commitPrimitiveI64DataSize)(target, 5);
      expectTyped(target, type, primitiveKindForType(type), 5);
      EXPECT_EQ(elementsOf(target), alternating(type, 5));
    }
  }
}

TEST_F(DataBuffers, PreparePrimitiveI64Data_OtherNamesAndNull) {
  const Handle target = list("ArrayList<Double>", {floating("Double", 1.5)});
  vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, nullptr);
  expectTyped(target, "Int", Kind::Int, 0);
  for (const char* type : {"Double", "Float", "String"}) {
    vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, type)[0] = LLONG_MIN;
    expectTyped(target, type, Kind::Long, 0);
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 1);
    expectTyped(target, type, Kind::Long, 1);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 0), LLONG_MIN);
  }
  vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, "vorn.UShort");
  expectTyped(target, "UShort", Kind::UShort, 0);
}

TEST_F(DataBuffers, PrepareDoubleData_FloatDoubleOtherNamesAndNull) {
  for (const bool fast : {false, true}) {
    const auto commit =
        fast ? vorn_collections_ArrayList_commitDoubleDataSizeFast : vorn_collections_ArrayList_commitDoubleDataSize;
    const Handle target = list("ArrayList", {string("x")});
    const std::vector<std::pair<const char*, std::string>> names = {{nullptr, "Double"},     {"Float", "Float"},
                                                                    {"vorn.Float", "Float"}, {"Double", "Double"},
                                                                    {"Int", "Int"},          {"String", "String"}};
    for (const auto& [name, expected] : names) {
      SCOPED_TRACE(expected);
      const Kind kind = expected == "Float" ? Kind::Float : Kind::Double;
      double* const data = vorn_collections_ArrayList_prepareDoubleData(target, 2, name);
      EXPECT_EQ(data, getListData(target)->f64Mirror.data);
      expectTyped(target, expected, kind, 0);
      data[0] = 0.1;
      data[1] = -2.75;
      commit(target, 2);
      expectTyped(target, expected, kind, 2);
      EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 0), kind == Kind::Float ? static_cast<double>(0.1F) : 0.1);
      EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 1), -2.75);
    }
  }
}

TEST_F(DataBuffers, Prepare_NegativeCount_IsZero) {
  for (const long long n : {-1LL, LLONG_MIN}) {
    const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
    EXPECT_EQ(vorn_collections_ArrayList_prepareIntData(target, n), getListData(target)->i64Mirror.data);
    expectTyped(target, "Int", Kind::Int, 0);
    EXPECT_NE(vorn_collections_ArrayList_preparePrimitiveI64Data(target, n, "Byte"), nullptr);
    expectTyped(target, "Byte", Kind::Byte, 0);
    EXPECT_NE(vorn_collections_ArrayList_prepareDoubleData(target, n, "Float"), nullptr);
    expectTyped(target, "Float", Kind::Float, 0);
  }
}

// ---- Committing -----------------------------------------------------------------------------------------------------

TEST_F(DataBuffers, Commit_NarrowsToTheLowBits) {
  const std::vector<std::pair<const char*, std::string>> cases = {
      {"SByte", "SByte -1"}, {"Byte", "Byte 255"},        {"Short", "Short -1"}, {"UShort", "UShort 65535"},
      {"Int", "Int -1"},     {"UInt", "UInt 4294967295"}, {"Long", "Long -1"},   {"Boolean", "Boolean 1"}};
  for (const auto& [type, expected] : cases) {
    const Handle target = object("ArrayList");
    vorn_collections_ArrayList_preparePrimitiveI64Data(target, 1, type)[0] = -1;
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 1);
    EXPECT_EQ(elementsOf(target), (Elements{expected}));
  }
}

TEST_F(DataBuffers, Commit_FewerThanPrepared_KeepsTheFirst) {
  const Handle target = object("ArrayList");
  long long* const integers = vorn_collections_ArrayList_prepareIntData(target, 5);
  for (int i = 0; i < 5; ++i) integers[i] = i + 1;
  vorn_collections_ArrayList_commitIntDataSize(target, 2);
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
  double* const doubles = vorn_collections_ArrayList_prepareDoubleData(target, 5, nullptr);
  for (int i = 0; i < 5; ++i) doubles[i] = i + 1.5;
  vorn_collections_ArrayList_commitDoubleDataSizeFast(target, 2);
  EXPECT_EQ(elementsOf(target), (Elements{"Double 1.5", "Double 2.5"}));
}

TEST_F(DataBuffers, Commit_MoreThanPrepared_KeepsWhatWasWrittenUpToTheOldCapacity) {
  using Commit = void (*)(void*, long long);
  for (const Commit commit : {Commit{vorn_collections_ArrayList_commitIntDataSize},
                              Commit{vorn_collections_ArrayList_commitPrimitiveI64DataSize},
                              Commit{vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast}}) {
    const Handle fresh = object("ArrayList");
    long long* const integers = vorn_collections_ArrayList_prepareIntData(fresh, 10);
    for (int i = 0; i < 16; ++i) integers[i] = i + 1;
    commit(fresh, 40);
    expectTyped(fresh, "Int", Kind::Int, 40);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(fresh, i), i + 1);
    EXPECT_EQ(getListData(fresh)->i64Mirror.capacity, 64U);
  }
  for (const Commit commit : {Commit{vorn_collections_ArrayList_commitDoubleDataSize},
                              Commit{vorn_collections_ArrayList_commitDoubleDataSizeFast}}) {
    const Handle fresh = object("ArrayList");
    double* const doubles = vorn_collections_ArrayList_prepareDoubleData(fresh, 5, "Double");
    for (int i = 0; i < 8; ++i) doubles[i] = i + 0.5;
    commit(fresh, 20);
    expectTyped(fresh, "Double", Kind::Double, 20);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(vorn_collections_ArrayList_getDouble(fresh, i), i + 0.5);
    EXPECT_EQ(getListData(fresh)->f64Mirror.capacity, 32U);
  }
}

TEST_F(DataBuffers, CommitIntDataSize_OnAnyIntegerList_MakesItAnIntList) {
  for (const std::string& type : integerNames(false)) {
    SCOPED_TRACE(type);
    const Handle target = object("ArrayList");
    vorn_collections_ArrayList_preparePrimitiveI64Data(target, 2, type.c_str())[0] = -7;
    getListData(target)->i64Mirror.data[1] = 0xD800;  // an Int like any other, whatever the list was
    vorn_collections_ArrayList_commitIntDataSize(target, 2);
    expectTyped(target, "Int", Kind::Int, 2);
    EXPECT_EQ(elementsOf(target), (Elements{"Int -7", "Int 55296"}));
  }
}

TEST_F(DataBuffers, Commit_NegativeSize_EmptiesTheList) {
  using Commit = void (*)(void*, long long);
  const auto expectEmptied = [](const char* type, Commit commit) {
    for (const long long n : {0LL, -1LL, LLONG_MIN}) {
      SCOPED_TRACE(type);
      const Handle target = list("ArrayList", {box(type, 1), box(type, 0)});
      commit(target, n);
      expectTyped(target, type, primitiveKindForType(type), 0);
      expectMirrorsEmpty(target);
    }
  };
  expectEmptied("Int", vorn_collections_ArrayList_commitIntDataSize);
  for (const char* type : {"Byte", "Char", "ULong", "Boolean"}) {
    expectEmptied(type, vorn_collections_ArrayList_commitPrimitiveI64DataSize);
    expectEmptied(type, vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast);
  }
  for (const char* type : {"Float", "Double"}) {
    expectEmptied(type, vorn_collections_ArrayList_commitDoubleDataSize);
    expectEmptied(type, vorn_collections_ArrayList_commitDoubleDataSizeFast);
  }
}

TEST_F(DataBuffers, CommitPrimitiveDataSize_NegativeSize_EmptiesTheList) {
  for (const auto commit :
       {vorn_collections_ArrayList_commitPrimitiveDataSize, vorn_collections_ArrayList_commitPrimitiveDataSizeFast}) {
    for (const std::string& type : primitiveNames()) {
      for (const long long n : {0LL, -1LL, LLONG_MIN}) {
        const Handle target = list("ArrayList<" + type + ">", {box(type, 1), box(type, 0)});
        commit(target, n);
        expectTyped(target, type, primitiveKindForType(type), 0);
      }
    }
  }
}

TEST_F(DataBuffers, CommitPrimitiveDataSize_SetsTheCountOfElementsWrittenDirectly) {
  for (const auto commit :
       {vorn_collections_ArrayList_commitPrimitiveDataSize, vorn_collections_ArrayList_commitPrimitiveDataSizeFast}) {
    for (const std::string& type : primitiveNames()) {
      SCOPED_TRACE(type);
      void* out = nullptr;
      void* const data = vorn_collections_ArrayList_newPrimitiveData(12, type.c_str(), &out);
      const Handle made = out;
      writeRaw(data, kindOf(made), 12);
      commit(made, 5);
      expectTyped(made, type, primitiveKindForType(type), 5);
      EXPECT_EQ(elementsOf(made), alternating(type, 5));
      EXPECT_EQ(vorn_collections_ArrayList_primitiveDataPtr(made), data);
    }
  }
}

TEST_F(DataBuffers, CommitPrimitiveDataSize_PastTheCapacity_DoublesAndKeepsTheElements) {
  for (const auto commit :
       {vorn_collections_ArrayList_commitPrimitiveDataSize, vorn_collections_ArrayList_commitPrimitiveDataSizeFast}) {
    void* out = nullptr;
    void* const data = vorn_collections_ArrayList_newPrimitiveData(10, "Int", &out);
    const Handle made = out;
    writeRaw(data, Kind::Int, 10);
    commit(made, 33);
    EXPECT_EQ(getListData(made)->primitive.capacity, 64U);
    EXPECT_EQ(vorn_collections_ArrayList_size(made), 33);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(made, i), (i + 1) % 2);
    commit(made, 200);
    EXPECT_EQ(getListData(made)->primitive.capacity, 256U);
    EXPECT_EQ(vorn_collections_ArrayList_size(made), 200);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(made, i), (i + 1) % 2);
    EXPECT_AT_REST(made);
  }
}

TEST_F(DataBuffers, LargeBuffers_RoundTrip) {
  if (onStressHeap()) return;  // every element read makes a box, and each box a collection
  constexpr long long kCount = 5000;
  const Handle target = object("ArrayList");
  long long* const data = vorn_collections_ArrayList_preparePrimitiveI64Data(target, kCount, "Long");
  for (long long i = 0; i < kCount; ++i) data[i] = i * i * 1'000'000'007LL;
  vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(target, kCount);
  long long* const copy = vorn_collections_ArrayList_i64DataPtr(target);
  for (long long i = 0; i < kCount; ++i) ASSERT_EQ(copy[i], i * i * 1'000'000'007LL);
  EXPECT_AT_REST(target);
}

// ---- Data pointers --------------------------------------------------------------------------------------------------

TEST_F(DataBuffers, I64DataPtr_WidensEveryIntegerTypeAndBoolean) {
  for (const std::string& type : integerNames(true)) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(type);
      const Handle target = object(className(false, synchronised, type));
      const Palette palette = paletteOf(type);
      for (const PaletteEntry& entry : palette) vorn_collections_ArrayList_add(target, entry.value);
      ASSERT_EQ(storageOf(target), type);
      const Snapshot before(target);
      long long* const data = vorn_collections_ArrayList_i64DataPtr(target);
      ASSERT_NE(data, nullptr);
      EXPECT_EQ(data, getListData(target)->i64Mirror.data);
      EXPECT_EQ(getListData(target)->i64Mirror.size, palette.size());
      for (std::size_t i = 0; i < palette.size(); ++i) EXPECT_EQ(data[i], palette[i].asInteger);
      EXPECT_EQ(vorn_collections_ArrayList_f64DataPtr(target), nullptr);
      data[0] = 99;  // a copy: the list does not see it
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_F(DataBuffers, I64DataPtr_ULongAboveTheSignedRange_KeepsItsBits) {
  const Handle target = object("ArrayList<ULong>");
  vorn_collections_ArrayList_addPrimitiveI64(target, LLONG_MIN, "ULong");
  ASSERT_EQ(storageOf(target), "ULong");
  EXPECT_EQ(vorn_collections_ArrayList_i64DataPtr(target)[0], LLONG_MIN);
}

TEST_F(DataBuffers, I64DataPtr_AnyNonZeroBooleanByteIsOne) {
  void* out = nullptr;
  auto* const bytes = static_cast<unsigned char*>(vorn_collections_ArrayList_newPrimitiveData(3, "Boolean", &out));
  const Handle made = out;
  bytes[0] = 7;
  bytes[1] = 0;
  bytes[2] = 255;
  const long long* const data = vorn_collections_ArrayList_i64DataPtr(made);
  EXPECT_EQ(data[0], 1);
  EXPECT_EQ(data[1], 0);
  EXPECT_EQ(data[2], 1);
}

TEST_F(DataBuffers, F64DataPtr_WidensFloatAndCopiesDouble) {
  for (const std::string type : {"Float", "Double"}) {
    const Handle target = object("ArrayList<" + type + ">");
    vorn_collections_ArrayList_add(target, floating(type.c_str(), 0.1));
    vorn_collections_ArrayList_add(target, floating(type.c_str(), -2.5));
    ASSERT_EQ(storageOf(target), type);
    const Snapshot before(target);
    double* const data = vorn_collections_ArrayList_f64DataPtr(target);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data, getListData(target)->f64Mirror.data);
    EXPECT_EQ(getListData(target)->f64Mirror.size, 2U);
    EXPECT_EQ(data[0], type == "Float" ? static_cast<double>(0.1F) : 0.1);
    EXPECT_EQ(data[1], -2.5);
    EXPECT_EQ(vorn_collections_ArrayList_i64DataPtr(target), nullptr);
    data[0] = 99.0;  // a copy: the list does not see it
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(DataBuffers, DataPtr_GrowsTheMirrorToTheCount) {
  const Handle integers = object("ArrayList");
  const Handle doubles = object("ArrayList");
  for (int i = 0; i < 17; ++i) {
    vorn_collections_ArrayList_addInt(integers, i);
    vorn_collections_ArrayList_addPrimitiveDouble(doubles, i + 0.5, "Double");
  }
  const long long* const wide = vorn_collections_ArrayList_i64DataPtr(integers);
  EXPECT_EQ(getListData(integers)->i64Mirror.capacity, 32U);
  const double* const real = vorn_collections_ArrayList_f64DataPtr(doubles);
  EXPECT_EQ(getListData(doubles)->f64Mirror.capacity, 32U);
  for (int i = 0; i < 17; ++i) {
    EXPECT_EQ(wide[i], i);
    EXPECT_EQ(real[i], i + 0.5);
  }
}

TEST_F(DataBuffers, DataPtr_RefreshesFromTheListEachTime) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2)});
  vorn_collections_ArrayList_i64DataPtr(target)[0] = 99;
  vorn_collections_ArrayList_addInt(target, 3);
  const long long* const data = vorn_collections_ArrayList_i64DataPtr(target);
  EXPECT_EQ(getListData(target)->i64Mirror.size, 3U);
  EXPECT_EQ(std::vector<long long>(data, data + 3), (std::vector<long long>{1, 2, 3}));
}

TEST_F(DataBuffers, PrimitiveDataPtr_IsTheBufferItself) {
  for (const std::string& type : primitiveNames()) {
    const Handle target = list("ArrayList<" + type + ">", {box(type, 0), box(type, 0)});
    void* const data = vorn_collections_ArrayList_primitiveDataPtr(target);
    EXPECT_EQ(data, getListData(target)->primitive.data);
    writeRaw(data, kindOf(target), 2);
    EXPECT_EQ(elementsOf(target), alternating(type, 2));
    EXPECT_AT_REST(target);
  }
}

TEST_F(DataBuffers, PrimitiveDataPtr_RecordOfAnotherWidthThanItsKinds_GetsThatWidthFirst) {
  const Handle target = vorn_collections_ArrayList_intLiteral0();
  SmallPrimitiveBuffer& buffer = getListData(target)->primitive;
  buffer.resetToInline(1);
  EXPECT_EQ(vorn_collections_ArrayList_primitiveDataPtr(target), buffer.data);
  EXPECT_EQ(buffer.elementSize, 4U);
  EXPECT_EQ(buffer.capacity, 32U);
  EXPECT_AT_REST(target);
}

TEST_F(DataBuffers, DataPtr_EmptyUnboxedLists_GivePointers) {
  const Handle integers = vorn_collections_ArrayList_intLiteral0();
  EXPECT_NE(vorn_collections_ArrayList_i64DataPtr(integers), nullptr);
  EXPECT_NE(vorn_collections_ArrayList_primitiveDataPtr(integers), nullptr);
  const Handle doubles = vorn_collections_ArrayListSync_primitiveLiteral0("Double");
  EXPECT_NE(vorn_collections_ArrayList_f64DataPtr(doubles), nullptr);
  EXPECT_NE(vorn_collections_ArrayList_primitiveDataPtr(doubles), nullptr);
}

TEST_F(DataBuffers, DataPtr_BoxedAndLinkedLists_GiveNull) {
  const Handle one = integer("Int", 1);
  for (const Handle& target : {list("ArrayList", {one, string("x")}), list("ArrayListSync", {string("x")}),
                               list("LinkedList<Int>", {one, one}), list("LinkedListSync", {one}), list("ArrayList"),
                               list("ArrayList<Int>"), list("LinkedList")}) {
    const Snapshot before(target);
    EXPECT_EQ(vorn_collections_ArrayList_i64DataPtr(target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_f64DataPtr(target), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_primitiveDataPtr(target), nullptr);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(DataBuffers, DataHandle_IsTheRecord) {
  for (const char* type : {"ArrayList", "ArrayListSync<Int>", "LinkedList", "LinkedListSync<Double>"}) {
    const Handle target = object(type);
    ListData* const record = vorn_collections_ArrayList_dataHandle(target);
    EXPECT_EQ(record, getListData(target)) << type;
    vorn_collections_ArrayList_addIntToData(record, 5);
    EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(record, -1), 5);
  }
}

}  // namespace
}  // namespace vorn::tests
