#include "bench/comparison_table.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace vorn::bench {

namespace {

// Quartiles of fewer say nothing about the noise.
constexpr std::size_t kRepetitionsToJudge = 3;

const char* textOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Held:
      return "held";
    case Verdict::Exceeded:
      return "EXCEEDED";
    case Verdict::Unclear:
      return "unclear";
  }
  return "";
}

std::string nameOf(const Mark& mark) { return mark.operation != nullptr ? mark.operation : mark.library; }

}  // namespace

void printFigures(const Figures& figures, const std::vector<Row>& rows, const std::vector<std::string>& libraries) {
  std::vector<std::string> columns;
  std::copy_if(libraries.begin(), libraries.end(), std::back_inserter(columns), [&](const std::string& library) {
    return std::any_of(rows.begin(), rows.end(),
                       [&](const Row& row) { return figures.find(row.operation, library, row.elements).has_value(); });
  });
  std::printf("Nanoseconds per element\n%-32s %9s", "operation", "n");
  for (const std::string& library : columns) std::printf(" %9s", library.c_str());
  std::printf("\n");
  for (const Row& row : rows) {
    std::printf("%-32s %9lld", row.operation.c_str(), static_cast<long long>(row.elements));
    for (const std::string& library : columns) {
      if (const auto spread = figures.find(row.operation, library, row.elements)) {
        std::printf(" %9.3f", spread->median);
      } else {
        std::printf(" %9s", "-");
      }
    }
    std::printf("\n");
  }
}

Ratio ratioOf(const Spread& own, const Spread& mark) {
  return {own.median / mark.median, own.lowerQuartile / mark.upperQuartile, own.upperQuartile / mark.lowerQuartile};
}

Verdict judge(double limit, const Spread& own, const Spread& mark) {
  const Ratio ratio = ratioOf(own, mark);
  if (std::min(own.repetitions, mark.repetitions) < kRepetitionsToJudge) return Verdict::Unclear;
  if (ratio.high <= limit) return Verdict::Held;
  return ratio.low > limit ? Verdict::Exceeded : Verdict::Unclear;
}

void printLimits(const Figures& figures, std::span<const LimitedRow> limits, const std::vector<std::string>& missing) {
  int counts[3] = {};
  int notInstalled = 0;
  bool headed = false;
  for (const LimitedRow& row : limits) {
    const auto own = figures.find(row.operation, kOwn, row.elements);
    const Mark& against = row.limit.against;
    const auto mark = figures.find(row.markOperation(), against.library, row.elements);
    const bool absent = std::find(missing.begin(), missing.end(), against.library) != missing.end();
    if (!own || (!mark && !absent)) continue;
    if (!headed) {
      std::printf("\nLimits, as multiples of a mark in the same run\n%-32s %9s %9s  %-22s %9s %7s %15s %7s\n",
                  "operation", "n", kOwn, "mark", "its time", "ratio", "noise", "limit");
      headed = true;
    }
    std::printf("%-32s %9lld %9.3f  %-22s", row.operation, static_cast<long long>(row.elements), own->median,
                nameOf(against).c_str());
    if (!mark) {
      ++notInstalled;
      std::printf(" %9s %7s %15s %7.2f  peer not installed\n", "-", "-", "-", row.limit.ratio);
      continue;
    }
    const Ratio ratio = ratioOf(*own, *mark);
    const Verdict verdict = judge(row.limit.ratio, *own, *mark);
    ++counts[static_cast<int>(verdict)];
    std::printf(" %9.3f %7.2f %6.2f ..%6.2f %7.2f  %s\n", mark->median, ratio.value, ratio.low, ratio.high,
                row.limit.ratio, textOf(verdict));
  }
  if (!headed) return;
  std::printf("%d limits held, %d EXCEEDED, %d unclear", counts[0], counts[1], counts[2]);
  if (notInstalled > 0) std::printf(", %d without their peer", notInstalled);
  std::printf(".\n");
}

}  // namespace vorn::bench
