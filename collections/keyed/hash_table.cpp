#include "collections/keyed/hash_table.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <stdexcept>

#include "collections/core/pending_error_watch.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/map_entry.h"
#include "collections/keyed/user_compared_key.h"

namespace vorn::collections {

namespace {

// A small table has none. From 5 on each is the smallest prime that is at least twice the one before.
constexpr std::uint64_t kBucketCounts[] = {
    0,       5,       11,       23,       47,       97,        197,       397,       797,    1597,
    3203,    6421,    12853,    25717,    51437,    102877,    205759,    411527,    823117, 1646237,
    3292489, 6584983, 13169977, 26339969, 52679969, 105359939, 210719881, 421439783,
};

// The buckets of a large table are asked for some elements ahead while it is filled.
constexpr std::uint64_t kBucketsInCache = 8192;
constexpr std::uint32_t kPrefetched = 8;

}  // namespace

template <class Entry>
std::uint64_t HashTable<Entry>::bucketCountFor(std::uint64_t elements) {
  const auto* const count =
      std::lower_bound(std::begin(kBucketCounts), std::end(kBucketCounts), elements,
                       [](std::uint64_t buckets, std::uint64_t wanted) { return elementLimit(buckets) < wanted; });
  if (count == std::end(kBucketCounts)) throw std::length_error("more elements than a hash table can have");
  return *count;
}

template <class Entry>
auto HashTable<Entry>::nth(std::uint64_t position) const -> Node* {
  if (places_ - first_ == count_) return &at(first_ + static_cast<std::uint32_t>(position));
  if (position < count_ / 2) {
    Cursor cursor = walk();
    for (std::uint64_t i = 0; i < position; ++i) cursor.next();
    return cursor.next();
  }
  std::uint32_t place = places_ - 1;
  for (std::uint64_t after = count_ - 1 - position; after != 0; --after) {
    do --place;
    while (at(place).key.tag == kVacant);
  }
  return &at(place);
}

template <class Entry>
void HashTable<Entry>::makePlace() {
  // Places that removals have left are worth the work of closing the gaps when they are not few, or when tags have no
  // more.
  const bool tagsUsedUp = lines_.bucketCount() == 0 && places_ == PlaceTags::kPlaces && count_ < places_;
  if (places_ - count_ > places_ / 4 || tagsUsedUp) return moveTogether();
  if (places_ > kMostPlaces - Chunks::kChunk) throw std::length_error("more elements than a hash table can have");
  chunks_.grow();
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::moveTogether() {
  closeGaps();
  lines_.empty();
  fill(lines_);
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::makeFurtherLines() {
  if (!lines_.tryMakeFurtherLines()) throw std::bad_alloc();
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::remove(const Place& found) {
  lines_.remove(found.node->key.hash, found.place);
  vacate(found.place, found.place + 1);
  --count_;
  ++changes_;
  if (count_ == 0) {
    first_ = places_ = 0;
    if (chunks_.capacity() > kFewPlaces) clear();
    return;
  }
  while (at(first_).key.tag == kVacant) ++first_;
  while (at(places_ - 1).key.tag == kVacant) --places_;
  if (hasManyGaps() || hasMuchUnused()) giveMemoryBack();
}

template <class Entry>
void HashTable<Entry>::vacate(std::uint32_t from, std::uint32_t to) {
  for (std::uint32_t place = from; place != to; ++place) {
    std::memset(static_cast<void*>(&at(place)), 0, sizeof(Node));
    at(place).key.tag = kVacant;
  }
}

// Moves all elements to the lowest places; whether any moved. The buckets are wrong then.
template <class Entry>
bool HashTable<Entry>::closeGaps() {
  if (places_ == count_) return false;
  std::uint32_t free = 0;
  Cursor cursor = walk();
  while (const Node* const node = cursor.next()) {
    if (&at(free) != node) at(free) = *node;
    ++free;
  }
  vacate(free, places_);
  first_ = 0;
  places_ = free;
  return true;
}

// Adds all elements to buckets that have none; false when there is no memory for further lines. Buckets that had all of
// them before have what it takes.
template <class Entry>
bool HashTable<Entry>::fill(BucketLines& lines) const {
  const bool prefetches = lines.bucketCount() > kBucketsInCache;
  for (std::uint32_t place = first_; place != places_; ++place) {
    const NativeCollectionKey& key = at(place).key;
    if (prefetches && places_ - place > kPrefetched) lines.prefetch(at(place + kPrefetched).key.hash);
    if (key.tag != kVacant && !lines.tryAdd(key.hash, place)) return false;
  }
  return true;
}

template <class Entry>
void HashTable<Entry>::giveMemoryBack() {
  const bool moved = closeGaps();
  // Room for twice the elements, so that a few insertions do not bring the memory back at once, unless they are few.
  const std::uint64_t room = count_ > PlaceTags::kPlaces ? 2 * count_ : count_;
  const std::uint64_t newBucketCount = bucketCountFor(std::min(room, elementLimit(lines_.bucketCount())));
  BucketLines fewer;
  const RootedRange root(&fewer, sizeof(fewer));
  if (newBucketCount < lines_.bucketCount() && fewer.tryAllocate(newBucketCount) && fill(fewer)) {
    lines_ = fewer;
  } else if (moved) {
    lines_.empty();
    fill(lines_);
  }
  chunks_.shrink(count_);
}

template <class Entry>
void HashTable<Entry>::clear() {
  if (lines_.bucketCount() <= kBucketsKept) {
    lines_.empty();
  } else {
    lines_ = {};
  }
  chunks_.clear();
  count_ = 0;
  first_ = places_ = 0;
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::reserve(std::uint64_t wanted) {
  const std::uint64_t newBucketCount = bucketCountFor(std::max(wanted, count_));
  if (newBucketCount != lines_.bucketCount()) rehash(newBucketCount);
}

template <class Entry>
void HashTable<Entry>::rehash(std::uint64_t newBucketCount) {
  BucketLines lines;
  const RootedRange root(&lines, sizeof(lines));
  // Nothing fails any more then.
  if (newBucketCount == 0 && places_ > PlaceTags::kPlaces) closeGaps();
  if (!lines.tryAllocate(newBucketCount) || !fill(lines)) throw std::bad_alloc();
  lines_ = lines;
  ++changes_;
}

template <class Entry>
auto HashTable<Entry>::findByUserCode(const NativeCollectionKey& key) const -> Place {
  const PendingErrorWatch watch;
  UserComparedKey compared;
  for (int restarts = 0; restarts <= kMaxRestarts; ++restarts) {
    const std::uint64_t changesBefore = changes_;
    Place result;
    visitCandidates(key.hash, result, [&](std::uint32_t place) {
      const bool equal = NativeCollectionKeyEqual()(key, compared.copy(at(place).key));
      result.failed = watch.raised();
      if (result.failed || changes_ != changesBefore) return true;
      if (equal) {
        result.node = &at(place);
        result.place = place;
      }
      return equal;
    });
    if (result.failed || changes_ == changesBefore) return result;
  }
  return findIdentical(key);
}

template <class Entry>
auto HashTable<Entry>::findIdentical(const NativeCollectionKey& key) const -> Place {
  Place result;
  visitCandidates(key.hash, result, [&](std::uint32_t place) {
    if (!identicalKeys(at(place).key, key)) return false;
    result.node = &at(place);
    result.place = place;
    return true;
  });
  return result;
}

template class HashTable<NativeMapEntry>;
template class HashTable<void*>;

}  // namespace vorn::collections
