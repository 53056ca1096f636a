// The buckets of a hash table: which places of the table may hold a key with a given hash. A small table has none, but
// the tags of its places instead.
//
// A bucket is a line as long as a cache line, with the places of up to eight elements and a tag of sixteen bits from
// the hash of each, so that one load and one comparison find the places worth looking at, and a search for an absent
// key, which every insertion begins with, mostly touches nothing else. A bucket with more elements goes on in further
// lines. The layout was chosen among six by measurement at a million entries: chained nodes took half as long again.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - with a bucket count of 0, `lines_` is null, no place has a number beyond the tags', and `tags_` is in use;
//   - else `lines_` has a line for each bucket, and `further_` is in use;
//   - a line's slots below `used` are filled, those above are zero;
//   - of a bucket with further lines all are full but for the first of these, and none is empty. So the number of lines
//     that a bucket takes depends on the number of its elements alone;
//   - further lines stand in an array of their own; those that no bucket uses are empty and in the chain that starts
//     with `freeLine_`, or have never been used.
// The collector may take tags for an address. What they keep alive by that, if anything, is some block that a chance of
// one in many millions has named.
//
// All of it is numbers, in memory that the collector need not search. Nothing here knows keys, locks, or runs user
// code.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "collections/keyed/place_tags.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorn::collections {

struct alignas(16) BucketLine {
  static constexpr std::uint32_t kSlots = 8;

  std::uint16_t tags[kSlots];
  std::uint32_t places[kSlots];
  std::uint32_t used;
  std::uint32_t next;  // the number of the next line of the bucket, counted from 1; 0 for none
  std::uint32_t unused[2];

  // Never zero, so that no free slot matches. Buckets come from the high bits of a hash, tags from the low ones.
  static std::uint16_t tagOf(std::uint32_t hash) { return static_cast<std::uint16_t>(hash | 1); }

  void append(std::uint32_t hash, std::uint32_t place) {
    tags[used] = tagOf(hash);
    places[used] = place;
    ++used;
  }

  // Calls visit(place) for the place in each slot that has the tag, until it returns true; whether it did. Each slot is
  // a pair of bits of what the comparison gives, of which the lower one alone is left after the first.
  template <class Visit>
  bool visitPlacesWith(std::uint16_t tag, Visit visit) const {
    for (std::uint32_t slots = slotsWith(tag); slots != 0; slots = slots & (slots - 1) & 0x5555) {
      const auto at = static_cast<std::uint32_t>(std::countr_zero(slots));
      std::uint32_t place;
      std::memcpy(&place, reinterpret_cast<const char*>(places) + std::size_t{at} * 2, sizeof(place));
      if (visit(place)) return true;
    }
    return false;
  }

 private:
  // A pair of bits for each slot that has the tag.
  [[nodiscard]] std::uint32_t slotsWith(std::uint16_t tag) const {
#if defined(__SSE2__)
    const __m128i own = _mm_load_si128(reinterpret_cast<const __m128i*>(tags));
    const __m128i equal = _mm_cmpeq_epi16(own, _mm_set1_epi16(static_cast<short>(tag)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(equal));
#else
    std::uint32_t slots = 0;
    for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
      slots |= static_cast<std::uint32_t>(tags[slot] == tag) * 3 << (2 * slot);
    }
    return slots;
#endif
  }
};
static_assert(sizeof(BucketLine) == 64, "a bucket is one cache line");

class BucketLines {
 public:
  // Copies share their lines.
  BucketLines() : tags_{} {}

  [[nodiscard]] std::uint64_t bucketCount() const { return bucketCount_; }

  // The tags of the places, where there are no buckets; what is below needs some, but for tryAdd(), remove(), empty() and
  // tryAllocate().
  [[nodiscard]] const PlaceTags& tags() const { return tags_; }
  [[nodiscard]] PlaceTags& tags() { return tags_; }

  // A hash spread over [0, bucketCount) by multiplication instead of division (Lemire, "Fast random integer generation
  // in an interval", 2019).
  [[nodiscard]] std::uint64_t bucketOf(std::uint32_t hash) const {
    return (static_cast<std::uint64_t>(hash) * bucketCount_) >> 32;
  }

  // The first line of a hash's bucket.
  [[nodiscard]] BucketLine* firstLine(std::uint32_t hash) const { return &lines_[bucketOf(hash)]; }

  // Asks for a bucket that is written to soon.
  void prefetch(std::uint32_t hash) const { __builtin_prefetch(firstLine(hash), 1); }

  // The line after this one in its bucket, or null.
  [[nodiscard]] const BucketLine* nextLine(const BucketLine* line) const {
    return line->next == 0 ? nullptr : &furtherLine(line->next);
  }

  // Whether addTo() the bucket with this first line needs no further line, or there is one.
  [[nodiscard]] bool hasRoomIn(const BucketLine& first) const {
    if (first.used < BucketLine::kSlots) [[likely]]
      return true;
    if (first.next != 0 && furtherLine(first.next).used < BucketLine::kSlots) return true;
    return freeLine_ != 0 || further_.used < further_.capacity;
  }

  // Adds an element to the bucket with this first line, the one of its hash, which has room. Does not allocate.
  void addTo(BucketLine& first, std::uint32_t hash, std::uint32_t place) {
    BucketLine* line = &first;
    if (line->used == BucketLine::kSlots) [[unlikely]]
      line = &furtherLineWithRoom(first);
    line->append(hash, place);
  }

  // Adds an element whether there is room or not; false, with nothing changed, when there is no memory for a further
  // line. The caller roots this object. Allocates.
  [[nodiscard]] bool tryAdd(std::uint32_t hash, std::uint32_t place) {
    if (bucketCount_ == 0) {
      tags_.tags[place] = PlaceTags::tagOf(hash);
      return true;
    }
    BucketLine& line = *firstLine(hash);
    if (line.used == BucketLine::kSlots) [[unlikely]]
      return tryAddToFullLine(line, hash, place);
    line.append(hash, place);
    return true;
  }

  // Removes an element that was added with this hash and place. Does not allocate.
  void remove(std::uint32_t hash, std::uint32_t place);

  // Removes all elements and keeps the memory: as many elements with the same hashes fit in again.
  void empty();

  // Makes so many buckets where there were none; false, with nothing changed, when there is no memory. The caller roots
  // this object. Allocates.
  [[nodiscard]] bool tryAllocate(std::uint64_t bucketCount);

  // Makes room for more further lines; false, with nothing changed, when there is no memory. Allocates.
  [[nodiscard]] bool tryMakeFurtherLines();

  // For checks and tests.
  [[nodiscard]] const BucketLine* lines() const { return lines_; }
  [[nodiscard]] BucketLine& furtherLine(std::uint32_t number) const { return further_.lines[number - 1]; }
  [[nodiscard]] std::uint32_t furtherUsed() const { return bucketCount_ != 0 ? further_.used : 0; }
  [[nodiscard]] std::uint32_t furtherCapacity() const { return bucketCount_ != 0 ? further_.capacity : 0; }
  [[nodiscard]] std::uint32_t freeLine() const { return freeLine_; }

 private:
  struct FurtherLines {
    BucketLine* lines;
    std::uint32_t capacity;
    std::uint32_t used;  // those that have been used at least once
  };
  static_assert(sizeof(FurtherLines) == sizeof(PlaceTags));

  BucketLine& furtherLineWithRoom(BucketLine& first);
  bool tryAddToFullLine(BucketLine& first, std::uint32_t hash, std::uint32_t place);

  BucketLine* lines_ = nullptr;
  union {
    PlaceTags tags_;
    FurtherLines further_;
  };
  std::uint32_t bucketCount_ = 0;
  std::uint32_t freeLine_ = 0;  // numbered as `next` is
};

}  // namespace vorn::collections
