// Two tables out of a run: what every library took, and what became of the limits.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "bench/figures.h"
#include "bench/limits.h"

namespace vorn::bench {

struct Row {
  std::string operation;
  std::int64_t elements;

  friend bool operator==(const Row&, const Row&) = default;
};

// Prints the median nanoseconds per element: a line for each row, a column for each library that has a figure in one.
void printFigures(const Figures& figures, const std::vector<Row>& rows, const std::vector<std::string>& libraries);

enum class Verdict { Held, Exceeded, Unclear };

// How many times as long as its mark a row took, by the medians, and the range of that ratio when both move between
// their quartiles.
struct Ratio {
  double value;
  double low;
  double high;
};
Ratio ratioOf(const Spread& own, const Spread& mark);

// Unclear where the limit lies in the range, or where there are too few repetitions to tell.
Verdict judge(double limit, const Spread& own, const Spread& mark);

// Prints a line for each limit whose row ran, and how many held. A mark of one of the `missing` libraries is not
// installed.
void printLimits(const Figures& figures, std::span<const LimitedRow> limits, const std::vector<std::string>& missing);

}  // namespace vorn::bench
