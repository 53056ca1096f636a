// From text to statements: a recursive descent, one function for each rule of the language.
#pragma once

#include <cstddef>
#include <string_view>

#include "console/syntax.h"

namespace vorn::console {

// How deep brackets, calls and operators may nest. Whoever walks a tree may recurse as deep.
constexpr std::size_t kDeepestExpression = 200;

// One statement, which may go over several lines where brackets are open. Throws SyntaxError.
Statement parseStatement(std::string_view source);

// One expression and nothing behind it. Throws SyntaxError.
ExpressionPointer parseExpression(std::string_view source);

}  // namespace vorn::console
