// The marker of variables whose type the compiler infers, as every module of the runtime defines it.
#pragma once

#include <string>

namespace vorn::compiler {

// Built when the module is loaded and destroyed at exit. This library never reads it.
extern const std::string AUTO_TYPED_VAR;

}  // namespace vorn::compiler
