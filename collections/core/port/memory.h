// Collected memory and roots.
#pragma once

#include <cstddef>

#pragma GCC visibility push(default)

extern "C" {

// A 16-byte aligned block that the collector scans for handles; zeroed or not. Null on exhaustion. Allocates.
void* Vorn_gcAlloc(std::size_t bytes);

// A 16-byte aligned block that the collector never scans; contents undefined. Null on exhaustion. Allocates.
void* Vorn_gcAllocAtomic(std::size_t bytes);

// Adds or removes [start, start + bytes) as roots of this thread. Registrations nest; a range is removed by the same
// start and length that added it. Neither allocates nor fails.
void Vorn_gcRegisterRootRange(void* start, std::size_t bytes);
void Vorn_gcUnregisterRootRange(void* start, std::size_t bytes);

// The same for one handle slot.
void Vorn_gcRegisterRootSlot(void** slot);
void Vorn_gcUnregisterRootSlot(void** slot);

}  // extern "C"

#pragma GCC visibility pop
