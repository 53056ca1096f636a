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
  KeyWords(std::uint32_t hash, NativeCollectionKey::Tag tag, std::uint64_t shortLength, std::uint64_t firstWord,
           std::uint64_t secondWord)
      : head(hash | static_cast<std::uint64_t>(tag) << 32 | shortLength << 40), first(firstWord), second(secondWord) {}

  explicit KeyWords(const NativeCollectionKey& key)
      : KeyWords(key.hash, key.tag, key.shortLength, key.words[0], key.words[1]) {}

  // Those of a text in two words padded with zeros. They never were in memory.
  static KeyWords ofShortText(std::uint64_t first, std::uint64_t second, std::uint64_t length) {
    return {shortTextKeyHash(first, second), NativeCollectionKey::Tag::ShortText, length, first, second};
  }

  [[nodiscard]] std::uint32_t hash() const { return static_cast<std::uint32_t>(head); }

  // Whether all words of the other key are these.
  [[nodiscard]] bool match(const NativeCollectionKey& key) const {
    std::uint64_t otherHead;
    std::memcpy(&otherHead, &key, sizeof(otherHead));
    return head == otherHead && first == key.words[0] && second == key.words[1];
  }

  void storeTo(NativeCollectionKey& key) const { std::memcpy(static_cast<void*>(&key), this, sizeof(key)); }

  [[nodiscard]] NativeCollectionKey key() const {
    NativeCollectionKey key;
    storeTo(key);
    return key;
  }

  std::uint64_t head;
  std::uint64_t first;
  std::uint64_t second;
};
static_assert(sizeof(KeyWords) == sizeof(NativeCollectionKey));

// The key of a number that a signed 64-bit integer holds, in one register. It never was in memory.
struct IntegerWords {
  [[nodiscard]] std::uint32_t hash() const { return mixedKeyHash(static_cast<std::uint64_t>(value)); }

  // The tag and the number decide; the hash and the second word follow from them.
  [[nodiscard]] bool match(const NativeCollectionKey& key) const {
    return key.words[0] == static_cast<std::uint64_t>(value) && key.tag == NativeCollectionKey::Tag::Integer;
  }

  [[nodiscard]] NativeCollectionKey key() const { return keyWithHash(hash()); }

  // The key as ordered tables want it, whose hash has no meaning.
  [[nodiscard]] NativeCollectionKey orderedKey() const { return keyWithHash(0); }

  std::int64_t value;

 private:
  [[nodiscard]] NativeCollectionKey keyWithHash(std::uint32_t hash) const {
    return KeyWords(hash, NativeCollectionKey::Tag::Integer, 0, static_cast<std::uint64_t>(value), 0).key();
  }
};

}  // namespace vorn::collections
