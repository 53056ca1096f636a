// The opening tag of a list's display.
#pragma once

#include <cstdint>
#include <string>

// "l:[", "ls:[", "s:[" or "[" by the list's class. A synchronised array list shows its tag only when it has elements,
// which is what the language promises; linked ones always do.
std::string listDisplayPrefix(void* list, std::uint64_t count);
