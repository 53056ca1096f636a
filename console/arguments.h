// From values to what a native is passed, and back.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "console/natives.h"
#include "console/values.h"

namespace vorn::console {

// The arguments of one call, as raw values that point into the given ones and into this object.
class PassedArguments {
 public:
  // Refuses a wrong count and types that the slots do not take. The values must outlive this.
  PassedArguments(const NativeRow& row, std::span<const Value> values);
  PassedArguments(const PassedArguments&) = delete;
  PassedArguments& operator=(const PassedArguments&) = delete;

  [[nodiscard]] std::span<const RawArgument> raw() const { return raw_; }
  // What a native stored through its out argument.
  [[nodiscard]] void* stored() const { return stored_; }
  // The count that the native was given, at least 0.
  [[nodiscard]] long long count() const;

 private:
  void pass(std::size_t slot, const Value& value, const ArgumentName& argument);

  const NativeRow& row_;
  std::vector<RawArgument> raw_;
  Handle stored_;
};

// The value of what a native gave. `callsBefore` is what a buffer is marked with.
Value resultValue(const NativeRow& row, const RawResult& result, const PassedArguments& passed,
                  std::span<const Value> values, std::uint64_t callsBefore);

// The integer of a value that is one, or a character; refuses anything else, naming what it was for.
long long integerOf(const Value& value, const std::string& purpose);

}  // namespace vorn::console
