// What the benchmark programs share: their defaults and how they treat memory.
#pragma once

#include <malloc.h>

#include <string>
#include <string_view>
#include <vector>

namespace vorn::bench {

inline bool choosesItsOwnOutput(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--benchmark_format") || argument.starts_with("--benchmark_list_tests")) return true;
  }
  return false;
}

// The program's defaults in front of the given options, which override them: the whole run takes less than a minute.
inline std::vector<char*> withDefaults(int argc, char** argv) {
  static std::string defaults[] = {"--benchmark_repetitions=3", "--benchmark_min_time=0.03",
                                   "--benchmark_min_warmup_time=0.01"};
  std::vector<char*> arguments(argv, argv + 1);
  for (std::string& argument : defaults) arguments.push_back(argument.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  arguments.push_back(nullptr);
  return arguments;
}

// Freed memory stays with the process and is used again: without this the peers' figures would be dominated by the
// first touch of fresh pages, which a collected heap does not pay in every round.
inline void keepFreedMemory() {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

}  // namespace vorn::bench
