#include "bench/comparison_table.h"

#include <algorithm>
#include <cstdio>
#include <optional>

namespace vorn::bench {

void ComparisonTable::ReportRuns(const std::vector<Run>& runs) {
  std::vector<Run> shown;
  for (const Run& run : runs) {
    // A single run has no aggregates.
    if (run.repetitions > 1 && !(run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")) continue;
    shown.push_back(run);
    // The name alone tells what ran; the counter is a number like any other, not a time in seconds.
    shown.back().run_name.time_type.clear();
    const auto counter = shown.back().counters.find("ns_per_element");
    if (counter == shown.back().counters.end()) continue;
    counter->second.flags = benchmark::Counter::kDefaults;
    figures_[run.run_name.function_name] = counter->second.value;
  }
  benchmark::ConsoleReporter::ReportRuns(shown);
}

void ComparisonTable::print(const std::vector<Row>& rows, const std::vector<std::string>& libraries) const {
  const auto figure = [this](const Row& row, const std::string& library) -> std::optional<double> {
    const auto found = figures_.find(row.operation + "/" + library + "/" + std::to_string(row.elements));
    if (found == figures_.end()) return std::nullopt;
    return found->second;
  };
  bool headed = false;
  int limits = 0;
  int held = 0;
  for (const Row& row : rows) {
    if (std::none_of(libraries.begin(), libraries.end(), [&](const auto& library) { return figure(row, library); }))
      continue;
    if (!headed) {
      std::printf("\nNanoseconds per element\n%-30s %9s", "operation", "n");
      for (const std::string& library : libraries) std::printf(" %9s", library.c_str());
      std::printf(" %9s\n", "limit");
      headed = true;
    }
    std::printf("%-30s %9lld", row.operation.c_str(), static_cast<long long>(row.elements));
    for (const std::string& library : libraries) {
      if (const auto value = figure(row, library)) {
        std::printf(" %9.3f", *value);
      } else {
        std::printf(" %9s", "-");
      }
    }
    // Limits are set for the first library.
    const auto own = figure(row, libraries.front());
    if (row.limit > 0 && own) {
      ++limits;
      held += *own <= row.limit ? 1 : 0;
      std::printf(" %9.2f  %s", row.limit, *own <= row.limit ? "held" : "EXCEEDED");
    }
    std::printf("\n");
  }
  if (limits > 0) std::printf("%d of %d limits held.\n", held, limits);
}

}  // namespace vorn::bench
