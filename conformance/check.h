// Checks: what they are, and how their bodies say what they found.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "conformance/adapter.h"

namespace vorn::conformance {

// What a runtime must be able to do for a check to make sense.
enum class Needs { Nothing, Hooks, Collector, Threads };

// A promise of the checklist in docs/porting.md, in its words: `subject` is the operation or record, or the family that
// a law is about.
struct Check {
  const char* subject;
  const char* promise;
  void (*body)();
  Needs needs = Needs::Nothing;
};

using Checks = std::vector<Check>;

// Every check, in the order of the checklist. Laws come last.
Checks memoryChecks();
Checks errorChecks();
Checks recordChecks();
Checks objectChecks();
Checks valueChecks();
Checks typeNameChecks();
Checks comparisonChecks();
Checks keyChecks();
Checks textChecks();
Checks listLaws();
Checks arrayLaws();
Checks keyedLaws();
Checks displayLaws();
Checks sortLaws();
Checks threadLaws();

// The adapter of the running check.
const Adapter& adapter();

// What a check that fails throws: one line.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The text with all bytes but those of printable ASCII escaped: a broken runtime's texts may hold anything.
std::string printable(std::string_view text);

// Values as failures show them.
std::string shown(bool value);
std::string shown(long long value);
std::string shown(double value);
std::string shown(std::string_view value);
std::string shown(const void* value);
std::string shown(const std::vector<std::string>& values);
inline std::string shown(int value) { return shown(static_cast<long long>(value)); }
inline std::string shown(std::size_t value) { return shown(static_cast<long long>(value)); }
inline std::string shown(const char* value) {
  return value != nullptr ? shown(std::string_view(value)) : std::string("null");
}
inline std::string shown(const std::string& value) { return shown(std::string_view(value)); }

// Ends the check when the value is not the expected one. `what` says of what it is the value.
template <class Value, class Expected>
void expect(std::string_view what, const Value& value, const Expected& expected) {
  const std::string got = shown(value);
  const std::string wanted = shown(expected);
  if (got != wanted) throw Failure(std::string(what) + ": expected " + wanted + ", got " + got);
}

// The same for something that has to hold.
void expectTrue(std::string_view what, bool value);

// -1, 0 or 1: the result of a comparison, of which only the sign has a meaning.
inline int signOf(int value) { return (value > 0) - (value < 0); }

}  // namespace vorn::conformance
