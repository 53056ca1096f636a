// Making keys of maps and sets.
#pragma once

#include <string>
#include <string_view>

#include "collections/core/port/collection_key.h"

#pragma GCC visibility push(default)

// The key of a map for a non-null handle. A key borrows: the text of a long text key and the object behind the last
// three tags live as long as the handle does. The hash of an instance comes from its class's hook, so user code may run
// and raise; then an error is pending and the key must not be used. May allocate.
NativeCollectionKey makeNativeCollectionKey(void* handle);

// The same key for an ordered table, which never looks at hashes: it has none, and making it runs no user code, raises
// nothing and does not allocate.
NativeCollectionKey makeNativeOrderedCollectionKey(void* handle);

// The key of a text, which it borrows: the same as that of a String object with that text.
NativeCollectionKey makeNativeStringCollectionKey(std::string_view text);

// The key of a set's element: as for a map, and null has a key too.
NativeCollectionKey makeNativeSetCollectionKey(void* handle);

// The type name to record for a map key: the short name of its class, "String" for texts; empty for null. Lives as
// long as the process.
std::string_view mapKeyRuntimeTypeName(void* key);

// The key type name of a whole map: the recorded one, or "Object". Read under the map's lock. Lives as long as the
// process.
std::string_view resolveMapKeyTypeName(void* map);

// The text of a map key that is a floating number, without quotes; the empty string for any other handle.
std::string mapKeyString(void* key);

#pragma GCC visibility pop
