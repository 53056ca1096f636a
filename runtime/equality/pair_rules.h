// What can be said about two values without looking into lists.
#pragma once

#include <cstdint>

#include "runtime/objects/runtime_class.h"
#include "runtime/values/scalars.h"

namespace vorn::runtime {

// The two comparisons share everything but their verdicts: equality asks whether, ordering also which comes first.
enum class Rule : std::uint8_t { Equality, Order };

// The verdict on a pair.
enum class Verdict : std::uint8_t {
  Less,
  Same,
  Greater,       // under Rule::Equality: different, either way
  Incomparable,  // under Rule::Order only
  Lists,         // two lists that decide by their elements
  Raised,        // a hook left an error
};

// Applies all rules but the one for lists. May run user hooks, raise and allocate; the caller keeps both alive.
Verdict judgePair(Rule rule, void* left, void* right);

// The rule for two values without their boxes.
Verdict judgeScalars(Rule rule, const Scalar& left, const Scalar& right);

// Whether the handle is an instance whose class has the hook that the rule asks for.
bool hasHook(Rule rule, const void* handle);

// Whether the handle is a list, and which: mutable lists compare with mutable ones, immutable with immutable.
enum class ListFamily : std::uint8_t { None, Mutable, Immutable };
ListFamily listFamilyOf(const void* handle);

}  // namespace vorn::runtime
