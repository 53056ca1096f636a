// Looking values up in maps. Two ways of doing so are offered to other modules of the runtime, by
// <vorn/collections/runtime_helpers.hpp>; this one is the library's own.
#pragma once

#include <vorn/collections/runtime_helpers.hpp>

#include "collections/core/port/collection_key.h"

// Whether the map has the key; its value then goes to the slot. False also when user code raises during the search.
// Takes the map's lock, stores null in the slot first, and answers false for a null map. Allocates only where keys of
// user classes, tuples or immutable lists do.
bool tryMapLookupStorageValue(void* map, const NativeCollectionKey& key, void** slot);
