// Ctrl-C while something runs: long measurements and scripts look here between their steps. A native that runs is never
// cut short.
#pragma once

namespace vorn::console {

// Makes Ctrl-C set the mark instead of ending the process.
void catchInterrupts();

[[nodiscard]] bool interrupted();
void clearInterrupt();

// Refuses to go on when the mark is set.
void throwIfInterrupted();

}  // namespace vorn::console
