// Figures computed from lists of numbers. Each list is read through the natives, element by element.
#pragma once

namespace text_statistics {

// Figures about an `ArrayList<Int>`; all zero for an empty list.
struct LengthFigures {
  double mean = 0;
  double median = 0;
  long long longest = 0;
};

LengthFigures lengthFigures(void* lengths);

// The mean of an `ArrayList<Double>`; 0 for an empty list.
double meanOfDoubles(void* values);

// Its greatest element; 0 for an empty list.
double greatestDouble(void* values);

}  // namespace text_statistics
