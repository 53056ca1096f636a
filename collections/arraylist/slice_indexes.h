// Which positions a slice expression start:stop:step selects; shared by lists and arrays.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorn::collections {

// The positions of a slice in visiting order: first, first + step, ... It is a range to walk or to look into, and takes
// no memory however many there are. Sums wrap at most for the position past the last, which nobody looks at.
struct SlicePositions {
  struct Iterator {
    using value_type = long long;
    using difference_type = std::ptrdiff_t;

    std::uint64_t position = 0;
    std::uint64_t step = 0;
    std::uint64_t index = 0;

    long long operator*() const { return static_cast<long long>(position); }
    Iterator& operator++() {
      position += step;
      ++index;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const { return index == other.index; }
  };

  long long first = 0;
  long long step = 1;
  std::uint64_t count = 0;

  [[nodiscard]] std::uint64_t size() const { return count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  // The position at `index`, which is below size().
  long long operator[](std::uint64_t index) const { return *iteratorAt(index); }
  [[nodiscard]] Iterator begin() const { return iteratorAt(0); }
  [[nodiscard]] Iterator end() const { return iteratorAt(count); }

 private:
  [[nodiscard]] Iterator iteratorAt(std::uint64_t index) const {
    const auto stride = static_cast<std::uint64_t>(step);
    return {static_cast<std::uint64_t>(first) + index * stride, stride, index};
  }
};

// Start and stop as a positive step clamps them, both in [0, length]; stop may be below start.
struct SliceBounds {
  long long start = 0;
  long long stop = 0;
};

}  // namespace vorn::collections

// The positions of start:stop:step over a collection of `length` elements, each in [0, length). Negative bounds count
// from the end and are clamped; a bound whose flag is false is omitted and its value ignored. Empty for step 0 (callers
// raise first) and for a negative length. Exact for every 64-bit argument. Neither raises nor throws.
vorn::collections::SlicePositions computeSliceIndexes(long long length, long long start, long long stop, long long step,
                                                      bool hasStart, bool hasStop);

namespace vorn::collections {

// A slice expression as the natives receive it; a bound is given when its handle is not null.
struct SliceExpression {
  long long start;
  long long stop;
  long long step;
  const void* startGiven;
  const void* stopGiven;

  [[nodiscard]] SlicePositions over(std::uint64_t length) const {
    return computeSliceIndexes(static_cast<long long>(length), start, stop, step, startGiven != nullptr,
                               stopGiven != nullptr);
  }
  [[nodiscard]] SliceBounds forwardBounds(std::uint64_t length) const;
};

}  // namespace vorn::collections
