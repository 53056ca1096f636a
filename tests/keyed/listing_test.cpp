// Listings keep their elements as adding them one by one would: unboxed where a list adopts the first one's type, and as
// the very handles where it does not.
#include "collections/core/port/objects.h"
#include "collections/core/storage/list_data.h"
#include "tests/keyed/keyed_cases.h"
#include "tests/support/lists.h"
#include "tests/support/values.h"

namespace vorn::tests {
namespace {

// What a list holds, and how.
struct Kept {
  explicit Kept(void* list) : kind(getListData(list)->primitiveKind), name(getListData(list)->primitiveType.get()) {
    const ListData& data = *getListData(list);
    for (std::uint64_t i = 0; i < data.logicalSize(); ++i) {
      if (data.isUnboxed()) {
        integers.push_back(vorn_collections_ArrayList_getInt(list, static_cast<long long>(i)));
      } else {
        handles.push_back(data.objects.data[i]);
      }
    }
  }
  bool operator==(const Kept&) const = default;

  ListData::PrimitiveKind kind;
  std::string_view name;
  std::vector<long long> integers;
  std::vector<void*> handles;
};

std::vector<std::vector<Handle>> rowsOfElements() {
  std::vector<std::vector<Handle>> rows;
  rows.reserve(20);  // rows are made from earlier ones
  for (std::size_t size : {1, 4, 5, 40}) {
    auto& numbers = rows.emplace_back();
    auto& texts = rows.emplace_back();
    auto& longs = rows.emplace_back();
    for (std::size_t i = 0; i < size; ++i) {
      numbers.push_back(number(static_cast<int>(i)));
      texts.push_back(string(std::to_string(i)));
      longs.push_back(integer("Long", static_cast<std::int64_t>(i)));
    }
    // Handles after which numbers stay boxes, the null handle among them.
    auto& textFirst = rows.emplace_back(texts);
    textFirst.insert(textFirst.end(), numbers.begin(), numbers.end());
    auto& nullFirst = rows.emplace_back(numbers);
    nullFirst.insert(nullFirst.begin(), Handle(nullptr));
  }
  return rows;
}

TEST_F(RuntimeTest, Listings_KeepTheirElementsAsAddingEachDoes) {
  for (const std::vector<Handle>& row : rowsOfElements()) {
    SCOPED_TRACE(row.size());
    const Handle added = object("ImmutableList");
    for (const Handle& element : row) vorn_collections_ArrayList_add(added, element);
    for (const char* type : kMapTypes) {
      const Handle map = object(type);
      int position = 0;
      for (const Handle& element : row) vorn_collections_Map_put(map, number(position++), element);
      const Handle values(vorn_collections_Map_values(map));
      EXPECT_EQ(Kept(values), Kept(added)) << type;
      const Handle keys(vorn_collections_Map_keys(map));
      EXPECT_EQ(Kept(keys).integers.size(), row.size()) << type;
      EXPECT_EQ(Kept(keys).name, "Int") << type;
    }
    for (const char* type : kSetTypes) {
      const Handle set = object(type);
      for (const Handle& element : row) vorn_collections_HashSet_add(set, element);
      const Handle once = object("ArrayList");
      for (void* element : elementsOfSet(set)) vorn_collections_ArrayList_add(once, element);
      const Handle items(vorn_collections_HashSet_items(set));
      EXPECT_EQ(Kept(items), Kept(once)) << type;
    }
  }
}

// The boxes that a list makes when a later element does not fit are its own, so that only their values are compared.
TEST_F(RuntimeTest, ListingOfNumbersAndThenTexts_IsBoxedAgain) {
  const Handle map = object("Map");
  for (int i = 0; i < 20; ++i) vorn_collections_Map_put(map, number(i), i < 15 ? number(i) : string("text"));
  const Handle values(vorn_collections_Map_values(map));
  const ListData& data = *getListData(values);
  EXPECT_FALSE(data.isUnboxed());
  ASSERT_EQ(data.objects.size, 20U);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(valueOf(data.objects.data[i]), i);
  EXPECT_EQ(std::string(vorn_string_text(data.objects.data[19])), "text");
}

// A class may bear the name Object; its objects need not have a value as boxes have it.
TEST_F(RuntimeTest, ItemsOfObjectsWhoseClassIsNamedObject_AreOfTheirType) {
  vorn_class_definition definition{};
  definition.name = "units.Object";
  defineClass(definition);
  const Handle map = object("Map");
  vorn_collections_Map_put(map, number(1), object("units.Object"));
  const Handle items(vorn_collections_Map_items(map));
  const Handle item(vorn_collections_ArrayList_operator_index(items, 0));
  EXPECT_NE(std::string(vorn_type_name(item)).find("Object"), std::string::npos) << vorn_type_name(item);
}

// Boxes of all types at the ends of all ranges, also such as their type has no value for, and what is no box.
std::vector<Handle> valuesOfAllSorts() {
  std::vector<Handle> values = {string("text"), Handle(nullptr), boolean(true), boolean(false)};
  for (const std::string& type : primitiveNames()) {
    if (type == "Boolean") continue;
    if (isFloatingName(type)) {
      for (const double value : {0.0, -0.0, 0.1, 1e300}) values.push_back(floating(type.c_str(), value));
      continue;
    }
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{127}, std::int64_t{128}, std::int64_t{0xD800},
          std::int64_t{0x110000}, std::int64_t{1} << 33, std::numeric_limits<std::int64_t>::min()}) {
      values.push_back(integer(type.c_str(), value));
    }
  }
  return values;
}

// The storage of a list, and for boxed and unboxed elements alike their types and values.
std::string contentOf(void* list) {
  std::string content = storageOf(list);
  for (long long i = 0; i < vorn_collections_ArrayList_size(list); ++i) {
    content += ' ' + describe(Handle(vorn_collections_ArrayList_operator_index(list, i)));
  }
  return content;
}

TEST_F(RuntimeTest, Listings_AnyBoxAfterAnyOther_AreWhatAddingEachGives) {
  const std::vector<Handle> all = valuesOfAllSorts();
  const Handle map = object("Map");
  for (const Handle& first : all) {
    for (const Handle& second : all) {
      const Handle row[] = {first, first, second, first};
      const Handle added = object("ImmutableList");
      for (int i = 0; i < 4; ++i) vorn_collections_Map_put(map, number(i), row[i]);
      for (const Handle& value : row) vorn_collections_ArrayList_add(added, value);
      const std::vector<std::string> errors = takeErrors();
      const Handle values(vorn_collections_Map_values(map));
      ASSERT_EQ(takeErrors(), errors) << describe(first) << ", " << describe(second);
      ASSERT_EQ(contentOf(values), contentOf(added)) << describe(first) << ", " << describe(second);
      ASSERT_EQ(collections::validateListData(*getListData(values)), "") << describe(first) << ", " << describe(second);
    }
  }
}

}  // namespace
}  // namespace vorn::tests
