// What every fuzzer needs: a running runtime, the bytes of an input, a count of operations, and an end that shows what
// differed.
#pragma once

#include <vorn/runtime.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorn::fuzz {

// Starts the runtime, once and for the rest of the process, on the heap that VORN_TEST_HEAP describes. When the process
// ends, its figures are added to the file that VORN_FUZZ_FIGURES names: a line with the numbers of operations, of faults
// injected and of collections.
void startRuntime();

// The bytes of an input; beyond its end there are zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  [[nodiscard]] bool ended() const { return next_ == end_; }
  std::uint8_t byte() { return next_ != end_ ? *next_++ : 0; }
  // Below the limit, which is at most 256.
  std::size_t below(std::size_t limit) { return byte() % limit; }
  bool flag() { return byte() % 2 != 0; }
  // Mostly a small number around zero, sometimes one at an end of a range.
  std::int64_t index();
  // Any 64 bits.
  std::uint64_t word();

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

// Counts an operation and remembers its name, for those who read about a divergence.
void noteOperation(const char* name);
[[nodiscard]] std::uint64_t operationCount();

// Counts an error, exception or failed allocation that the fuzzer brought about.
void noteFault();

// Forgets the names of the operations of the input before.
void beginInput();

// Says what differed and after which operations, and ends the process.
[[noreturn]] void diverge(const char* what, std::string_view actual, std::string_view expected);

// Each ends the process when the two differ.
inline void requireSame(const char* what, std::string_view actual, std::string_view expected) {
  if (actual != expected) [[unlikely]]
    diverge(what, actual, expected);
}
inline void requireEqual(const char* what, std::int64_t actual, std::int64_t expected) {
  if (actual != expected) [[unlikely]]
    diverge(what, std::to_string(actual), std::to_string(expected));
}
// By their bits, but for NaNs, which are all alike.
void requireEqualFloating(const char* what, double actual, double expected);

// What a fuzzer can do, and under which name it reports that it does.
template <class Scenario>
struct Operation {
  const char* name;
  void (Scenario::*run)();
};

// How often each operation of the table has run in this process, in the order of the table. A driver that replays a
// corpus requires that none is nought.
struct OperationTally {
  const char* name = nullptr;
  std::uint64_t runs = 0;
};
std::span<OperationTally> operationTallies();
OperationTally* newTallies(std::size_t count);

// Runs operations, each chosen by a byte, until the input ends.
template <class Scenario, std::size_t kCount>
void runOperations(Scenario& scenario, Input& input, const Operation<Scenario> (&operations)[kCount]) {
  static OperationTally* const tallies = [&] {
    OperationTally* const made = newTallies(kCount);
    for (std::size_t i = 0; i < kCount; ++i) made[i].name = operations[i].name;
    return made;
  }();
  while (!input.ended()) {
    const std::size_t chosen = input.below(kCount);
    noteOperation(operations[chosen].name);
    ++tallies[chosen].runs;
    (scenario.*operations[chosen].run)();
  }
}

// Slots that are roots for the rest of the process; there are only as many as a program declares.
template <std::size_t kCount>
class RootedSlots {
 public:
  RootedSlots() {
    for (void*& slot : slots_) vorn_root_add(&slot);
  }
  RootedSlots(const RootedSlots&) = delete;
  RootedSlots& operator=(const RootedSlots&) = delete;

  void*& operator[](std::size_t index) { return slots_[index]; }
  void clear() {
    for (void*& slot : slots_) slot = nullptr;
  }

 private:
  void* slots_[kCount] = {};
};

// Requires that exactly these errors are pending, oldest first, and takes them back.
struct ExpectedError {
  const char* exceptionClass = nullptr;  // null: none
  std::string message;
};
void requireErrors(const char* what, std::span<const ExpectedError> expected);
inline void requireNoError(const char* what) {
  if (vorn_error_count() != 0) [[unlikely]]
    requireErrors(what, {});
}

}  // namespace vorn::fuzz
