// The types of function that vorn_call can call, written as texts.
#pragma once

#include <vorn/runtime.h>

namespace vorn::runtime {

// Calls the function with a word for each parameter and writes its result, if it has one, to *result.
using CallAs = void (*)(vorn_function function, const vorn_word* arguments, vorn_word* result);

// How a function of that shape is called; null for a shape that is not in the table.
[[nodiscard]] CallAs callAs(const char* shape) noexcept;

}  // namespace vorn::runtime
