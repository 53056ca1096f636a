// Scripts as tests: runs one, compares what each statement shows with what it is expected to show.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "console/console.h"
#include "console/output.h"

namespace vorn::console {

struct ScriptReport {
  std::size_t statements = 0;
  std::size_t expectations = 0;  // statements that have one
  std::size_t differences = 0;   // failures that were not expected included
  bool interrupted = false;
};

struct ScriptOptions {
  bool echo = false;  // show every statement and what it gives, as in a session
  // Called before each statement with its number, from 1, and how many there are.
  std::function<void(std::size_t number, std::size_t count)> progress;
};

// Runs a script's text; `name` stands in front of what differs. Statements without an expectation show what they give.
ScriptReport runScript(Console& console, std::string_view name, std::string_view text, Output& output,
                       const ScriptOptions& options = {});

}  // namespace vorn::console
