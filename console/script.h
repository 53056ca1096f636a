// Scripts: statements with what they are expected to show, in comments beside or below them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::console {

struct ScriptStatement {
  std::size_t line = 0;               // of its first line, from 1
  std::string source;                 // without the expectations
  std::string comment;                // the lines of comment directly above it, for whoever reads along
  std::vector<std::string> expected;  // line by line; * stands for any text
  bool expectsError = false;
  bool hasExpectation = false;
};

// Takes a script apart. A statement goes on while a bracket is open. "# expect: text" and "# expect error: text" belong
// to the statement on their line, or above it.
std::vector<ScriptStatement> parseScript(std::string_view text);

// Whether a text is what a pattern says, in which * stands for any text; an asterisk itself is written \*.
bool matchesPattern(std::string_view text, std::string_view pattern);

// A text as a pattern that matches it alone.
std::string asPattern(std::string_view text);

}  // namespace vorn::console
