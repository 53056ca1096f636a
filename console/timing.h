// How long an expression takes: repeated until its time is stable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "console/session.h"
#include "console/syntax.h"

namespace vorn::console {

struct Timing {
  double expression = 0;   // nanoseconds a call, as the console evaluates it
  double native = 0;       // of the expression's last native alone, called directly
  std::string nativeName;  // "ArrayList.indexOf"; empty when the expression calls none
  std::uint64_t repetitions = 0;
  bool stable = false;

  // The time that says most: the native's, where there is one.
  [[nodiscard]] double figure() const { return nativeName.empty() ? expression : native; }
};

// Measures for at most about so many seconds. The setup, which may be null, runs before each call and is not counted:
// for natives that change what they are given. Throws what the expression throws, and a Refusal when interrupted.
Timing measure(Session& session, const Expression& expression, const Statement* setup, double seconds);

// "12.3 ns", "4.56 ms".
std::string durationText(double nanoseconds);

}  // namespace vorn::console
