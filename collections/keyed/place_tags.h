// The tags of a small hash table's elements: which of its first places may hold a key with a given hash.
//
// Sixteen bytes that are compared at once take the place of buckets, and of their memory: most maps never have more
// elements than that.
#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorn::collections {

struct PlaceTags {
  static constexpr std::uint32_t kPlaces = 16;

  std::uint8_t tags[kPlaces];  // of the place with that number; 0 where it has no element

  // Never zero.
  static std::uint8_t tagOf(std::uint32_t hash) { return static_cast<std::uint8_t>(hash | 1); }

  // A bit for each place with the hash's tag; the lowest is the first place.
  [[nodiscard]] std::uint32_t placesWith(std::uint32_t hash) const {
#if defined(__SSE2__)
    __m128i own;
    std::memcpy(&own, tags, sizeof(own));
    const __m128i equal = _mm_cmpeq_epi8(own, _mm_set1_epi8(static_cast<char>(tagOf(hash))));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(equal));
#else
    std::uint32_t places = 0;
    for (std::uint32_t place = 0; place < kPlaces; ++place) {
      places |= static_cast<std::uint32_t>(tags[place] == tagOf(hash)) << place;
    }
    return places;
#endif
  }
};

}  // namespace vorn::collections
