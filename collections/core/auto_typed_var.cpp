#include "collections/core/auto_typed_var.h"

const std::string vorn::compiler::AUTO_TYPED_VAR = "### auto typed var ###";
