// One table out of a run: rows are an operation and a size, columns are libraries, figures nanoseconds per element.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vorn::bench {

// Shows one line for each benchmark, the median of its repetitions, and keeps that median's "ns_per_element" counter.
// Benchmarks are named "operation/library/size".
class ComparisonTable : public benchmark::ConsoleReporter {
 public:
  ComparisonTable() : benchmark::ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override;

  struct Row {
    std::string operation;
    std::int64_t elements;
    double limit;  // 0: none
  };

  // Prints the rows in the given order and a verdict beside each limit. Rows that did not run are left out; nothing is
  // printed when no row ran.
  void print(const std::vector<Row>& rows, const std::vector<std::string>& libraries) const;

 private:
  std::map<std::string, double> figures_;
};

}  // namespace vorn::bench
