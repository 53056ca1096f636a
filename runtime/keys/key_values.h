// Keys of values, and keys that have no hash yet.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "collections/core/port/collection_key.h"
#include "collections/core/port/comparison.h"
#include "runtime/values/scalars.h"

namespace vorn::runtime {

using KeyTag = NativeCollectionKey::Tag;

inline NativeCollectionKey wordKey(KeyTag tag, std::uint64_t word) {
  NativeCollectionKey key;
  key.tag = tag;
  key.words[0] = word;
  return key;
}

// Every number that an integer holds is the integer's key, whatever type it has.
inline NativeCollectionKey unhashedFloatingKey(double value) {
  if (value >= -0x1p63 && value < 0x1p63) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value) return wordKey(KeyTag::Integer, static_cast<std::uint64_t>(whole));
  } else if (value >= 0x1p63 && value < 0x1p64) {
    return wordKey(KeyTag::Unsigned, static_cast<std::uint64_t>(value));  // so large a double is an integer
  }
  const double one = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
  return wordKey(KeyTag::Floating, std::bit_cast<std::uint64_t>(one));
}

inline NativeCollectionKey unhashedUnsignedKey(std::uint64_t value) {
  return wordKey((value >> 63) != 0 ? KeyTag::Unsigned : KeyTag::Integer, value);
}

// The text is borrowed when it is a long one.
inline NativeCollectionKey unhashedTextKey(std::string_view text) {
  NativeCollectionKey key;
  if (text.size() > NativeCollectionKey::kShortText) {
    key.tag = KeyTag::LongText;
    key.words[0] = reinterpret_cast<std::uint64_t>(text.data());
    key.words[1] = text.size();
    return key;
  }
  key.tag = KeyTag::ShortText;
  key.shortLength = static_cast<std::uint8_t>(text.size());
  // Two overlapping reads instead of a call to copy a handful of bytes.
  const auto load = [&](auto word, std::size_t at) {
    std::memcpy(&word, text.data() + at, sizeof(word));
    return static_cast<std::uint64_t>(word);
  };
  const std::size_t size = text.size();
  if (size > 8) {
    key.words[0] = load(std::uint64_t{}, 0);
    key.words[1] = load(std::uint64_t{}, size - 8) >> (8 * (16 - size));
  } else if (size >= 4) {
    key.words[0] = load(std::uint32_t{}, 0) | (load(std::uint32_t{}, size - 4) << (8 * (size - 4)));
  } else if (size >= 2) {
    key.words[0] = load(std::uint16_t{}, 0) | (load(std::uint8_t{}, size - 1) << (8 * (size - 1)));
  } else if (size == 1) {
    key.words[0] = load(std::uint8_t{}, 0);
  }
  return key;
}

// The key of a value without its box: the same as that of the box.
inline NativeCollectionKey unhashedScalarKey(const Scalar& scalar) {
  switch (scalar.family) {
    case Scalar::Family::Boolean:
      return wordKey(KeyTag::Boolean, scalar.value.payload != 0 ? 1 : 0);
    case Scalar::Family::Char:
      return wordKey(KeyTag::Char, scalar.value.payload);
    case Scalar::Family::CodeUnit:
      return wordKey(KeyTag::CodeUnit, scalar.value.payload);
    case Scalar::Family::Number:
      break;
  }
  switch (scalar.value.kind) {
    case NativeNumericValue::Kind::Unsigned:
      return unhashedUnsignedKey(scalar.value.payload);
    case NativeNumericValue::Kind::Floating:
      return unhashedFloatingKey(std::bit_cast<double>(scalar.value.payload));
    case NativeNumericValue::Kind::Signed:
      break;
  }
  return wordKey(KeyTag::Integer, scalar.value.payload);
}

// The key of any handle, null included, but for its hash: runs no user code and allocates nothing.
NativeCollectionKey unhashedKey(void* handle);

// The hash of a key of a value, a text or an identity, which takes no look behind a handle.
std::uint32_t plainKeyHash(const NativeCollectionKey& key);

// The hash of any key that has none yet. May run user code, raise and allocate for sequences and instances; the caller
// keeps what is behind the key alive.
std::uint32_t keyHash(const NativeCollectionKey& key);

// The hash of an instance: its class's hook, spread; a constant for a class that brings only equality; else by
// identity. May run user code, raise and allocate.
std::uint32_t instanceKeyHash(void* instance);

// The hash of a tuple or an immutable list: see sequence_hash.cpp. May run user code, raise and allocate.
std::uint32_t sequenceKeyHash(void* sequence);

}  // namespace vorn::runtime
