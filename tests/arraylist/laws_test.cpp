// The laws of a list, whatever its storage: one suite over every primitive type unboxed, boxed and linked, over a user
// class and over mixed values, each plain and synchronised, against a model of palette positions.
#include <algorithm>
#include <random>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

enum class Shape { Unboxed, Boxed, Linked };

struct LawCase {
  std::string element;
  Shape shape;
  bool synchronised;

  [[nodiscard]] std::string name() const {
    std::string result = element.empty() ? "Mixed" : element == "app.Item" ? "Item" : element;
    result += shape == Shape::Unboxed ? "_Unboxed" : shape == Shape::Boxed ? "_Boxed" : "_Linked";
    return result + (synchronised ? "_Sync" : "");
  }
};

std::ostream& operator<<(std::ostream& out, const LawCase& lawCase) { return out << lawCase.name(); }

std::vector<LawCase> lawCases() {
  std::vector<LawCase> cases;
  for (const bool synchronised : {false, true}) {
    for (const std::string& element : primitiveNames()) {
      for (const Shape shape : {Shape::Unboxed, Shape::Boxed, Shape::Linked}) {
        cases.push_back({element, shape, synchronised});
      }
    }
    for (const std::string& element : {std::string(), std::string("app.Item")}) {
      for (const Shape shape : {Shape::Boxed, Shape::Linked}) cases.push_back({element, shape, synchronised});
    }
  }
  return cases;
}

class ListLaws : public RuntimeTest, public ::testing::WithParamInterface<LawCase> {
 protected:
  void SetUp() override {
    palette_ = paletteOf(GetParam().element);
    list_ = object(className(GetParam().shape == Shape::Linked, GetParam().synchronised, GetParam().element));
    ASSERT_NE(list_.get(), nullptr);
  }

  [[nodiscard]] long long size() const { return static_cast<long long>(model_.size()); }
  [[nodiscard]] void* value(std::size_t paletteIndex) const { return palette_[paletteIndex % palette_.size()].value; }
  [[nodiscard]] std::size_t wrap(std::size_t paletteIndex) const { return paletteIndex % palette_.size(); }

  // The changes, each made to the list and to the model and then checked.
  void add(std::size_t paletteIndex) {
    vorn_collections_ArrayList_add(list_, value(paletteIndex));
    model_.push_back(wrap(paletteIndex));
    check();
  }
  void addAt(long long index, std::size_t paletteIndex) {
    vorn_collections_ArrayList_addAt(list_, index, value(paletteIndex));
    model_.insert(model_.begin() + index, wrap(paletteIndex));
    check();
  }
  void set(long long index, std::size_t paletteIndex) {
    vorn_collections_ArrayList_operator_index_eq(list_, index, value(paletteIndex));
    if (index == size()) {
      model_.push_back(wrap(paletteIndex));
    } else {
      model_[static_cast<std::size_t>(index < 0 ? index + size() : index)] = wrap(paletteIndex);
    }
    check();
  }
  void removeAt(long long index) {
    vorn_collections_ArrayList_removeAt(list_, index);
    model_.erase(model_.begin() + (index < 0 ? index + size() : index));
    check();
  }
  void remove(std::size_t paletteIndex) {
    const auto found = std::find(model_.begin(), model_.end(), wrap(paletteIndex));
    EXPECT_EQ(vorn_collections_ArrayList_remove(list_, value(paletteIndex)), found != model_.end());
    if (found != model_.end()) model_.erase(found);
    check();
  }
  void clear() {
    vorn_collections_ArrayList_clear(list_);
    model_.clear();
    check();
  }
  void fill(std::initializer_list<std::size_t> paletteIndexes) {
    for (const std::size_t index : paletteIndexes) add(index);
  }

  // Sizes, unboxed reads, storage and the record; no boxes are made.
  void check() {
    if (GetParam().shape == Shape::Boxed && !model_.empty()) {
      vorn_collections_ArrayList_operator_in(list_, nullptr);  // a foreign value turns the list into boxed storage
    }
    EXPECT_AT_REST(list_);
    EXPECT_EQ(vorn_collections_ArrayList_size(list_), size());
    EXPECT_EQ(vorn_collections_ArrayList_sizeFast(list_), size());
    for (long long i = 0; i < size(); ++i) {
      const PaletteEntry& expected = palette_[model_[static_cast<std::size_t>(i)]];
      for (const long long index : {i, i - size()}) {
        const long long whole = vorn_collections_ArrayList_getInt(list_, index);
        EXPECT_EQ(takeErrors(), expected.value.get() == nullptr ? Elements{kIntItemError} : Elements{});
        EXPECT_EQ(whole, expected.asInteger) << "at " << index;
        const double real = vorn_collections_ArrayList_getDouble(list_, index);
        EXPECT_EQ(takeErrors(), expected.value.get() == nullptr ? Elements{kFloatingItemError} : Elements{});
        EXPECT_EQ(real, expected.asDouble) << "at " << index;
      }
      if (expected.value.get() == nullptr) continue;
      EXPECT_EQ(vorn_collections_ArrayList_getIntFast(list_, i), expected.asInteger);
      EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(getListData(list_), i), expected.asInteger);
    }
    if (model_.empty()) return;
    EXPECT_EQ(kindOf(list_) != ListData::PrimitiveKind::None, GetParam().shape == Shape::Unboxed);
    EXPECT_EQ(getListData(list_)->linked, GetParam().shape == Shape::Linked);
  }

  // The elements as handles: type and value of each, and the handle itself where the list keeps handles as given.
  void checkElements() {
    Elements expected;
    for (const std::size_t index : model_) expected.push_back(describe(palette_[index].value));
    EXPECT_EQ(elementsOf(list_), expected);
  }

  void checkSearches(std::size_t paletteIndex) {
    const std::size_t wanted = wrap(paletteIndex);
    const auto occurrences = std::count(model_.begin(), model_.end(), wanted);
    EXPECT_EQ(vorn_collections_ArrayList_count(list_, value(wanted)), occurrences);
    EXPECT_EQ(vorn_collections_ArrayList_operator_in(list_, value(wanted)), occurrences > 0);
    for (long long start = -2; start <= size() + 1; ++start) {
      long long first = -1;
      long long last = -1;
      for (long long i = 0; i < size(); ++i) {
        if (model_[static_cast<std::size_t>(i)] != wanted) continue;
        if (first < 0 && i >= start) first = i;
        if (start < 0 || i <= start) last = i;
      }
      EXPECT_EQ(vorn_collections_ArrayList_indexOf(list_, value(wanted), start), first) << "from " << start;
      EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(list_, value(wanted), start), last) << "from " << start;
    }
    EXPECT_AT_REST(list_);
  }

  Palette palette_;
  Handle list_;
  std::vector<std::size_t> model_;
};

TEST_P(ListLaws, AppendedElementsStandInOrder) {
  fill({0, 1, 2, 3, 4, 0, 1, 5, 6, 7});
  checkElements();
}

TEST_P(ListLaws, AddAt_EveryPosition_MovesTheRestUp) {
  for (long long position = 0; position <= 5; ++position) {
    fill({0, 1, 2, 3, 4});
    addAt(position, 1);
    checkElements();
    clear();
  }
}

TEST_P(ListLaws, AddAt_BuildsAListFromEmpty) {
  for (std::size_t i = 0; i < 7; ++i) addAt(static_cast<long long>(i / 2), i);
  checkElements();
}

TEST_P(ListLaws, RemoveAt_EveryPosition_MovesTheRestDown) {
  for (long long position = -5; position < 5; ++position) {
    fill({0, 1, 2, 3, 4});
    removeAt(position);
    checkElements();
    clear();
  }
}

TEST_P(ListLaws, IndexedWrite_EveryPosition_ReplacesOneElement) {
  fill({0, 1, 2, 3, 4});
  for (long long position = -5; position < 5; ++position) {
    set(position, static_cast<std::size_t>(position + 7));
    checkElements();
  }
}

TEST_P(ListLaws, IndexedWrite_AtTheSize_Appends) {
  for (std::size_t i = 0; i < 6; ++i) set(size(), i);
  checkElements();
}

TEST_P(ListLaws, SearchesFindEveryOccurrenceFromEveryStart) {
  for (std::size_t wanted = 0; wanted < palette_.size(); ++wanted) checkSearches(wanted);
  fill({0, 1, 2, 0, 3, 1, 1});
  for (std::size_t wanted = 0; wanted < palette_.size(); ++wanted) checkSearches(wanted);
}

TEST_P(ListLaws, Remove_TakesTheFirstOccurrenceOnly) {
  fill({1, 0, 1, 2, 1, 0});
  for (int i = 0; i < 4; ++i) {
    remove(1);
    checkElements();
  }
  remove(0);
  remove(0);
  remove(0);
  checkElements();
}

TEST_P(ListLaws, ElementsSurviveGrowth) {
  // Past the inline capacity of every storage, then down to nothing from both ends.
  const std::size_t count = onStressHeap() ? 36 : 300;
  for (std::size_t i = 0; i < count; ++i) {
    vorn_collections_ArrayList_add(list_, value(i));
    model_.push_back(wrap(i));
  }
  check();
  checkElements();
  while (model_.size() > 3) {
    vorn_collections_ArrayList_removeAt(list_, model_.size() % 2 == 0 ? 0 : -1);
    model_.erase(model_.size() % 2 == 0 ? model_.begin() : model_.end() - 1);
  }
  check();
  checkElements();
}

TEST_P(ListLaws, ClearedListIsReusable) {
  fill({0, 1, 2, 3, 4});
  clear();
  fill({4, 3, 2});
  checkElements();
  clear();
  addAt(0, 1);
  set(1, 2);
  checkElements();
}

TEST_P(ListLaws, RandomChanges_MatchTheModel) {
  std::mt19937 random(20240517);
  const auto pick = [&random](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
  const int steps = onStressHeap() ? 60 : 400;
  for (int step = 0; step < steps && !HasFailure(); ++step) {
    const auto length = model_.size();
    switch (length > 12 ? 7 : pick(12)) {
      case 0:
      case 1:
      case 2:
        add(pick(8));
        break;
      case 3:
      case 4:
        addAt(static_cast<long long>(pick(length + 1)), pick(8));
        break;
      case 5:
        set(static_cast<long long>(pick(length + 1)), pick(8));
        break;
      case 6:
        if (length > 0) set(-1 - static_cast<long long>(pick(length)), pick(8));
        break;
      case 7:
        if (length > 0) removeAt(static_cast<long long>(pick(length)));
        break;
      case 8:
        if (length > 0) removeAt(-1 - static_cast<long long>(pick(length)));
        break;
      case 9:
        remove(pick(8));
        break;
      case 10:
        checkSearches(pick(8));
        break;
      default:
        if (pick(6) == 0) clear();
        break;
    }
    if (step % 8 == 0) checkElements();
  }
  checkElements();
}

INSTANTIATE_TEST_SUITE_P(EveryStorage, ListLaws, ::testing::ValuesIn(lawCases()),
                         [](const auto& param) { return param.param.name(); });

}  // namespace
}  // namespace vorn::tests
