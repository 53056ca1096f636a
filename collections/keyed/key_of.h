// Keys of arguments. Making a key may run user code and raise; the natives do so before they lock.
#pragma once

#include <cstdint>
#include <cstring>

#include "collections/core/kinds.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/map_data.h"

namespace vorn::collections {

// Keys that are made without a call, and whose equality three words decide: those of integers and of short texts. What
// withWords(IntegerWords) or withWords(KeyWords) returns for such a handle, what otherwise() returns for any other one.

// A ULong's bits are an unsigned number, so its upper half is not meant here.
template <class WithWords, class Otherwise>
[[gnu::always_inline]] inline auto withIntegerKey(const void* handle, WithWords withWords, Otherwise otherwise) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, ObjectKind::IntegerBox)) return otherwise();
  const auto* const box = static_cast<const RegisteredObject*>(handle);
  if (box->integer < 0 && boxedTypeOf(*box) == PrimitiveType::ULong) return otherwise();
  return withWords(IntegerWords{box->integer});
}

template <class WithWords, class Otherwise>
[[gnu::always_inline]] inline auto withShortTextKey(const void* handle, WithWords withWords, Otherwise otherwise) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, ObjectKind::String)) return otherwise();
  const auto* const string = static_cast<const StringObject*>(handle);
  if (string->length > NativeCollectionKey::kShortText) return otherwise();
  std::uint64_t words[2];
  std::memcpy(words, string->text, sizeof(words));
  return withWords(KeyWords::ofShortText(words[0], words[1], string->length));
}

// The key of a handle, by make(handle) where that takes a call.
template <class Make>
inline NativeCollectionKey keyOf(void* handle, Make make) {
  const auto keyFrom = [](const auto& words) { return words.key(); };
  return withIntegerKey(handle, keyFrom,
                        [&] { return withShortTextKey(handle, keyFrom, [&] { return make(handle); }); });
}

// The key of a map for a non-null handle. For hash maps it may run user code, raise and allocate: callers look at
// hasPendingError() next, which also tells of an error that was pending before. A sorted map never looks at hashes, so
// that its keys need none and run no user code. Whether a map is hashed never changes and may be read without its lock.
inline NativeCollectionKey mapKeyOf(const MapData& map, void* handle) {
  if (map.hashed) return keyOf(handle, makeNativeCollectionKey);
  return withIntegerKey(
      handle, [](IntegerWords words) { return words.orderedKey(); },
      [&] { return makeNativeOrderedCollectionKey(handle); });
}

// The key of an element of a set, which may be null.
inline NativeCollectionKey setKeyOf(void* handle) { return keyOf(handle, makeNativeSetCollectionKey); }

}  // namespace vorn::collections
