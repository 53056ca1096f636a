// Leaving primitive storage: every element becomes a box, in order.
#include "collections/core/elements/storage_transitions.h"

#include <optional>

#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using Descriptions = std::vector<std::string>;

class Materialize : public RuntimeTest {};

TEST_F(Materialize, ObjectStorageStaysAsItIs) {
  for (const char* name : {"ArrayList", "LinkedList"}) {
    Handle target = object(name);
    record(target).objectPushBack(integer("Int", 1));
    record(target).i64Mirror.size = 1;
    const RecordSnapshot before(record(target));
    materializePrimitiveList(record(target));
    EXPECT_EQ(RecordSnapshot(record(target)), before);
    record(target).i64Mirror.size = 0;
  }
}

TEST_F(Materialize, EveryIntegerKindBoxesUnderItsName) {
  for (const NamedKind& row : kNamedKinds) {
    if (!row.isInteger()) continue;
    Handle target = primitiveList(row.name, {5, 0, 127});
    materializePrimitiveList(record(target));
    const std::string type = std::string("vorn.") + row.name;
    EXPECT_EQ(describeObjects(record(target)), (Descriptions{type + " 5", type + " 0", type + " 127"}));
    EXPECT_VALID_LIST(target);
  }
}

TEST_F(Materialize, SignedKindsKeepTheirSignAndUnsignedKindsTheirRange) {
  const std::pair<const char*, const char*> expected[] = {
      {"SByte", "vorn.SByte -1"},      {"Byte", "vorn.Byte 255"},  {"Short", "vorn.Short -1"},
      {"UShort", "vorn.UShort 65535"}, {"Int", "vorn.Int -1"},     {"UInt", "vorn.UInt 4294967295"},
      {"Long", "vorn.Long -1"},        {"ULong", "vorn.ULong -1"},
  };
  for (const auto& [name, description] : expected) {
    Handle target = primitiveList(name, {-1});
    materializePrimitiveList(record(target));
    EXPECT_EQ(describeObjects(record(target)), Descriptions{description});
  }
}

TEST_F(Materialize, FloatingKindsBoxTheirDoubles) {
  for (const char* name : {"Float", "Double"}) {
    Handle target = primitiveList(name);
    for (const double value : {1.5, -0.25, 1e10, kInfinity}) primitiveListAppend(record(target), 0, value);
    materializePrimitiveList(record(target));
    const std::string type = std::string("vorn.") + name;
    EXPECT_EQ(describeObjects(record(target)),
              (Descriptions{type + " 1.5", type + " -0.25", type + " 10000000000", type + " inf"}));
  }
}

TEST_F(Materialize, NaNAndNegativeZeroSurvive) {
  Handle target = primitiveList("Double");
  primitiveListAppend(record(target), 0, kNaN);
  primitiveListAppend(record(target), 0, -0.0);
  materializePrimitiveList(record(target));
  double value = 0;
  ASSERT_NE(vorn_unbox_floating(record(target).objects.data[0], &value), 0);
  EXPECT_TRUE(value != value);
  ASSERT_NE(vorn_unbox_floating(record(target).objects.data[1], &value), 0);
  EXPECT_EQ(describeValue(record(target).objects.data[1]), "vorn.Double -0");
}

TEST_F(Materialize, BooleansBecomeTheSharedBoxes) {
  for (const char* type : {"Boolean", ""}) {
    Handle target = primitiveList("Boolean", {1, 0, 1});
    record(target).primitiveType = internRuntimeTypeName(type);
    record(target).primitive.data[2] = 7;
    materializePrimitiveList(record(target));
    EXPECT_EQ(handlesOf(record(target)),
              (std::vector<void*>{vorn_box_boolean(true), vorn_box_boolean(false), vorn_box_boolean(true)}));
  }
}

TEST_F(Materialize, CharactersAndCodeUnitsBecomeCharacterObjects) {
  Handle characters = primitiveList("Char", {'a', 0x10FFFF});
  materializePrimitiveList(record(characters));
  EXPECT_EQ(describeObjects(record(characters)), (Descriptions{"vorn.Char 97", "vorn.Char 1114111"}));
  Handle units = primitiveList("CodeUnit", {'a', 0xD800});
  materializePrimitiveList(record(units));
  EXPECT_EQ(describeObjects(record(units)), (Descriptions{"vorn.CodeUnit 97", "vorn.CodeUnit 55296"}));
}

TEST_F(Materialize, EmptyPrimitiveTypeBoxesAsIntOrDouble) {
  for (const NamedKind& row : kNamedKinds) {
    if (row.is("Boolean")) continue;
    Handle target = primitiveList(row.name, {3});
    record(target).primitiveType = RuntimeTypeName();
    materializePrimitiveList(record(target));
    EXPECT_EQ(describeObjects(record(target)), Descriptions{row.isFloating() ? "vorn.Double 3" : "vorn.Int 3"})
        << row.name;
  }
}

TEST_F(Materialize, RecordIsResetExceptDeclaredTypeAndBuffer) {
  Handle target = primitiveList("Int");
  ListData& data = record(target);
  data.elementType = internRuntimeTypeName("Int");
  for (int i = 0; i < 40; ++i) primitiveListAppend(data, i, i);
  data.i64Mirror.size = 16;
  data.f64Mirror.size = 8;
  unsigned char* const bytes = data.primitive.data;
  materializePrimitiveList(data);
  EXPECT_EQ(data.primitiveKind, Kind::None);
  EXPECT_EQ(data.primitiveType.name, nullptr);
  EXPECT_EQ(data.primitive.size, 0u);
  EXPECT_EQ(data.primitive.data, bytes);
  EXPECT_EQ(data.primitive.capacity, 64u);
  EXPECT_EQ(data.primitive.elementSize, 4u);
  EXPECT_EQ(data.i64Mirror.size, 0u);
  EXPECT_EQ(data.f64Mirror.size, 0u);
  EXPECT_EQ(data.elementType.get(), "Int");
  EXPECT_EQ(data.logicalSize(), 40u);
  EXPECT_EQ(data.objects.capacity, 64u);
  for (std::uint64_t i = 0; i < 40; ++i) {
    EXPECT_EQ(describeValue(data.objects.data[i]), "vorn.Int " + std::to_string(i));
  }
  EXPECT_VALID_LIST(target);
}

TEST_F(Materialize, EmptyPrimitiveStorageBecomesEmptyObjectStorage) {
  Handle target = primitiveList("Char");
  materializePrimitiveList(record(target));
  EXPECT_EQ(record(target).primitiveKind, Kind::None);
  EXPECT_EQ(record(target).primitiveType.name, nullptr);
  EXPECT_EQ(record(target).logicalSize(), 0u);
  EXPECT_VALID_LIST(target);
}

TEST_F(Materialize, StaleHandlesInObjectStorageAreDropped) {
  Handle target = primitiveList("Int", {1, 2});
  for (int i = 0; i < 5; ++i) record(target).objectPushBack(integer("Long", 9));
  materializePrimitiveList(record(target));
  EXPECT_EQ(describeObjects(record(target)), (Descriptions{"vorn.Int 1", "vorn.Int 2"}));
  EXPECT_VALID_LIST(target);
}

TEST_F(Materialize, ALinkedRecordGetsNodes) {
  Handle target = object("LinkedList");
  ListData& data = record(target);
  data.objectPushBack(integer("Long", 9));
  makePrimitive(data, "Short");
  for (const int value : {-4, 5, 6}) primitiveListAppend(data, value, value);
  materializePrimitiveList(data);
  EXPECT_EQ(data.linkedObjects.count, 3u);
  EXPECT_EQ(data.objects.size, 0u);
  EXPECT_EQ(describeObjects(data), (Descriptions{"vorn.Short -4", "vorn.Short 5", "vorn.Short 6"}));
  EXPECT_VALID_LIST(target);
}

TEST_F(Materialize, ManyElementsSurviveCollections) {
  const int count = onStressHeap() ? 60 : 3000;
  Handle target = primitiveList("Long");
  for (int i = 0; i < count; ++i) primitiveListAppend(record(target), i * 1000003LL, 0);
  materializePrimitiveList(record(target));
  vorn_heap_collect();
  ASSERT_EQ(record(target).objects.size, static_cast<std::uint64_t>(count));
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(describeValue(record(target).objects.data[i]), "vorn.Long " + std::to_string(i * 1000003LL));
  }
  EXPECT_VALID_LIST(target);
}

// Fails every allocation in turn; after each failure the list must be what it was.
class MaterializeOutOfMemory : public Materialize, public ::testing::WithParamInterface<NamedKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, MaterializeOutOfMemory, ::testing::ValuesIn(kNamedKinds),
                         [](const auto& parameters) { return std::string(parameters.param.name); });

TEST_P(MaterializeOutOfMemory, LeavesTheListAsItWas) {
  Handle target;
  std::optional<RecordSnapshot> before;
  const int failures = sweepAllocationFailures(
      [&] {
        target = primitiveList(GetParam().name, {1, 0, 1, 1, 0, 0, 1, 0, 1});
        record(target).elementType = internRuntimeTypeName(GetParam().name);
        record(target).i64Mirror.size = 3;
        record(target).f64Mirror.size = 2;
        before.emplace(record(target));
      },
      [&] { materializePrimitiveList(record(target)); },
      [&] {
        EXPECT_EQ(RecordSnapshot(record(target)), *before);
        EXPECT_VALID_LIST(target);
        // The next attempt on the same list succeeds and finds nothing left over from the failed one.
        materializePrimitiveList(record(target));
        EXPECT_EQ(record(target).logicalSize(), 9u);
        EXPECT_VALID_LIST(target);
      });
  // One block of handles and one box for each element; Booleans share their boxes.
  EXPECT_EQ(failures, GetParam().is("Boolean") ? 1 : 10);
  EXPECT_EQ(record(target).primitiveKind, Kind::None);
  EXPECT_EQ(record(target).logicalSize(), 9u);
  EXPECT_VALID_LIST(target);
}

}  // namespace
}  // namespace vorn::tests
