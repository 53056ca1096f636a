// Looking values up in maps, for this library and for other modules of the runtime. All three take the map's lock,
// store null in the slot first, and answer false for a null map. They allocate only where keys of user classes, tuples
// or immutable lists do.
#pragma once

#include <vorn/collections/export.h>

#include <string_view>

#include "collections/core/port/collection_key.h"

// Whether the map has the key; its value then goes to the slot. False also when user code raises during the search.
bool tryMapLookupStorageValue(void* map, const NativeCollectionKey& key, void** slot);

// The same for a key object; false for a null key and when an error is pending after the key was made.
VORN_EXPORT bool tryMapLookupObjectValue(void* map, void* key, void** slot);

// The same for the key that a text is.
VORN_EXPORT bool tryMapLookupValue(void* map, std::string_view key, void** slot);
