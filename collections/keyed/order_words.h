// Keys as single words that searches of an ordered table compare first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "collections/core/port/collection_key.h"

namespace vorn::collections {

// What the keys of an ordered table are, all of them: it decides what their order words mean.
enum class KeySort : std::uint8_t {
  Integer,  // the word is the number, so that words decide the order
  Text,     // the word has the first eight bytes: texts are in the order of their words where these differ
  Mixed,    // the words say nothing
};

inline KeySort sortOfKey(const NativeCollectionKey& key) {
  using Tag = NativeCollectionKey::Tag;
  if (key.tag == Tag::Integer) return KeySort::Integer;
  return key.tag == Tag::ShortText || key.tag == Tag::LongText ? KeySort::Text : KeySort::Mixed;
}

// The first eight bytes of a text, zeros after its end, as a number that is in the same order: signed, like the others.
inline std::int64_t orderWordOfText(const NativeCollectionKey& key) {
  static_assert(std::endian::native == std::endian::little);
  std::uint64_t bytes = key.words[0];
  if (key.tag == NativeCollectionKey::Tag::LongText) std::memcpy(&bytes, key.text().data(), sizeof(bytes));
  return static_cast<std::int64_t>(__builtin_bswap64(bytes) ^ std::uint64_t{1} << 63);
}

inline std::int64_t orderWordOf(const NativeCollectionKey& key) {
  switch (sortOfKey(key)) {
    case KeySort::Integer:
      return static_cast<std::int64_t>(key.words[0]);
    case KeySort::Text:
      return orderWordOfText(key);
    case KeySort::Mixed:
      break;
  }
  return 0;
}

}  // namespace vorn::collections
