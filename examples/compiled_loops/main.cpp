// Runs the four loops in their three ways and prints what they take. With --check each runs once, at a small size, and
// only whether the results agree is told.
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>

#include "workloads.h"

namespace {

// The shortest of several runs, in milliseconds. The three ways take turns, so that what disturbs the machine for a while
// disturbs all of them.
struct Times {
  double natives = std::numeric_limits<double>::infinity();
  double inlined = natives;
  double standard = natives;
};

// What one run leaves behind is collected before the next begins.
double timeOf(compiled_loops::Run run, long long size) {
  vorn_heap_collect();
  const auto start = std::chrono::steady_clock::now();
  run(size);
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

Times timesOf(const compiled_loops::Workload& work) {
  constexpr int kRounds = 15;
  Times best;
  for (int round = 0; round < kRounds; ++round) {
    best.natives = std::min(best.natives, timeOf(work.natives, work.size));
    best.inlined = std::min(best.inlined, timeOf(work.inlined, work.size));
    best.standard = std::min(best.standard, timeOf(work.standard, work.size));
  }
  return best;
}

bool agree(const compiled_loops::Workload& work, long long size) {
  const auto expected = work.standard(size);
  if (work.natives(size) == expected && work.inlined(size) == expected) return true;
  std::fprintf(stderr, "compiled_loops: the results of '%s' at size %lld differ\n", work.name, size);
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  vorn_inline_check();
  const vorn::RuntimeScope runtime(nullptr);
  if (!runtime.running()) return 1;
  const bool checkOnly = argc == 2 && std::strcmp(argv[1], "--check") == 0;
  if (argc > 1 && !checkOnly) {
    std::fprintf(stderr, "usage: compiled_loops [--check]\n");
    return 2;
  }

  bool allAgree = true;
  for (const auto& work : compiled_loops::kWorkloads) {
    for (const long long size : {0LL, 1LL, 2LL, 50LL}) allAgree = agree(work, size) && allAgree;
  }
  if (!allAgree || vorn_error_count() != 0) return 1;
  if (checkOnly) {
    std::puts("natives, inline forms and the C++ library come to the same results");
    return 0;
  }

  std::printf("%-16s %12s %12s %12s   milliseconds, the best of several runs\n", "", "natives", "inlined", "C++");
  for (const auto& work : compiled_loops::kWorkloads) {
    const Times best = timesOf(work);
    std::printf("%-16s %12.3f %12.3f %12.3f\n", work.name, best.natives, best.inlined, best.standard);
  }
  return 0;
}
