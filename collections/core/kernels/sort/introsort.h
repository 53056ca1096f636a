// A comparison sort for handles and for (number, handle) pairs, safe under any comparator.
//
// Orderings of mixed elements are not always strict weak orders, and user code may answer as it likes, so nothing here
// trusts an answer for more than the order of two elements: every scan is bounded by indexes, every step shortens the
// range, and a limit on the depth hands hostile inputs to a heap sort. Whatever the comparator answers, the sort stays
// inside the range, ends after O(n log n) comparisons and leaves a permutation of its input.
//
// While the comparator runs, every element stands in the range: the pivot is held by index, and elements move only
// between comparisons. A range that is registered as a root therefore keeps all of its handles alive even when the
// comparator allocates, and a comparator that throws leaves a permutation as well. The comparator gets references into
// the range and must not write to it.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

namespace vorn::collections {

namespace introsort_detail {

// Below this length insertion beats another round of partitioning.
constexpr std::uint64_t kShortRun = 24;
// From this length on three medians of three find a better pivot than one.
constexpr std::uint64_t kNinther = 128;

// Stable. The place of each element is found first and the elements above it move afterwards. Searching by halves
// compares less often than scanning does, and a comparison is the expensive part.
template <class Value, class Less>
void insertionSortRange(Value* values, std::uint64_t begin, std::uint64_t end, Less& less) {
  for (std::uint64_t i = begin + 1; i < end; ++i) {
    if (!less(values[i], values[i - 1])) continue;
    std::uint64_t place = begin;
    std::uint64_t candidates = i - 1 - begin;
    while (candidates > 0) {
      const std::uint64_t half = candidates / 2;
      const bool after = !less(values[i], values[place + half]);
      place = after ? place + half + 1 : place;
      candidates = after ? candidates - half - 1 : half;
    }
    Value moved = std::move(values[i]);
    for (std::uint64_t j = i; j > place; --j) values[j] = std::move(values[j - 1]);
    values[place] = std::move(moved);
  }
}

template <class Value, class Less>
void siftDown(Value* heap, std::uint64_t root, std::uint64_t count, Less& less) {
  while (root < count / 2) {
    std::uint64_t child = 2 * root + 1;
    if (child + 1 < count && less(heap[child], heap[child + 1])) ++child;
    if (!less(heap[root], heap[child])) return;
    std::swap(heap[root], heap[child]);
    root = child;
  }
}

template <class Value, class Less>
void heapSort(Value* heap, std::uint64_t count, Less& less) {
  for (std::uint64_t root = count / 2; root > 0; --root) siftDown(heap, root - 1, count, less);
  for (std::uint64_t last = count; last > 1; --last) {
    std::swap(heap[0], heap[last - 1]);
    siftDown(heap, 0, last - 1, less);
  }
}

template <class Value, class Less>
std::uint64_t medianOfThree(const Value* values, std::uint64_t a, std::uint64_t b, std::uint64_t c, Less& less) {
  if (less(values[b], values[a])) std::swap(a, b);
  if (!less(values[c], values[b])) return b;
  return less(values[c], values[a]) ? a : c;
}

// Sample places are pseudo-random: partitioning leaves regular traces behind, and fixed places fall for them (a sorted
// range with one more element appended went to the heap sort).
class Places {
 public:
  explicit Places(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15U + 1) {}

  std::uint64_t inRange(std::uint64_t begin, std::uint64_t count) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return begin + (state_ >> 33U) % count;
  }

 private:
  std::uint64_t state_;
};

template <class Value, class Less>
std::uint64_t choosePivot(const Value* values, std::uint64_t begin, std::uint64_t end, Places& places, Less& less) {
  const std::uint64_t count = end - begin;
  const auto medianOfSample = [&] {
    const std::uint64_t a = places.inRange(begin, count);
    const std::uint64_t b = places.inRange(begin, count);
    return medianOfThree(values, a, b, places.inRange(begin, count), less);
  };
  const std::uint64_t first = medianOfSample();
  if (count < kNinther) return first;
  const std::uint64_t second = medianOfSample();
  return medianOfThree(values, first, second, medianOfSample(), less);
}

// Partitions by the pivot that stands at `begin` and returns the place it takes. Both scans stop at elements equal to
// the pivot, which keeps runs of equals balanced.
template <class Value, class Less>
std::uint64_t partitionAroundFirst(Value* values, std::uint64_t begin, std::uint64_t end, Less& less) {
  std::uint64_t left = begin + 1;
  std::uint64_t right = end;  // one past the next candidate
  while (true) {
    while (left < right && less(values[left], values[begin])) ++left;
    while (left < right && less(values[begin], values[right - 1])) --right;
    if (right - left < 2) break;
    std::swap(values[left], values[right - 1]);
    ++left;
    --right;
  }
  // One element may be left between the scans; the left scan refused it, so it stays right of the pivot.
  std::swap(values[begin], values[left - 1]);
  return left - 1;
}

// Gathers the elements not greater than the pivot, which stands at `begin`, and returns one past the last of them.
// Called when nothing is smaller than the pivot: what it gathers is equal and needs no more sorting.
template <class Value, class Less>
std::uint64_t gatherEqualToFirst(Value* values, std::uint64_t begin, std::uint64_t end, Less& less) {
  std::uint64_t equal = begin + 1;
  for (std::uint64_t i = begin + 1; i < end; ++i) {
    if (less(values[begin], values[i])) continue;
    std::swap(values[i], values[equal]);
    ++equal;
  }
  return equal;
}

// Settles ranges that are in order, or in reverse order without equals, in one pass. On anything else it stops at the
// first pair that fits neither.
template <class Value, class Less>
bool settleSortedRange(Value* values, std::uint64_t count, Less& less) {
  const bool descending = less(values[1], values[0]);
  for (std::uint64_t i = 2; i < count; ++i) {
    if (less(values[i], values[i - 1]) != descending) return false;
  }
  if (descending) {
    for (std::uint64_t i = 0, j = count - 1; i < j; ++i, --j) std::swap(values[i], values[j]);
  }
  return true;
}

template <class Value, class Less>
void sortRange(Value* values, std::uint64_t begin, std::uint64_t end, unsigned depthLeft, Places& places, Less& less) {
  while (end - begin > kShortRun) {
    if (depthLeft == 0) {
      heapSort(values + begin, end - begin, less);
      return;
    }
    --depthLeft;
    const std::uint64_t chosen = choosePivot(values, begin, end, places, less);
    if (chosen != begin) std::swap(values[begin], values[chosen]);
    // The element before this range was a pivot: nothing here is smaller. When the new pivot is not greater either,
    // it equals the old one.
    if (begin > 0 && !less(values[begin - 1], values[begin])) {
      begin = gatherEqualToFirst(values, begin, end, less);
      continue;
    }
    const std::uint64_t pivot = partitionAroundFirst(values, begin, end, less);
    sortRange(values, begin, pivot, depthLeft, places, less);
    begin = pivot + 1;
  }
  insertionSortRange(values, begin, end, less);
}

}  // namespace introsort_detail

// Sorts in place so that less(a, b) puts a before b; equal elements come in any order. Allocates nothing.
template <class Value, class Less>
void introsort(Value* first, std::uint64_t count, Less less) {
  static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>,
                "a move that throws half-way would lose an element");
  if (count < 2) return;
  if (introsort_detail::settleSortedRange(first, count, less)) return;
  unsigned depth = 0;
  for (std::uint64_t rest = count; rest > 1; rest /= 2) depth += 2;
  introsort_detail::Places places(count);
  introsort_detail::sortRange(first, 0, count, depth, places, less);
}

// The stable sort for short ranges, with the same promises.
template <class Value, class Less>
void insertionSort(Value* first, std::uint64_t count, Less less) {
  static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>,
                "a move that throws half-way would lose an element");
  introsort_detail::insertionSortRange(first, 0, count, less);
}

}  // namespace vorn::collections
