// How long an operation may take, as a multiple of what something else took in the same run: the processor, its clock
// and the machine's other work move both.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "bench/floors.h"

namespace vorn::bench {

// The library whose rows have limits: the natives through the shared libraries, or the kernels' path that is in use.
inline constexpr const char* kOwn = "vorn";

// What a limit is a multiple of.
struct Mark {
  const char* operation;  // null: the limited one
  const char* library;
};
constexpr Mark peer(const char* library) { return {nullptr, library}; }
constexpr Mark peerRow(const char* library, const char* operation) { return {operation, library}; }
constexpr Mark floor(const char* name) { return {name, kFloor}; }
constexpr Mark ownRow(const char* operation) { return {operation, kOwn}; }

struct Limit {
  double ratio;
  Mark against;
};

struct LimitedRow {
  const char* operation;
  std::int64_t elements;
  Limit limit;

  // The operation of the mark at this row's size.
  [[nodiscard]] constexpr const char* markOperation() const {
    return limit.against.operation != nullptr ? limit.against.operation : operation;
  }
};

// The limits of one benchmark program; none for a topic that has none.
std::span<const LimitedRow> limitsOf(std::string_view topic);

}  // namespace vorn::bench
