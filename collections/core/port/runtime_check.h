// The check of the runtime that stands behind the port (collections/port_facts).
#pragma once

namespace vorn::collections {

// True once the library is loaded: the process ends before that when the runtime was compiled for another one.
extern const bool runtimeFits;

}  // namespace vorn::collections
