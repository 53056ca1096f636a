// The report's program of this library and of the libraries of C++ and C, in one process. It reads requests and answers
// each with lines of words split by tabs:
//
//   rows                                                  row FORM WORKLOAD KIND ..., end
//   open FORM WORKLOAD KIND N SECONDS WARM-UP-SECONDS     ready CHECKSUM
//   run                                                   time NANOSECONDS-PER-OPERATION
//   allocated                                             allocated BLOCKS BYTES, of one run, or "-" where not known
//   close                                                 closed
//   memory FORM WORKLOAD KIND COUNT N                     prepared, to build COUNT collections as the workload does
//   build                                                 built BYTES, that these take
//
// A run repeats the work for as long as it takes SECONDS. The programs in bench/peers answer the same requests.
#include <malloc.h>
#include <vorn/runtime.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "bench/report/allocations.h"
#include "bench/report/rows.h"

namespace vorn::bench::report {

namespace {

double secondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The time of `repetitions` runs: the processor's, of all threads of the process.
double secondsOfRuns(const Ready& ready, std::int64_t repetitions) {
  const clockid_t clock = ready.onTheWall ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID;
  if (ready.prepare == nullptr) {
    const double start = secondsOf(clock);
    for (std::int64_t i = 0; i < repetitions; ++i) ready.run();
    return secondsOf(clock) - start;
  }
  double total = 0;
  for (std::int64_t i = 0; i < repetitions; ++i) {
    ready.prepare();
    const double start = secondsOf(clock);
    ready.run();
    total += secondsOf(clock) - start;
  }
  return total;
}

void runOnce(const Ready& ready) {
  if (ready.prepare != nullptr) ready.prepare();
  ready.run();
}

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "report: %s\n", message.c_str());
  std::exit(1);
}

void requireNoErrors() {
  if (vorn_error_count() != 0) fail(std::string(vorn_error_class(0)) + ": " + vorn_error_message(0));
}

// What lives in the runtime's heap and in malloc's.
std::int64_t bytesInUse() {
  vorn_heap_collect();
  vorn_heap_statistics heap;
  vorn_heap_get_statistics(&heap);
  const struct mallinfo2 plain = mallinfo2();
  return static_cast<std::int64_t>(heap.bytes_live + plain.uordblks + plain.hblkhd);
}

class Server {
 public:
  Server() {
    addNativeLists(rows_);
    addNativeBulk(rows_);
    addNativeArrays(rows_);
    addNativeKeyed(rows_);
    addStandardLists(rows_);
    addStandardBulk(rows_);
    addStandardKeyed(rows_);
    addAbseil(rows_);
    addGlib(rows_);
  }

  void answer(const std::vector<std::string>& words) {
    const std::string& request = words.front();
    if (request == "rows") {
      for (const auto& [name, makeReady] : rows_.all()) {
        const auto& [form, workload, kind] = name;
        std::printf("row\t%s\t%s\t%s\n", form.c_str(), workload.c_str(), kind.c_str());
      }
      std::puts("end");
    } else if (request == "open" && words.size() == 7) {
      open({words[1], words[2], words[3]}, std::stoll(words[4]), std::stod(words[5]));
    } else if (request == "run" && ready_) {
      const double seconds = secondsOfRuns(*ready_, repetitions_);
      std::printf("time\t%.6g\n", seconds * 1e9 / static_cast<double>(repetitions_ * ready_->operations));
    } else if (request == "allocated" && ready_) {
      if (ready_->prepare != nullptr) ready_->prepare();
      const Allocations before = allocationsSoFar();
      ready_->run();
      const Allocations after = allocationsSoFar();
      if (kCountsAllocations) {
        std::printf("allocated\t%lld\t%lld\n", static_cast<long long>(after.blocks - before.blocks),
                    static_cast<long long>(after.bytes - before.bytes));
      } else {
        std::puts("allocated\t-\t-");
      }
    } else if (request == "close") {
      ready_.reset();
      vorn_heap_collect();
      std::puts("closed");
    } else if (request == "memory" && words.size() == 6) {
      const MakeReady& makeReady = row({words[1], words[2], words[3]});
      for (std::int64_t i = 0; i < std::stoll(words[4]); ++i) kept_.push_back(makeReady(std::stoll(words[5])));
      std::puts("prepared");
    } else if (request == "build") {
      // The rows' states hold what they built last.
      const std::int64_t before = bytesInUse();
      for (const Ready& ready : kept_) ready.run();
      std::printf("built\t%lld\n", static_cast<long long>(bytesInUse() - before));
    } else {
      fail("an unknown request: " + request);
    }
    requireNoErrors();
    std::fflush(stdout);
  }

 private:
  const MakeReady& row(const Rows::Name& name) const {
    const auto row = rows_.all().find(name);
    if (row == rows_.all().end()) fail("no such row");
    return row->second;
  }

  void open(const Rows::Name& name, std::int64_t n, double seconds) {
    ready_ = row(name)(n);
    runOnce(*ready_);
    std::printf("ready\t%u\n", ready_->checksum());
    repetitions_ = 1;
    for (;;) {
      const double taken = secondsOfRuns(*ready_, repetitions_);
      if (taken >= seconds) break;
      const double times = taken > 0 ? seconds * 1.1 / taken : 10;
      repetitions_ = static_cast<std::int64_t>(static_cast<double>(repetitions_) * (times > 10 ? 10 : times)) + 1;
    }
  }

  Rows rows_;
  std::vector<Ready> kept_;
  std::optional<Ready> ready_;
  std::int64_t repetitions_ = 1;
};

// Freed memory stays with the process and is used again, as on a collected heap.
void keepFreedMemory() {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

}  // namespace

}  // namespace vorn::bench::report

int main() {
  vorn::bench::report::keepFreedMemory();
  const vorn::RuntimeScope runtime;
  vorn::bench::report::Server server;
  std::string line;
  while (std::getline(std::cin, line)) {
    std::istringstream input(line);
    std::vector<std::string> words;
    for (std::string word; std::getline(input, word, '\t');) words.push_back(word);
    if (!words.empty()) server.answer(words);
  }
}
