// Functions of the console itself, which fill lists for measurements and experiments.
#pragma once

#include <span>
#include <string_view>

#include "console/session.h"
#include "console/values.h"

namespace vorn::console {

struct ConsoleFunction {
  std::string_view name;
  std::string_view signature;
  std::string_view description;
  Value (*call)(Session& session, std::span<const Value> arguments);
};

std::span<const ConsoleFunction> consoleFunctions();
const ConsoleFunction* findFunction(std::string_view name);

}  // namespace vorn::console
