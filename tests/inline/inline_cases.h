// What the tests of inline forms share: the three ways in which an operation is done, equal receivers for them, and which
// natives and functions of the library a form called.
#pragma once

#include <vorn/collections/inline.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/lists.h"
#include "tests/support/runtime_test.h"
#include "tests/support/values.h"

namespace vorn::tests {

enum class Form { Native, Inline, Proven };
inline constexpr Form kForms[] = {Form::Native, Form::Inline, Form::Proven};

// The types that forms take, by their numbers; numbered here once more.
inline constexpr vorn_element_type kTypes[] = {VORN_SBYTE,   VORN_BYTE, VORN_SHORT,    VORN_USHORT, VORN_INT,
                                               VORN_UINT,    VORN_LONG, VORN_ULONG,    VORN_FLOAT,  VORN_DOUBLE,
                                               VORN_BOOLEAN, VORN_CHAR, VORN_CODE_UNIT};
inline const char* nameOf(vorn_element_type type) {
  static constexpr const char* kNames[] = {"",     "SByte", "Byte",  "Short",  "UShort",  "Int",  "UInt",
                                           "Long", "ULong", "Float", "Double", "Boolean", "Char", "CodeUnit"};
  return kNames[type];
}
inline bool isFloating(vorn_element_type type) { return type == VORN_FLOAT || type == VORN_DOUBLE; }

inline constexpr long long kLeast = std::numeric_limits<long long>::min();
inline constexpr long long kMost = std::numeric_limits<long long>::max();

// Indexes in and around a collection of the size, and the extremes.
std::vector<long long> indexesAround(long long size);

// Values at the ends of the ranges of all types and beyond.
const std::vector<long long>& integersToStore();
const std::vector<double>& numbersToStore();

// How to make one receiver, again and again with equal contents.
struct Receiver {
  std::string name;
  std::function<Handle()> make;
};

// An operation in one form on a receiver of its own; its result in readable form.
using Operation = std::function<std::string(Form form, void* receiver)>;

// Does the operation in all forms on three equal receivers, which are made once, and expects the same results, errors and
// states.
class Triplets {
 public:
  // `stateOf` shows everything that a caller or the storage may tell apart.
  Triplets(const Receiver& receiver, std::function<std::string(void*)> stateOf);
  void expectSame(const std::string& what, const Operation& operation);
  // The same for what changes nothing, whose states are looked at when all of it is done.
  void expectSameResult(const std::string& what, const Operation& operation);
  // The three have no lock that is held; null has none.
  void expectUnlocked(const std::function<bool(void*)>& isUnlocked);

 private:
  void expect(const std::string& what, const Operation& operation, bool withStates);

  std::string name_;
  std::function<std::string(void*)> stateOf_;
  Handle receivers_[3];
};

// A list's storage and elements, down to the bytes of unboxed ones.
std::string stateOfList(void* list);

// The natives and functions of the library that tests have called since the last call of this function, in order. The
// binary's wrappers (native_calls.cpp) count those that forms fall back to.
std::vector<std::string> takeCalls();

}  // namespace vorn::tests
