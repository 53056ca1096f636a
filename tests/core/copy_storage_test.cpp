// Giving one list the primitive storage of another.
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

class CopyStorage : public RuntimeTest {};

TEST_F(CopyStorage, EveryKindIsCopiedWithItsNameAndElements) {
  for (const NamedKind& row : kNamedKinds) {
    Handle source = primitiveList(row.name, {1, 0, 1, 1});
    Handle target = object("ArrayList");
    copyPrimitiveListStorage(record(source), record(target));
    EXPECT_EQ(record(target).primitiveKind, row.kind());
    EXPECT_EQ(record(target).primitiveType.get(), row.name);
    EXPECT_EQ(record(target).primitive.elementSize, row.width);
    EXPECT_EQ(integersOf(record(target)), (std::vector<long long>{1, 0, 1, 1})) << row.name;
    EXPECT_EQ(integersOf(record(source)), (std::vector<long long>{1, 0, 1, 1})) << row.name;
    EXPECT_VALID_LIST(target);
    EXPECT_VALID_LIST(source);
  }
}

TEST_F(CopyStorage, DeclaredTypeIsTheSourcesElseItsPrimitiveType) {
  Handle source = primitiveList("UInt", {1});
  Handle target = object("ArrayList");
  record(target).elementType = internRuntimeTypeName("Animal");
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).elementType.get(), "UInt");

  record(source).elementType = internRuntimeTypeName("Long");
  Handle other = object("ArrayList");
  copyPrimitiveListStorage(record(source), record(other));
  EXPECT_EQ(record(other).elementType.get(), "Long");
  EXPECT_EQ(record(other).primitiveType.get(), "UInt");
}

TEST_F(CopyStorage, SourceWithoutPrimitiveStorageGivesNone) {
  Handle source = object("ArrayList");
  record(source).objectPushBack(nullptr);
  Handle target = primitiveList("Int", {1, 2});
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).primitiveKind, Kind::None);
  EXPECT_EQ(record(target).primitiveType.name, nullptr);
  EXPECT_EQ(record(target).elementType.name, nullptr);
  EXPECT_EQ(record(target).primitive.size, 0u);
  EXPECT_EQ(record(target).objects.size, 0u);
  EXPECT_VALID_LIST(target);
}

TEST_F(CopyStorage, FormerElementsOfTheTargetAreReplaced) {
  for (const char* former : {"Byte", "Int", "Char", "Double"}) {
    Handle source = primitiveList("Int", {7, -8});
    Handle target = primitiveList(former, {1, 2, 3, 4, 5});
    copyPrimitiveListStorage(record(source), record(target));
    EXPECT_EQ(integersOf(record(target)), (std::vector<long long>{7, -8})) << former;
    EXPECT_EQ(record(target).primitiveType.get(), "Int");
    EXPECT_VALID_LIST(target);
  }
}

TEST_F(CopyStorage, EmptySourceStillConfiguresTheTarget) {
  Handle source = primitiveList("Short");
  Handle target = primitiveList("Double", {1, 2});
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).primitiveKind, Kind::Short);
  EXPECT_EQ(record(target).primitive.elementSize, 2u);
  EXPECT_EQ(record(target).primitive.size, 0u);
  EXPECT_EQ(record(target).primitive.capacity, 64u);
  EXPECT_EQ(record(target).primitive.data, record(target).primitive.inlineBytes);
  EXPECT_VALID_LIST(target);
}

TEST_F(CopyStorage, TargetKeepsItsBlockWhenTheWidthIsTheSame) {
  Handle source = primitiveList("UInt", {1});
  Handle target = primitiveList("Int");
  record(target).primitive.reserve(100);
  unsigned char* const block = record(target).primitive.data;
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).primitive.data, block);
  EXPECT_EQ(record(target).primitive.capacity, 128u);
  EXPECT_EQ(integersOf(record(target)), std::vector<long long>{1});
}

TEST_F(CopyStorage, TargetGrowsByDoubling) {
  Handle source = primitiveList("Int");
  for (int i = 0; i < 100; ++i) primitiveListAppend(record(source), -i, -i);
  Handle target = object("ArrayList");
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).primitive.capacity, 128u);
  ASSERT_EQ(record(target).primitive.size, 100u);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(elementAt<std::int32_t>(record(target), i), -i);
  EXPECT_NE(record(target).primitive.data, record(source).primitive.data);
  EXPECT_VALID_LIST(target);
}

TEST_F(CopyStorage, CopiesAreIndependent) {
  Handle source = primitiveList("Int", {1, 2, 3});
  Handle target = object("ArrayList");
  copyPrimitiveListStorage(record(source), record(target));
  primitiveListWrite(record(target), 0, 50, 50);
  primitiveListEraseAt(record(source), 2);
  EXPECT_EQ(integersOf(record(source)), (std::vector<long long>{1, 2}));
  EXPECT_EQ(integersOf(record(target)), (std::vector<long long>{50, 2, 3}));
}

TEST_F(CopyStorage, ElementSizeIsForcedToTheSources) {
  Handle source = object("ArrayList");
  ListData& from = record(source);
  makePrimitive(from, "Int");
  from.primitive.resetToInline(8);
  from.primitive.size = 2;
  for (int i = 0; i < 16; ++i) from.primitive.data[i] = static_cast<unsigned char>(i + 1);
  Handle target = object("ArrayList");
  copyPrimitiveListStorage(from, record(target));
  EXPECT_EQ(record(target).primitive.elementSize, 8u);
  EXPECT_EQ(record(target).primitive.size, 2u);
  EXPECT_EQ(record(target).primitive.capacity, 16u);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(record(target).primitive.data[i], i + 1);
  clearListStorage(from);
  clearListStorage(record(target));
}

TEST_F(CopyStorage, ElementSizeZeroOfTheSourceCountsAsOne) {
  Handle source = primitiveList("Byte", {9, 8, 7});
  record(source).primitive.elementSize = 0;
  Handle target = primitiveList("Long", {1});
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).primitive.elementSize, 1u);
  EXPECT_EQ(integersOf(record(target)), (std::vector<long long>{9, 8, 7}));
  record(source).primitive.elementSize = 1;
}

TEST_F(CopyStorage, ObjectStorageOfTheTargetIsLeftAlone) {
  Handle source = primitiveList("Int", {1});
  Handle target = object("ArrayList");
  copyPrimitiveListStorage(record(source), record(target));
  EXPECT_EQ(record(target).objects.size, 0u);
  EXPECT_EQ(record(target).i64Mirror.size, 0u);
  EXPECT_FALSE(record(target).linked);
}

TEST_F(CopyStorage, FailedAllocationLeavesBothRecordsAsTheyWere) {
  Handle source = primitiveList("Long");
  for (int i = 0; i < 20; ++i) primitiveListAppend(record(source), i, i);
  const RecordSnapshot before(record(source));
  Handle target;
  const int failures = sweepAllocationFailures(
      [&] {
        target = primitiveList("Int", {1, 2});
      },
      [&] { copyPrimitiveListStorage(record(source), record(target)); },
      [&] {
        EXPECT_VALID_LIST(target);
        EXPECT_EQ(record(target).primitiveType.get(), "Int");
        EXPECT_EQ(integersOf(record(target)), (std::vector<long long>{1, 2}));
        EXPECT_EQ(RecordSnapshot(record(source)), before);
      });
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(record(target).primitive.size, 20u);
}

}  // namespace
}  // namespace vorn::tests
