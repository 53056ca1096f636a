#include "collections/keyed/hash_table.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "collections/core/gc_allocator.h"
#include "collections/core/pending_error_watch.h"
#include "collections/keyed/map_entry.h"
#include "collections/keyed/user_compared_key.h"

namespace vorn::collections {

namespace {

// Each is the smallest prime that is at least twice the one before.
constexpr std::uint64_t kBucketCounts[] = {
    7,        17,       37,       79,       163,       331,       673,       1361,       2729,       5471,
    10949,    21911,    43853,    87719,    175447,    350899,    701819,    1403641,    2807303,    5614657,
    11229331, 22458671, 44917381, 89834777, 179669557, 359339171, 718678369, 1437356741, 2874713497,
};

}  // namespace

template <class Entry>
std::uint64_t HashTable<Entry>::bucketCountFor(std::uint64_t elements) {
  static_assert(kMaxLoadFactor == 1.0F, "a bucket for every element");
  const auto* const count = std::lower_bound(std::begin(kBucketCounts), std::end(kBucketCounts), elements);
  if (count == std::end(kBucketCounts)) throw std::length_error("more elements than a hash table can have");
  return *count;
}

template <class Entry>
void HashTable<Entry>::remove(Node* node) {
  Node** link = &buckets_[bucketOf(node->key.hash)];
  while (*link != node) link = &(*link)->next;
  *link = node->next;
  pool_.giveBack(node);
  --count_;
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::clear() {
  std::fill_n(buckets_, bucketCount_, nullptr);
  pool_.clear();
  count_ = 0;
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::reserve(std::uint64_t wanted) {
  const std::uint64_t newBucketCount = bucketCountFor(std::max(wanted, count_));
  if (newBucketCount != bucketCount_) rehash(newBucketCount);
}

template <class Entry>
void HashTable<Entry>::rehash(std::uint64_t newBucketCount) {
  Node** const buckets = VornGcAllocator<Node*>().allocate(newBucketCount);
  std::fill_n(buckets, newBucketCount, nullptr);
  buckets_ = buckets;
  bucketCount_ = newBucketCount;
  ++changes_;
  // The old chains are not needed: the pool knows all nodes, and in the order of memory.
  Cursor cursor = walk();
  while (Node* const node = cursor.next()) {
    Node*& bucket = buckets_[bucketOf(node->key.hash)];
    node->next = bucket;
    bucket = node;
  }
}

template <class Entry>
auto HashTable<Entry>::findByUserCode(const NativeCollectionKey& key) const -> Place {
  const PendingErrorWatch watch;
  UserComparedKey compared;
  for (int restarts = 0; restarts <= kMaxRestarts; ++restarts) {
    if (count_ == 0) return {};
    const std::uint64_t changesBefore = changes_;
    Node* node = buckets_[bucketOf(key.hash)];
    for (; node != nullptr; node = node->next) {
      const bool equal = NativeCollectionKeyEqual()(key, compared.copy(node->key));
      if (watch.raised()) return {nullptr, true};
      if (changes_ != changesBefore) break;
      if (equal) return {node, false};
    }
    if (changes_ == changesBefore) return {};
  }
  return {findIdentical(key), false};
}

template <class Entry>
auto HashTable<Entry>::findIdentical(const NativeCollectionKey& key) const -> Node* {
  if (count_ == 0) return nullptr;
  Node* node = buckets_[bucketOf(key.hash)];
  while (node != nullptr && !identicalKeys(node->key, key)) node = node->next;
  return node;
}

template class HashTable<NativeMapEntry>;
template class HashTable<void*>;

}  // namespace vorn::collections
