// What a run measured: for each operation, library and size the repetitions, in nanoseconds per element.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace vorn::bench {

// The middle of some repetitions and how far they lie apart.
struct Spread {
  double lowerQuartile;
  double median;
  double upperQuartile;
  std::size_t repetitions;
};

class Figures {
 public:
  void add(const std::string& operation, const std::string& library, std::int64_t elements, double nanoseconds);

  [[nodiscard]] std::optional<Spread> find(const std::string& operation, const std::string& library,
                                           std::int64_t elements) const;

  [[nodiscard]] bool hasLibrary(const std::string& library) const;

  // Adds what a program of another language measured: lines "operation,elements,nanoseconds", one for each repetition.
  // False for a file that cannot be read or has another line.
  bool addFromFile(const std::string& library, const std::string& path);

 private:
  using Name = std::tuple<std::string, std::string, std::int64_t>;
  std::map<Name, std::vector<double>> repetitions_;
};

}  // namespace vorn::bench
