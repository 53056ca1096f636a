// What can be said about two values without looking into collections.
#pragma once

#include <cstdint>

#include "runtime/objects/runtime_class.h"
#include "runtime/values/scalars.h"

namespace vorn::runtime {

// Equality asks whether, ordering also which comes first. Keys of maps and sets have rules of their own: their elements
// are keys too, NaNs are equal, mutable collections are identities, and the order is total.
enum class Rule : std::uint8_t { Equality, Order, KeyEquality, KeyOrder };

inline bool isOrder(Rule rule) { return rule == Rule::Order || rule == Rule::KeyOrder; }
inline bool isOfKeys(Rule rule) { return rule >= Rule::KeyEquality; }

// The verdict on a pair.
enum class Verdict : std::uint8_t {
  Less,  // under the rules of equality this and Greater both mean different
  Same,
  Greater,
  Incomparable,  // under Rule::Order only
  Contents,      // two collections of one family that decide by what they contain
  Raised,        // a hook left an error
};

// Applies all rules but the one for the contents of collections. May run user hooks, raise and allocate; the caller
// keeps both alive.
Verdict judgePair(Rule rule, void* left, void* right);

// The rule for two values without their boxes.
Verdict judgeScalars(Rule rule, const Scalar& left, const Scalar& right);

// Asks the hook of two instances that the rule names, Equality or Order. Either has one.
Verdict judgeByHook(Rule rule, void* left, void* right);

// Whether the handle is an instance whose class has the hook that the rule, Equality or Order, asks for.
bool hasHook(Rule rule, const void* handle);

// Collections compare by content with those of their own family only.
enum class Family : std::uint8_t { None, Tuple, ImmutableList, MutableList, Array, Map, Set };
Family familyOf(const void* handle);

inline bool isSequence(Family family) { return family >= Family::Tuple && family <= Family::Array; }

}  // namespace vorn::runtime
