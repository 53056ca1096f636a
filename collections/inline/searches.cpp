// The searches of maps and sets for keys that are no objects. They go by the record and make no box: what natives spend
// on telling what the key is, and callers on making it, is more than the search itself.
#include <vorn/collections/inline/keyed.h>

#include <cstring>
#include <string_view>

#include "collections/core/errors.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace vc = vorn::collections;

namespace {

template <class Node>
vorn_found asFound(const Node* node) {
  return node != nullptr ? vorn_found{node->entry.value, true} : vorn_found{nullptr, false};
}

template <class Word>
std::uint64_t wordAt(const char* text) {
  Word word;
  std::memcpy(&word, text, sizeof(word));
  return word;
}

// The key of a text of up to sixteen bytes. Two loads that overlap where the length is no power of two read all of it and
// nothing beyond; a copy of unknown length would be a call.
inline vc::KeyWords shortTextWords(const char* text, std::size_t length) {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  if (length >= 8) {
    first = wordAt<std::uint64_t>(text);
    if (length > 8) second = wordAt<std::uint64_t>(text + length - 8) >> (8 * (16 - length));
  } else if (length >= 4) {
    first = wordAt<std::uint32_t>(text) | wordAt<std::uint32_t>(text + length - 4) << (8 * (length - 4));
  } else {
    for (std::size_t i = 0; i < length; ++i)
      first |= static_cast<std::uint64_t>(static_cast<unsigned char>(text[i])) << (8 * i);
  }
  return vc::KeyWords::ofShortText(first, second, length);
}

NativeCollectionKey textKey(const char* text, std::size_t length) {
  return makeNativeStringCollectionKey(std::string_view(text, length));
}

// The searches below take these ways for what is rare: another thread's error or this one's, a lock, a long text. They
// stay out of line, so that the common searches need no frame.
template <class Key>
[[gnu::noinline]] vorn_found findOtherwise(const MapData& map, const Key& makeKey) {
  if (hasPendingError()) return {nullptr, false};
  const NativeCollectionKey key = makeKey();
  const MapDataLock lock(map);
  return map.withTable([&](const auto& table) { return asFound(table.find(key).node); });
}

template <class Key>
[[gnu::noinline]] bool hasOtherwise(const SetData& set, const Key& makeKey) {
  if (hasPendingError()) return false;
  const NativeCollectionKey key = makeKey();
  const SetDataLock lock(set);
  return set.table.find(key).node != nullptr;
}

template <class Record>
bool isPlain(const Record& record) {
  return !record.synchronized && !mayHavePendingError();
}

}  // namespace

vorn_found vorn_inline_find_integer(const void* map, long long key) {
  const auto& data = *static_cast<const MapData*>(map);
  if (!isPlain(data)) [[unlikely]]
    return findOtherwise(data, [key] { return integerCollectionKey(key); });
  if (data.hashed) [[likely]]
    return asFound(data.hash.findWords(vc::IntegerWords{key}));
  return asFound(data.ordered.findInteger(key));
}

vorn_found vorn_inline_find_text(const void* map, const char* key, size_t length) {
  const auto& data = *static_cast<const MapData*>(map);
  if (!data.hashed || length > NativeCollectionKey::kShortText || !isPlain(data)) [[unlikely]]
    return findOtherwise(data, [=] { return textKey(key, length); });
  return asFound(data.hash.findWords(shortTextWords(key, length)));
}

bool vorn_inline_has_integer(const void* set, long long key) {
  const auto& data = *static_cast<const SetData*>(set);
  if (!isPlain(data)) [[unlikely]]
    return hasOtherwise(data, [key] { return integerCollectionKey(key); });
  return data.table.findWords(vc::IntegerWords{key}) != nullptr;
}

bool vorn_inline_has_text(const void* set, const char* key, size_t length) {
  const auto& data = *static_cast<const SetData*>(set);
  if (length > NativeCollectionKey::kShortText || !isPlain(data)) [[unlikely]]
    return hasOtherwise(data, [=] { return textKey(key, length); });
  return data.table.findWords(shortTextWords(key, length)) != nullptr;
}

void vorn_inline_raise_key_not_found(void) { vc::errors::raiseKeyNotFound(); }
