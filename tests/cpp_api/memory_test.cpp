// Roots, allocations that fail, and how many calls it takes: what no value shows.
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/cpp_api/cpp_api_test.h"

// Calls of this binary to these natives, counted on their way, for each thread by itself.
namespace {
thread_local long long nativeCalls = 0;
}

#define COUNTED(result, name, parameters, arguments) \
  extern "C" result __real_##name parameters;        \
  extern "C" result __wrap_##name parameters {       \
    ++nativeCalls;                                   \
    return __real_##name arguments;                  \
  }
COUNTED(void, vorn_collections_ArrayList_add, (void* list, void* x), (list, x))
COUNTED(void, vorn_collections_ArrayList_addPrimitiveI64, (void* list, long long x, const char* t), (list, x, t))
COUNTED(void, vorn_collections_ArrayList_addPrimitiveDouble, (void* list, double x, const char* t), (list, x, t))
COUNTED(void, vorn_collections_ArrayList_addPrimitiveBool, (void* list, bool x), (list, x))
COUNTED(void*, vorn_collections_ArrayList_operator_index, (void* list, long long i), (list, i))
COUNTED(long long, vorn_collections_ArrayList_getIntFast, (void* list, long long i), (list, i))
COUNTED(double, vorn_collections_ArrayList_getDouble, (void* list, long long i), (list, i))
COUNTED(void, vorn_collections_Array_setInt, (void* array, long long i, long long x), (array, i, x))
COUNTED(void, vorn_collections_Array_setDouble, (void* array, long long i, double x), (array, i, x))
COUNTED(void, vorn_collections_Array_setBool, (void* array, long long i, bool x), (array, i, x))
COUNTED(void, vorn_collections_Array_operator_index_eq, (void* array, long long i, void* x), (array, i, x))
COUNTED(void*, vorn_collections_Array_operator_index, (void* array, long long i), (array, i))
COUNTED(long long, vorn_collections_Array_getInt, (void* array, long long i), (array, i))
COUNTED(double, vorn_collections_Array_getDouble, (void* array, long long i), (array, i))
COUNTED(void*, vorn_collections_Tuple_operator_index, (void* tuple, long long i), (tuple, i))
#undef COUNTED

namespace vorn::tests {
namespace {

template <class T>
std::vector<T> numbers(std::size_t count) {
  std::vector<T> result;
  for (std::size_t i = 0; i < count; ++i) result.push_back(static_cast<T>(i % 2 == 0));
  return result;
}

// What fills or reads a collection whole must not call a native for each element. Array.operator_index tells the type
// of an array's elements, once.
template <class T>
class CppBulk : public CppApi {};
using BulkTypes = ::testing::Types<std::uint16_t, std::int32_t, double, bool, char32_t>;
TYPED_TEST_SUITE(CppBulk, BulkTypes);

TYPED_TEST(CppBulk, WholeCollections_TakeNoCallForAnElement) {
  const std::vector<TypeParam> elements = numbers<TypeParam>(50);
  nativeCalls = 0;
  list<TypeParam> xs(elements);
  EXPECT_EQ(xs.to_vector(), elements);
  EXPECT_EQ((list<TypeParam, synchronized>(elements).to_vector()), elements);
  EXPECT_EQ(linked_list<TypeParam>(elements).to_vector(), elements);
  EXPECT_EQ(immutable_list<TypeParam>(elements).to_vector(), elements);
  xs.append_range(elements);
  xs.assign_slice(0, 50, elements);
  EXPECT_EQ(xs.clone().size(), 100U);
  EXPECT_EQ(nativeCalls, 0) << "lists";
  EXPECT_EQ(array<TypeParam>(elements).to_vector(), elements);
  EXPECT_EQ((array<TypeParam, synchronized>(elements).to_vector()), elements);
  EXPECT_EQ(nativeCalls, 2) << "arrays";
}

TEST_F(CppApi, WalksAndCopiesOfMapsAndSetsOfNumbers_TakeNoCallForAnElement) {
  map<int, double> xs;
  set<int> elements;
  for (int i = 0; i < 50; ++i) {
    xs.put(i, i);
    elements.insert(i);
  }
  nativeCalls = 0;
  int steps = 0;
  for (const auto& [key, mapped] : xs) steps += key == static_cast<int>(mapped) ? 1 : 0;
  for (const int x : elements) steps += x >= 0 ? 1 : 0;
  EXPECT_EQ(steps, 100);
  EXPECT_EQ((xs.to<std::map<int, double>>()).size(), 50U);
  EXPECT_EQ(elements.to_vector().size(), 50U);
  EXPECT_EQ(nativeCalls, 0);
}

TEST_F(CppApi, ReadingAndAppendingUnboxedElements_MakesNoBoxes) {
  list<int> xs{1, 2, 3};
  array<double> ys{1.5, 2.5};
  xs.reserve(100);
  const std::uint64_t before = allocations();
  long long total = 0;
  for (const int x : xs) total += x;
  for (const double y : ys) total += static_cast<long long>(y);
  for (int i = 0; i < 50; ++i) xs.push_back(i);
  ys[0] = 3.5;
  EXPECT_EQ(total, 9);
  EXPECT_EQ(allocations(), before);
}

// ---- Memory that ends

class CppMemory : public CppApi {};

// Fails the first, second, ... allocation of an operation until it succeeds. What it works on must be as before each time.
void sweep(const std::function<void()>& operation, const std::function<std::string()>& state) {
  const std::string before = state();
  for (std::int64_t failing = 0;; ++failing) {
    ASSERT_LT(failing, 100);
    vorn_heap_fail_allocation(failing);
    const std::string thrown = thrownBy(operation);
    const bool failed = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    ASSERT_EQ(takeErrors(), std::vector<std::string>{});
    if (!failed) {
      EXPECT_EQ(thrown, "");
      return;
    }
    // A native may do without memory that it only would have liked.
    if (thrown.empty()) return;
    EXPECT_EQ(thrown, "bad_alloc");
    EXPECT_EQ(state(), before);
  }
}

TEST_F(CppMemory, ThatEnds_IsThrownAndNothingHasChanged) {
  list<std::string> texts{"a"};
  list<value> anything{1};
  map<std::string, int> ages{{"a", 1}};
  set<std::string> elements{"a"};
  array<std::string> fixed{"a"};
  const std::string longText(100, 'x');
  const auto state = [&] {
    return texts.to_string() + anything.to_string() + ages.to_string() + elements.to_string() + fixed.to_string();
  };
  const std::vector<std::function<void()>> operations = {
      [&] { texts.push_back(longText); },
      [&] {
        texts.append_range(std::vector<std::string>{"b", "c"});
      },
      [&] { anything.insert(0, 2.5); },
      [&] { anything[0] = "text"; },
      [&] { ages.put("b", 2); },
      [&] { ages["a"] = 2; },
      [&] { elements.insert("b"); },
      [&] { fixed[0] = longText; },
      [&] {
        (void)list<int>{1, 2, 3};
      },
      [&] { (void)immutable_list<char32_t>{U'a'}; },
      [&] {
        (void)linked_list<int>(std::vector<int>{1, 2});
      },
      [&] {
        (void)array<int>{1, 2};
      },
      [&] {
        (void)map<int, std::string>{{1, "x"}};
      },
      [&] { (void)set<double>{1.5}; },
      [&] { (void)tuple<int, std::string>(1, "x").get<1>(); },
      [&] { (void)value(1.5).to_string(); },
      [&] { (void)ages.clone(); },
      [&] { (void)elements.clone(); },
      [&] { (void)ages.items().at(0); },
      [&] { (void)texts.slice(0); },
      [&] { (void)texts.sorted(); },
      [&] { (void)texts.contains("a"); },
  };
  for (std::size_t i = 0; i < operations.size(); ++i) {
    SCOPED_TRACE(i);
    sweep(operations[i], state);
  }
}

// ---- Roots

// Handles in memory that no collector looks at, of objects that are referred to by nothing else.
TEST_F(CppMemory, HandlesKeepWhatTheyReferTo) {
  std::vector<list<std::string>> kept;
  std::map<int, value> values;
  for (int i = 0; i < 20; ++i) {
    kept.push_back(list<std::string>{"text " + std::to_string(i)});
    values.emplace(i, "value " + std::to_string(i));
  }
  kept.erase(kept.begin());
  vorn_heap_collect();
  (void)list<int>(numbers<int>(100));
  for (int i = 1; i < 20; ++i) {
    EXPECT_EQ(kept[static_cast<std::size_t>(i) - 1].at(0), "text " + std::to_string(i));
    EXPECT_EQ(values.at(i).as<std::string>(), "value " + std::to_string(i));
  }
}

TEST_F(CppMemory, HandlesMayOutliveTheThreadThatMadeThem) {
  std::vector<list<int>> made;
  std::thread([&] { made.push_back(list<int>{1, 2}); }).join();
  vorn_heap_collect();
  EXPECT_EQ(made.front().to_string(), "[1, 2]");
}

TEST_F(CppMemory, ThreadsShareSynchronisedCollections) {
  const int rounds = onStressHeap() ? 20 : 300;
  map<std::string, int, synchronized> counts;
  list<std::string, synchronized> texts;
  set<int, synchronized> elements;
  std::atomic<int> failures = 0;
  const auto work = [&](int thread) {
    vorn_thread_attach();
    try {
      for (int i = 0; i < rounds; ++i) {
        counts.put(std::to_string(thread * rounds + i), i);
        texts.push_back(std::to_string(i));
        elements.insert(thread * rounds + i);
        if (counts.at(std::to_string(thread * rounds + i)) != i) ++failures;
        if (texts.at(0) != "0") ++failures;
      }
      for (const auto& [key, number] : counts) failures += key.empty() || number < 0 ? 1 : 0;
      failures += texts.to_vector().size() < static_cast<std::size_t>(rounds) ? 1 : 0;
    } catch (const std::exception& e) {
      ADD_FAILURE() << e.what();
    }
  };
  std::thread first(work, 0);
  std::thread second(work, 1);
  first.join();
  second.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(counts.size(), 2 * static_cast<std::size_t>(rounds));
  EXPECT_EQ(texts.size(), 2 * static_cast<std::size_t>(rounds));
  EXPECT_EQ(elements.size(), 2 * static_cast<std::size_t>(rounds));
}

}  // namespace
}  // namespace vorn::tests
