// What every call of a user class's hook has in common.
#pragma once

#include "collections/core/pending_error_watch.h"

namespace vorn::runtime {

// Tells whether a hook raised.
using HookErrors = collections::PendingErrorWatch;

}  // namespace vorn::runtime
