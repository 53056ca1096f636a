// The sort natives beside std::sort, GLib and, where its library is installed, Highway's vqsort.
#pragma once

#include <vector>

#include "bench/comparison_table.h"

namespace vorn::bench {

// Registers the benchmarks and appends their rows. Libraries are named "vorn", "C++", "GLib" and "vqsort".
void registerSorts(std::vector<ComparisonTable::Row>& rows);

}  // namespace vorn::bench
