// The key record of maps and sets.
//
// The runtime makes keys from objects (makeNativeCollectionKey and its siblings in keys.h) and decides
// what they mean; tables store them and compare them through the three functors below. Like the object layout, the
// record is a compile-time contract, because a lookup by number or short text has ten nanoseconds in all: equality of
// such keys is equality of three words.
//
// What makes two keys one:
//  - numbers of any kind by value (1, 1L and 1.0 are one key, -0.0 is 0, all NaNs are one key);
//  - Boolean, Char and CodeUnit values each among themselves, never equal to numbers;
//  - texts by bytes, whether a String object or a bare text;
//  - tuples and immutable lists by their class family and their elements as keys;
//  - instances by the hooks of their class, else by identity; every other object by identity.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

struct NativeCollectionKey {
  // In ascending order of keys that differ in it, where the four kinds of number count as one and the two of text.
  enum class Tag : std::uint8_t {
    Null,      // of sets only
    Integer,   // every number that a signed 64-bit integer holds; words[0] is its value
    Unsigned,  // larger integers below 2^64; words[0] is the value
    Floating,  // every other number; words[0] has the double's bits, one pattern for all NaNs
    Boolean,   // words[0] is the value, here and in the next two
    Char,
    CodeUnit,
    ShortText,  // up to kShortText bytes, kept in `words` and padded with zeros
    LongText,   // words[0] points at the bytes, words[1] is their number
    Identity,   // words[0] is the handle, here and in the next two
    Sequence,   // a tuple or an immutable list
    Instance,   // of a class with hooks
  };
  static constexpr std::size_t kShortText = 16;

  std::uint32_t hash = 0;  // of ordered tables' keys of no meaning
  Tag tag = Tag::Null;
  std::uint8_t shortLength = 0;  // of ShortText; 0 otherwise
  std::uint16_t unused = 0;
  std::uint64_t words[2] = {};

  // Whether comparing this key with another of its tag may run user code, raise and allocate.
  [[nodiscard]] bool comparesByUserCode() const { return tag >= Tag::Sequence; }

  // The bytes of a text key. A view into this record for a short one.
  [[nodiscard]] std::string_view text() const {
    if (tag == Tag::ShortText) return {reinterpret_cast<const char*>(words), shortLength};
    return {reinterpret_cast<const char*>(words[0]), words[1]};
  }

  // The handle behind a key of the last three tags.
  [[nodiscard]] void* handle() const { return reinterpret_cast<void*>(words[0]); }
};
static_assert(sizeof(NativeCollectionKey) == 24, "an entry of a map is 40 bytes with it");

// What makes the hashes of one process differ from those of another: random numbers, all bits of them.
struct KeyHashSeed {
  std::uint64_t multiplierLow;
  std::uint64_t multiplierHigh;
  std::uint64_t addend;
  std::uint64_t secondMultiplierLow;  // of a key's second word
  std::uint64_t secondMultiplierHigh;
};

#pragma GCC visibility push(default)

// Written by the runtime before it gives out its first object, and never again.
extern "C" {
extern KeyHashSeed Vorn_keyHashSeed;
}

#pragma GCC visibility pop

// Spreads every bit of the input over the whole result, since tables take a key's bucket from the high bits of its hash
// and its tag from the low ones.
//
// The upper half of a product with a secret number of 128 bits, plus another secret, is a family of hash functions for
// which no two inputs come to the same result, or to two given results, with more than twice the probability of random
// numbers (Dietzfelbinger, "Universal hashing and k-wise independent random variables via integer arithmetic without
// primes", 1996); and so is that of a sum of products, one for each word of the input (Lemire and Kaser, "Strongly
// universal string hashing is fast", 2014). Whoever chooses keys without knowing the seed can therefore not choose ones that collide more than
// random ones would, but for that factor, though he knows the algorithm. He could learn about the seed from how long
// operations take: that is not defended against. By itself such a function would spread the numbers of an
// arithmetic progression badly for one seed in twenty; the last line, a bijection that leaves the probabilities as they
// are, breaks progressions up.
inline std::uint32_t mixedKeyHash(std::uint64_t first, std::uint64_t second = 0) {
  __extension__ using Wide = unsigned __int128;
  const KeyHashSeed& seed = Vorn_keyHashSeed;
  const Wide products =
      static_cast<Wide>(seed.multiplierLow) * first + static_cast<Wide>(seed.secondMultiplierLow) * second;
  const std::uint64_t sum = static_cast<std::uint64_t>(products >> 64) + seed.multiplierHigh * first +
                            seed.secondMultiplierHigh * second + seed.addend;
  return static_cast<std::uint32_t>(((sum ^ (sum >> 32)) * 0x9E3779B97F4A7C15ULL) >> 32);
}

// The key of a number that a signed 64-bit integer holds.
inline NativeCollectionKey integerCollectionKey(std::int64_t value) {
  NativeCollectionKey key;
  key.hash = mixedKeyHash(static_cast<std::uint64_t>(value));
  key.tag = NativeCollectionKey::Tag::Integer;
  key.words[0] = static_cast<std::uint64_t>(value);
  return key;
}

// The hash of a text of up to kShortText bytes, from its words. A second word that no text has stands for numbers.
inline std::uint32_t shortTextKeyHash(std::uint64_t first, std::uint64_t second) {
  return mixedKeyHash(first, ~second);
}

#pragma GCC visibility push(default)

// Whether two long texts, sequences or instances of the same tag and hash are one key. May run user code, raise and
// allocate for the last two; false after an error. The caller keeps alive what both keys borrow, here and below.
bool nativeCollectionKeysEqual(const NativeCollectionKey& left, const NativeCollectionKey& right);

// Negative, zero or positive: the order of keys. By tag first; numbers by value with NaN last, texts by bytes,
// identities by address, tuples before immutable lists and each lexicographically, instances by ordering hook when it
// can compare the two, else by the name of the topmost class that brings their hook, then by address. A hook that
// raises counts as one that cannot compare, so that no two keys pass for one because of an error. May run user code,
// raise and allocate for sequences and instances.
int compareNativeCollectionKeys(const NativeCollectionKey& left, const NativeCollectionKey& right);

#pragma GCC visibility pop

struct NativeCollectionKeyHash {
  std::size_t operator()(const NativeCollectionKey& key) const { return key.hash; }
};

struct NativeCollectionKeyEqual {
  bool operator()(const NativeCollectionKey& left, const NativeCollectionKey& right) const {
    std::uint64_t leftHead;
    std::uint64_t rightHead;
    std::memcpy(&leftHead, &left, sizeof(leftHead));
    std::memcpy(&rightHead, &right, sizeof(rightHead));
    if (leftHead != rightHead) return false;
    if (left.words[0] == right.words[0] && left.words[1] == right.words[1]) return true;
    const bool wordsDecide =
        left.tag < NativeCollectionKey::Tag::LongText || left.tag == NativeCollectionKey::Tag::Identity;
    return !wordsDecide && nativeCollectionKeysEqual(left, right);
  }
};

struct NativeCollectionKeyLess {
  bool operator()(const NativeCollectionKey& left, const NativeCollectionKey& right) const {
    constexpr auto kInteger = NativeCollectionKey::Tag::Integer;
    if (left.tag == kInteger && right.tag == kInteger) {
      return static_cast<std::int64_t>(left.words[0]) < static_cast<std::int64_t>(right.words[0]);
    }
    return compareNativeCollectionKeys(left, right) < 0;
  }
};
