#include "bench/figures.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace vorn::bench {

namespace {

// Between the two repetitions that are nearest to that place in their order.
double quantile(const std::vector<double>& sorted, double part) {
  const double place = part * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (sorted[above] - sorted[below]) * (place - static_cast<double>(below));
}

}  // namespace

void Figures::add(const std::string& operation, const std::string& library, std::int64_t elements, double nanoseconds) {
  repetitions_[{operation, library, elements}].push_back(nanoseconds);
}

std::optional<Spread> Figures::find(const std::string& operation, const std::string& library,
                                    std::int64_t elements) const {
  const auto found = repetitions_.find({operation, library, elements});
  if (found == repetitions_.end()) return std::nullopt;
  std::vector<double> sorted = found->second;
  std::sort(sorted.begin(), sorted.end());
  return Spread{quantile(sorted, 0.25), quantile(sorted, 0.5), quantile(sorted, 0.75), sorted.size()};
}

bool Figures::hasLibrary(const std::string& library) const {
  return std::any_of(repetitions_.begin(), repetitions_.end(),
                     [&library](const auto& entry) { return std::get<1>(entry.first) == library; });
}

bool Figures::addFromFile(const std::string& library, const std::string& path) {
  std::ifstream file(path);
  if (!file) return false;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string operation;
    std::int64_t elements = 0;
    double nanoseconds = 0;
    char comma = 0;
    if (!std::getline(fields, operation, ',') || !(fields >> elements >> comma >> nanoseconds) || comma != ',') {
      return false;
    }
    add(operation, library, elements, nanoseconds);
  }
  return true;
}

}  // namespace vorn::bench
