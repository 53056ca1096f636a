// Every indexed native at and around both ends of a list, for every storage, plain and synchronised, empty and not.
#include <algorithm>
#include <optional>
#include <set>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

enum class Fill { Fresh, Emptied, Cleared, Three };

struct IndexCase {
  std::string element;  // a primitive name, "app.Item", or "" for untyped and mixed
  bool linked;
  bool synchronised;
  Fill fill;

  [[nodiscard]] std::string name() const {
    const char* fills[] = {"Fresh", "Emptied", "Cleared", "Three"};
    return (element.empty()         ? std::string("Mixed")
            : element == "app.Item" ? std::string("Item")
                                    : element) +
           (linked ? "_Linked" : "_Array") + (synchronised ? "_Sync_" : "_") + fills[static_cast<int>(fill)];
  }
};

std::ostream& operator<<(std::ostream& out, const IndexCase& indexCase) { return out << indexCase.name(); }

std::vector<IndexCase> indexCases(std::initializer_list<std::string> moreElements) {
  std::vector<IndexCase> cases;
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), moreElements);
  for (const std::string& element : elements) {
    for (const bool linked : {false, true}) {
      for (const bool synchronised : {false, true}) {
        for (const Fill fill : {Fill::Fresh, Fill::Emptied, Fill::Cleared, Fill::Three}) {
          cases.push_back({element, linked, synchronised, fill});
        }
      }
    }
  }
  return cases;
}

class IndexRules : public RuntimeTest, public ::testing::WithParamInterface<IndexCase> {
 protected:
  void SetUp() override { palette_ = paletteOf(GetParam().element); }

  [[nodiscard]] const PaletteEntry& entry(std::size_t index) const { return palette_[index % palette_.size()]; }

  [[nodiscard]] Handle makeList() const {
    const IndexCase& param = GetParam();
    Handle result = object(className(param.linked, param.synchronised, param.element));
    if (param.fill == Fill::Fresh) return result;
    for (std::size_t i = 0; i < 3; ++i) vorn_collections_ArrayList_add(result, entry(i).value);
    if (param.fill == Fill::Cleared) vorn_collections_ArrayList_clear(result);
    for (int i = 0; param.fill == Fill::Emptied && i < 3; ++i) vorn_collections_ArrayList_removeAt(result, 0);
    return result;
  }

  [[nodiscard]] static long long size() { return GetParam().fill == Fill::Three ? 3 : 0; }

  [[nodiscard]] static std::set<long long> indexes() {
    return {LLONG_MIN, LLONG_MIN + 1, -size() - 1, -size(),       -1,       0, size() - 1,
            size(),    size() + 1,    UINT_MAX,    LLONG_MAX - 1, LLONG_MAX};
  }

  // The element that a checked index selects.
  [[nodiscard]] static std::optional<long long> selected(long long index) {
    const long long counted = index < 0 ? index + size() : index;
    return counted >= 0 && counted < size() ? std::optional(counted) : std::nullopt;
  }

  [[nodiscard]] Elements originalElements() const {
    Elements elements;
    for (long long i = 0; i < size(); ++i) elements.push_back(describe(entry(static_cast<std::size_t>(i)).value));
    return elements;
  }

  Palette palette_;
};

TEST_P(IndexRules, Reads) {
  const Handle target = makeList();
  const Snapshot before(target);
  for (const long long index : indexes()) {
    SCOPED_TRACE(index);
    const auto at = selected(index);
    const auto expectOutcome = [&] {
      EXPECT_EQ(takeErrors(), at ? Elements{} : Elements{kIndexError});
      EXPECT_UNTOUCHED(target, before);
    };
    const PaletteEntry* expected = at ? &entry(static_cast<std::size_t>(*at)) : nullptr;

    const Handle element = vorn_collections_ArrayList_operator_index(target, index);
    EXPECT_EQ(describe(element), expected != nullptr ? describe(expected->value) : "null");
    expectOutcome();
    EXPECT_EQ(vorn_collections_ArrayList_getInt(target, index), expected != nullptr ? expected->asInteger : 0);
    expectOutcome();
    EXPECT_EQ(vorn_collections_ArrayList_getIntFast(target, index), expected != nullptr ? expected->asInteger : 0);
    expectOutcome();
    EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(getListData(target), index),
              expected != nullptr ? expected->asInteger : 0);
    expectOutcome();
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, index), expected != nullptr ? expected->asDouble : 0.0);
    expectOutcome();
  }
}

TEST_P(IndexRules, RemoveAt) {
  for (const long long index : indexes()) {
    SCOPED_TRACE(index);
    const Handle target = makeList();
    const Snapshot before(target);
    vorn_collections_ArrayList_removeAt(target, index);
    if (const auto at = selected(index)) {
      Elements expected = originalElements();
      expected.erase(expected.begin() + *at);
      EXPECT_EQ(elementsOf(target), expected);
      EXPECT_AT_REST(target);
    } else {
      EXPECT_RAISED(kIndexError);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_P(IndexRules, AddAt_CountsFromTheStartOnly) {
  for (const long long index : indexes()) {
    SCOPED_TRACE(index);
    const Handle target = makeList();
    const Snapshot before(target);
    vorn_collections_ArrayList_addAt(target, index, entry(1).value);
    if (index >= 0 && index <= size()) {
      Elements expected = originalElements();
      expected.insert(expected.begin() + index, describe(entry(1).value));
      EXPECT_EQ(elementsOf(target), expected);
      EXPECT_AT_REST(target);
    } else {
      EXPECT_RAISED(kIndexError);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_P(IndexRules, IndexedWrite_AppendsAtTheSize) {
  for (const long long index : indexes()) {
    SCOPED_TRACE(index);
    const Handle target = makeList();
    const Snapshot before(target);
    vorn_collections_ArrayList_operator_index_eq(target, index, entry(1).value);
    Elements expected = originalElements();
    if (index == size()) {
      expected.push_back(describe(entry(1).value));
    } else if (const auto at = selected(index)) {
      expected[static_cast<std::size_t>(*at)] = describe(entry(1).value);
    } else {
      EXPECT_RAISED(kIndexError);
      EXPECT_UNTOUCHED(target, before);
      continue;
    }
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_AT_REST(target);
  }
}

// Lists that refuse some values.
class TypedIndexRules : public IndexRules {};

TEST_P(TypedIndexRules, BadIndexIsReportedBeforeARefusedValue) {
  const Handle target = makeList();
  const Handle refused = list("ArrayList");
  const Snapshot before(target);
  for (const long long index : indexes()) {
    SCOPED_TRACE(index);
    const bool insertable = index >= 0 && index <= size();
    const bool writable = index == size() || selected(index);
    const std::string typeError =
        listTypeError(GetParam().element == "app.Item" ? "Item" : GetParam().element, vorn_type_name(refused));
    vorn_collections_ArrayList_addAt(target, index, refused);
    EXPECT_RAISED(insertable ? typeError : kIndexError);
    EXPECT_UNTOUCHED(target, before);
    vorn_collections_ArrayList_operator_index_eq(target, index, refused);
    EXPECT_RAISED(writable ? typeError : kIndexError);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_P(IndexRules, SearchStartsOutsideTheListAreClamped) {
  const Handle target = makeList();
  const Snapshot before(target);
  const long long last = size() - 1;
  for (const long long start : indexes()) {
    SCOPED_TRACE(start);
    const auto find = [&](std::size_t wanted, bool backward) {
      return backward ? vorn_collections_ArrayList_lastIndexOf(target, entry(wanted).value, start)
                      : vorn_collections_ArrayList_indexOf(target, entry(wanted).value, start);
    };
    // The palette's first two values stand at 0 and 1; of two values only, the first stands at 2 again.
    const bool repeats = palette_.size() == 2;
    const auto expectedFirst = [&](long long position) {
      if (size() == 0) return -1LL;
      if (start <= position) return position;
      return position == 0 && repeats && start <= 2 ? 2LL : -1LL;
    };
    const auto expectedLast = [&](long long position) {
      if (size() == 0) return -1LL;
      const long long from = start < 0 || start >= size() ? last : start;
      if (position == 0 && repeats && from == 2) return 2LL;
      return position <= from ? position : -1LL;
    };
    EXPECT_EQ(find(0, false), expectedFirst(0));
    EXPECT_EQ(find(1, false), expectedFirst(1));
    EXPECT_EQ(find(0, true), expectedLast(0));
    EXPECT_EQ(find(1, true), expectedLast(1));
    EXPECT_UNTOUCHED(target, before);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryStorage, IndexRules, ::testing::ValuesIn(indexCases({"", "app.Item"})),
                         [](const auto& param) { return param.param.name(); });
INSTANTIATE_TEST_SUITE_P(EveryStorage, TypedIndexRules, ::testing::ValuesIn(indexCases({"app.Item"})),
                         [](const auto& param) { return param.param.name(); });

}  // namespace
}  // namespace vorn::tests
