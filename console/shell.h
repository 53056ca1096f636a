// The conversation: reads statements line by line, runs them, goes on.
#pragma once

#include "console/console.h"
#include "console/line_source.h"
#include "console/output.h"

namespace vorn::console {

// Goes on until the input ends or :quit. The result is how many statements failed.
std::size_t converse(Console& console, LineSource& lines, Output& output);

}  // namespace vorn::console
