// Which ranges and iterators the collections are, and that algorithms work on them.
#include <algorithm>
#include <forward_list>
#include <iterator>
#include <list>
#include <map>
#include <numeric>
#include <ranges>
#include <sstream>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tests/cpp_api/cpp_api_test.h"

namespace vorn::tests {
namespace {

using std::ranges::forward_range;
using std::ranges::input_range;
using std::ranges::random_access_range;
using std::ranges::sized_range;

template <class R>
concept IndexedRange = random_access_range<R> && random_access_range<const R> && sized_range<R> &&
    std::ranges::common_range<R> && !std::ranges::contiguous_range<R>;

static_assert(IndexedRange<list<int>>);
static_assert(IndexedRange<list<bool>>);
static_assert(IndexedRange<list<std::string>>);
static_assert(IndexedRange<list<value>>);
static_assert(IndexedRange<list<list<int>>>);
static_assert(IndexedRange<list<double, synchronized>>);
static_assert(IndexedRange<immutable_list<int>>);
static_assert(IndexedRange<array<char32_t>>);
static_assert(IndexedRange<array<std::string, synchronized>>);

// Elements may be assigned through what is not const, sorted, and swapped.
template <class T>
concept WritableRange = std::sortable<std::ranges::iterator_t<T>> && std::permutable<std::ranges::iterator_t<T>> &&
    std::ranges::output_range<T, typename T::value_type> && !std::ranges::output_range<const T, typename T::value_type>;
static_assert(WritableRange<list<int>>);
static_assert(WritableRange<list<bool>>);
static_assert(WritableRange<list<std::string>>);
static_assert(WritableRange<list<float, synchronized>>);
static_assert(WritableRange<array<double>>);
static_assert(WritableRange<array<std::string>>);
static_assert(!std::ranges::output_range<immutable_list<int>, int>);
static_assert(std::convertible_to<list<int>::iterator, list<int>::const_iterator>);
static_assert(!std::convertible_to<list<int>::const_iterator, list<int>::iterator>);

// What has no index is walked once for each begin(): another one is another listing.
template <class R>
concept ListedRange = input_range<R> && input_range<const R> && !forward_range<R> && sized_range<R>;
static_assert(ListedRange<linked_list<int>>);
static_assert(ListedRange<linked_list<std::string, synchronized>>);
static_assert(ListedRange<map<std::string, int>>);
static_assert(ListedRange<map<int, int, synchronized>>);
static_assert(ListedRange<sorted_map<double, value>>);
static_assert(ListedRange<set<int>>);
static_assert(ListedRange<set<std::string, synchronized>>);
static_assert(std::same_as<std::ranges::range_value_t<map<std::string, int>>, std::pair<std::string, int>>);

// What is no element, and what would be narrowed, is refused when compiled.
static_assert(!element<char> && !element<wchar_t> && !element<char8_t> && !element<long double> && !element<void*>);
static_assert(!std::constructible_from<list<int>, std::vector<long>&>);
static_assert(!std::constructible_from<list<int>, std::vector<double>&>);
static_assert(!std::constructible_from<list<std::string>, std::vector<int>&>);
static_assert(std::constructible_from<list<long>, std::vector<int>&>);
static_assert(!std::constructible_from<map<int, int>, std::vector<int>&>);
// Only unboxed elements have a span, and only without a lock.
template <class T>
concept HasSpan = requires(T& xs) {
  xs.span();
};
static_assert(HasSpan<list<int>> && HasSpan<const immutable_list<double>> && HasSpan<array<bool>>);
static_assert(!HasSpan<list<std::string>> && !HasSpan<linked_list<int>> && !HasSpan<list<int, synchronized>>);
static_assert(!HasSpan<array<std::string>> && !HasSpan<array<int, synchronized>>);
template <class T>
concept HasPushBack = requires(T& xs) {
  xs.push_back(1);
};
static_assert(HasPushBack<list<int>> && !HasPushBack<immutable_list<int>> && !HasPushBack<const list<int>>);

// Numbers that can be read once.
struct Reader {
  std::istringstream text;
  std::istream_iterator<double> begin() { return std::istream_iterator<double>(text); }
  std::istream_iterator<double> end() { return {}; }
};
static_assert(input_range<Reader> && !forward_range<Reader>);

class CppRanges : public CppApi {};

TEST_F(CppRanges, IteratorsAreIndexes) {
  list<int> xs{10, 20, 30};
  auto at = xs.begin();
  EXPECT_EQ(*at++, 10);
  EXPECT_EQ(*at, 20);
  EXPECT_EQ(at[1], 30);
  EXPECT_EQ(*--at, 10);
  EXPECT_EQ(xs.end() - xs.begin(), 3);
  EXPECT_EQ(*(2 + xs.begin()), 30);
  EXPECT_TRUE(xs.begin() < xs.end());
  const list<int>::const_iterator reader = xs.begin() + 1;
  xs[1] = 21;
  EXPECT_EQ(*reader, 21);
  *at = 11;
  EXPECT_EQ(xs.to_vector(), (std::vector<int>{11, 21, 30}));
}

TEST_F(CppRanges, AlgorithmsReadAndWriteThroughReferences) {
  list<std::string> texts{"pear", "apple", "fig"};
  std::ranges::sort(texts);
  EXPECT_EQ(texts.to_vector(), (std::vector<std::string>{"apple", "fig", "pear"}));
  array<int> xs{3, 1, 2};
  std::ranges::sort(xs, std::greater<>());
  EXPECT_EQ(xs.to_vector(), (std::vector<int>{3, 2, 1}));
  std::ranges::transform(xs, xs.begin(), [](int x) { return x * x; });
  EXPECT_EQ(xs.sum(), 14);
  list<bool> flags{true, false, true};
  std::ranges::reverse(flags);
  std::ranges::fill(flags, true);
  EXPECT_EQ(flags.count(true), 3U);
  EXPECT_EQ(std::accumulate(xs.begin(), xs.end(), 0), 14);
  EXPECT_EQ(std::ranges::find(xs, 4) - xs.begin(), 1);
  list<vorn::list<int>> nested{{2}, {1, 1}};
  swap(nested[0], nested[1]);
  EXPECT_EQ(nested.to_string(), "[[1, 1], [2]]");
}

TEST_F(CppRanges, References_AddReadCompareAndCopy) {
  list<int> xs{1, 2};
  xs[0] += 5;
  xs[1] -= 1;
  xs[1] = xs[0];
  EXPECT_EQ(xs.to_vector(), (std::vector<int>{6, 6}));
  EXPECT_TRUE(xs[0] == 6 && xs[0] == xs[1] && xs[0] < 7);
  list<std::string> texts{"a"};
  texts[0] += "b";
  EXPECT_TRUE(texts[0] == "ab");
  map<std::string, int> counts{{"a", 1}};
  counts["a"] += 2;
  counts["b"] = counts["a"];
  counts["b"] -= 1;
  EXPECT_EQ(counts.to_string(), R"({"a": 3, "b": 2})");
}

TEST_F(CppRanges, AWalkOfAListing_IsNotTouchedByChanges) {
  map<std::string, int> ages{{"a", 1}, {"b", 2}};
  map<int, int> numbers{{1, 1}, {2, 2}};
  set<int> elements{1, 2};
  linked_list<std::string> texts{"x", "y"};
  int steps = 0;
  for (const auto& [name, age] : ages) {
    ages.clear();
    ages[name + "!"] = age;
    ++steps;
  }
  for (const auto& [key, mapped] : numbers) {
    numbers.erase(key);
    steps += mapped > 0 ? 1 : 0;
  }
  for (const int x : elements) {
    elements.erase(x);
    ++steps;
  }
  for (const std::string& text : texts) {
    texts.push_back(text);
    ++steps;
  }
  EXPECT_EQ(steps, 8);
  EXPECT_EQ(ages.size(), 1U);
  EXPECT_TRUE(numbers.empty() && elements.empty());
  EXPECT_EQ(texts.to_string(), R"(l:["x", "y", "x", "y"])");
}

TEST_F(CppRanges, AWalk_ListsNothingFirst) {
  map<std::string, int> ages{{"a", 1}, {"b", 2}};
  sorted_map<int, std::string> sorted{{2, "y"}, {1, "x"}};
  set<int> elements;
  linked_list<std::string> texts{"p", "q"};
  for (int i = 0; i < 100; ++i) elements.insert(i);
  std::string walked;
  int sum = 0;
  const std::uint64_t before = allocations();
  for (const auto& [name, age] : ages.walk()) walked += name + std::to_string(age);
  for (const auto& [key, name] : sorted.walk()) walked += std::to_string(key) + name;
  for (const int x : elements.walk()) sum += x;
  for (const std::string& text : texts.walk()) walked += text;
  EXPECT_EQ(allocations(), before);
  EXPECT_EQ(walked, "a1b21x2ypq");
  EXPECT_EQ(sum, 4950);
  EXPECT_EQ((map<int, int>().walk().begin() == std::default_sentinel), true);
}

TEST_F(CppRanges, AWalk_KeysChange_Throws) {
  map<int, int> numbers{{1, 1}, {2, 2}};
  set<std::string> elements{"a", "b"};
  linked_list<std::string> texts{"x", "y"};
  int steps = 0;
  const auto walkMap = [&] {
    for (const auto& [key, mapped] : numbers.walk()) numbers.erase(key), steps += mapped;
  };
  const auto walkSet = [&] {
    for (const std::string& x : elements.walk()) elements.insert(x + "!"), ++steps;
  };
  EXPECT_THROW(walkMap(), error);
  EXPECT_THROW(walkSet(), error);
  EXPECT_EQ(steps, 2);
  EXPECT_EQ(vorn_error_count(), 0U);
  for (const auto& [key, mapped] : numbers.walk()) numbers[key] = mapped + 1;
  EXPECT_EQ(numbers.at(2), 3);
  for (const std::string& text : texts.walk()) {
    if (text.size() < 3) texts.push_back(text + "+");
  }
  EXPECT_EQ(texts.to_string(), R"(l:["x", "y", "x+", "y+", "x++", "y++"])");
}

TEST_F(CppRanges, RangesOfAnyKind_BecomeCollections) {
  EXPECT_EQ(list<int>(std::forward_list<int>{1, 3, 5}).to_vector(), (std::vector<int>{1, 3, 5}));
  EXPECT_EQ(array<long>(std::list<int>{1, 2, 3}).to_vector(), (std::vector<long>{1, 2, 3}));
  Reader reader{std::istringstream("4 5 6")};
  EXPECT_EQ(list<double>(reader).sum(), 15.0);
  EXPECT_EQ(list<std::string>(std::vector<const char*>{"a", "b"}).join("+"), "a+b");
  EXPECT_EQ(list<value>(std::vector<int>{1, 2}).to_string(), "[1, 2]");
  EXPECT_EQ(list<bool>(std::vector<bool>{true, false}).to_vector(), (std::vector<bool>{true, false}));
  EXPECT_EQ(set<int>(std::vector<int>{1, 1, 2}).size(), 2U);
  const std::unordered_map<std::string, int> model{{"a", 1}, {"b", 2}};
  const map<std::string, int> ages(model);
  EXPECT_EQ((ages.to<std::unordered_map<std::string, int>>()), model);
  EXPECT_EQ((map<std::string, long>(ages).at("b")), 2);
  EXPECT_EQ((map<int, int>(std::vector<std::tuple<int, int>>{{1, 2}}).at(1)), 2);
  EXPECT_EQ(list<int>(set<int>{4}).to_vector(), std::vector<int>{4});
  EXPECT_EQ(list<int>(tuple<int, int>(1, 2)).to_vector(), (std::vector<int>{1, 2}));
}

}  // namespace
}  // namespace vorn::tests
