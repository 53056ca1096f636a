// What the tests of a program did, for the line of figures that a run ends in.
#pragma once

#include <atomic>
#include <cstdint>

namespace vorn::tests {

struct Figures {
  // Calls that sweeps made; a test that counts none counts as one.
  std::atomic<std::uint64_t> operations = 0;
  // Allocations that were made to fail, and hooks that raised, threw, or changed what they were called for.
  std::atomic<std::uint64_t> faults = 0;
};

Figures& figures();

// Counts the tests that count nothing themselves, from now on.
void countTests();

// Adds a line "operations faults collections divergences" to the file that VORN_TEST_FIGURES names, if it is set; a
// failed test is a divergence.
void writeFigures();

}  // namespace vorn::tests
