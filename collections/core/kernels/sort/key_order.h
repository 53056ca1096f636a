// Signed keys that order as the elements do, and back.
//
// This header and the other templates of the vector paths are compiled once per instruction set. They include no
// standard header with code in it, and each template takes a type of the including file, so that nothing compiled for
// wide registers can stand in for the plain code of another file.
#pragma once

#include <cstdint>

#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

template <class Key>
struct KeyBits;
template <>
struct KeyBits<std::int8_t> {
  using Word = std::uint8_t;
};
template <>
struct KeyBits<std::int16_t> {
  using Word = std::uint16_t;
};
template <>
struct KeyBits<std::int32_t> {
  using Word = std::uint32_t;
  static constexpr Word kInfinity = 0x7F800000U;
};
template <>
struct KeyBits<std::int64_t> {
  using Word = std::uint64_t;
  static constexpr Word kInfinity = 0x7FF0000000000000U;
};

template <class Key>
struct KeyLimits {
  using Word = typename KeyBits<Key>::Word;
  static constexpr Key kLargest = static_cast<Key>(static_cast<Word>(~Word{0}) / 2);
  static constexpr Key kSmallest = static_cast<Key>(-kLargest - 1);
};

// The arithmetic of the mapping. Flipping all but the sign bit of negative floating numbers gives integers of the same
// order, with negative NaNs below all numbers and positive NaNs above. Subtracting the count of negative NaNs turns the
// ring of integers until those wrap round to the upper end as well.
template <class Key, KeyOrder kOrder>
struct KeyMapping {
  using Word = typename KeyBits<Key>::Word;
  static constexpr Word kMagnitude = static_cast<Word>(KeyLimits<Key>::kLargest);
  static constexpr Word kSign = static_cast<Word>(~kMagnitude);

  static constexpr Word negativeNaNs() {
    if constexpr (kOrder == KeyOrder::Floating) {
      return kMagnitude - KeyBits<Key>::kInfinity;
    } else {
      return 0;
    }
  }
};

// The mapping of one key at a time. Owner is the type that keeps instantiations apart (see above).
template <class Owner, KeyOrder kOrder, class Key>
inline Key toKey(Key bits) {
  using Mapping = KeyMapping<Key, kOrder>;
  using Word = typename Mapping::Word;
  auto word = static_cast<Word>(bits);
  if constexpr (kOrder == KeyOrder::Unsigned) word ^= Mapping::kSign;
  if constexpr (kOrder == KeyOrder::Floating) {
    word ^= bits < 0 ? Mapping::kMagnitude : Word{0};
    word -= Mapping::negativeNaNs();
  }
  return static_cast<Key>(word);
}

template <class Owner, KeyOrder kOrder, class Key>
inline Key fromKey(Key key) {
  using Mapping = KeyMapping<Key, kOrder>;
  using Word = typename Mapping::Word;
  auto word = static_cast<Word>(key);
  if constexpr (kOrder == KeyOrder::Unsigned) word ^= Mapping::kSign;
  if constexpr (kOrder == KeyOrder::Floating) {
    word += Mapping::negativeNaNs();
    word ^= static_cast<Key>(word) < 0 ? Mapping::kMagnitude : Word{0};
  }
  return static_cast<Key>(word);
}

}  // namespace vorn::collections
