// Collections in every unboxed storage, as sources of other collections, each with a tuple of the boxes that reading it
// gives: whatever takes the one must end as if it had taken the other.
#pragma once

#include <string>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

struct SourceCase {
  std::string name;
  Handle source;
  Handle boxes;  // a tuple
};

// Lists of every unboxed storage, under their kind's own names and under others.
std::vector<SourceCase> unboxedLists(bool synchronised);

// The same as immutable lists.
std::vector<SourceCase> unboxedImmutables();

// Arrays of every kind of slot.
std::vector<SourceCase> slotArrays(bool synchronised);

// All of them, plain and synchronised.
std::vector<SourceCase> unboxedSources();

}  // namespace vorn::tests
