// Keys as words in registers.
#pragma once

#include <cstdint>
#include <cstring>

#include "collections/core/port/collection_key.h"

namespace vorn::collections {

// A key as the three words that decide equality of most keys. The first is composed from the fields in registers:
// reading it back from memory right after the runtime wrote them one by one would wait for the stores, for some five
// nanoseconds.
struct KeyWords {
  explicit KeyWords(const NativeCollectionKey& key)
      : head(key.hash | static_cast<std::uint64_t>(key.tag) << 32 | static_cast<std::uint64_t>(key.shortLength) << 40),
        first(key.words[0]),
        second(key.words[1]) {}

  // Those of a number that a signed 64-bit integer holds, which never were in memory.
  explicit KeyWords(std::int64_t value)
      : head(mixedKeyHash(static_cast<std::uint64_t>(value)) |
             static_cast<std::uint64_t>(NativeCollectionKey::Tag::Integer) << 32),
        first(static_cast<std::uint64_t>(value)),
        second(0) {}

  [[nodiscard]] std::uint32_t hash() const { return static_cast<std::uint32_t>(head); }

  // Whether all words of the other key are these.
  [[nodiscard]] bool match(const NativeCollectionKey& key) const {
    std::uint64_t otherHead;
    std::memcpy(&otherHead, &key, sizeof(otherHead));
    return head == otherHead && first == key.words[0] && second == key.words[1];
  }

  void storeTo(NativeCollectionKey& key) const { std::memcpy(static_cast<void*>(&key), this, sizeof(key)); }

  std::uint64_t head;
  std::uint64_t first;
  std::uint64_t second;
};
static_assert(sizeof(KeyWords) == sizeof(NativeCollectionKey));

}  // namespace vorn::collections
