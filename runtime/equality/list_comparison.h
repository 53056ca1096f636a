// Comparison of two lists by their elements.
#pragma once

#include "runtime/equality/pair_rules.h"

namespace vorn::runtime {

// Compares two lists of one family element by element, as deep as they are nested, without recursion. Pairs of lists
// that this thread is comparing already count as equal, so that lists which contain themselves are compared to an end.
// Gives Less, Same, Greater or Raised; under Rule::Order elements that cannot be ordered count as equal. Each list is
// read under its own lock, never two at a time, and no lock is held while hooks run. May run user hooks, raise and
// allocate; the caller keeps both lists alive.
Verdict compareLists(Rule rule, void* left, void* right);

}  // namespace vorn::runtime
