// Comparison of two collections by what they contain.
#pragma once

#include "runtime/equality/pair_rules.h"

namespace vorn::runtime {

// Compares two collections of one family, which are not the same object: sequences element by element, maps and sets
// (under the rules of equality only) by key equality, the values of equal keys by the rule. As deep as they are nested,
// without recursion. Pairs that this thread is comparing already count as equal, so that collections which contain
// themselves are compared to an end. Gives Less, Same, Greater or Raised; under Rule::Order elements that cannot be
// ordered count as equal. Each collection is read under its own lock, never two at a time, and no lock is held while
// hooks run. May run user hooks, raise and allocate; the caller keeps both collections alive.
Verdict compareContents(Rule rule, void* left, void* right);

}  // namespace vorn::runtime
