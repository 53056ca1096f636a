// Figures computed from lists of numbers, by the natives for whole lists where there is one.
#pragma once

namespace text_statistics {

// Figures about an `ArrayList<Int>`; all zero for an empty list.
struct LengthFigures {
  long long total = 0;
  double mean = 0;
  double median = 0;
  long long longest = 0;
};

LengthFigures lengthFigures(void* lengths);

// The length that a share of the list (percent, 1 to 100) does not exceed: the smallest element with at least so many
// elements up to it. `sorted` is in ascending order and not empty.
long long percentile(void* sorted, int percent);

// How many elements of a list in ascending order are not greater than the bound.
long long countUpTo(void* sorted, long long bound);

// The mean of an `ArrayList<Double>`; 0 for an empty list.
double meanOfDoubles(void* values);

// Its greatest element; 0 for an empty list.
double greatestDouble(void* values);

}  // namespace text_statistics
