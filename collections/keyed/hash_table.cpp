#include "collections/keyed/hash_table.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <stdexcept>

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
  ChainLink<Node>& bucket = buckets_[bucketOf(node->key.hash)];
  Node* chain = bucket.first();
  Node** link = &chain;
  while (*link != node) link = &(*link)->next;
  *link = node->next;
  bucket = ChainLink<Node>(chain);
  pool_.giveBack(node);
  --count_;
  ++changes_;
}

template <class Entry>
void HashTable<Entry>::clear() {
  std::fill_n(buckets_, bucketCount_, ChainLink<Node>());
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
  // A bucket count has 32 bits, so that its bytes can be counted.
  auto* const buckets = static_cast<ChainLink<Node>*>(Vorn_gcAllocAtomic(newBucketCount * sizeof(ChainLink<Node>)));
  if (buckets == nullptr) throw std::bad_alloc();
  std::fill_n(buckets, newBucketCount, ChainLink<Node>());
  buckets_ = buckets;
  bucketCount_ = newBucketCount;
  ++changes_;
  // The old chains are not needed: the pool knows all nodes, and in the order of memory.
  Cursor cursor = walk();
  while (Node* const node = cursor.next()) {
    ChainLink<Node>& bucket = buckets_[bucketOf(node->key.hash)];
    node->next = bucket.first();
    bucket = bucket.prepended(node);
  }
}

template <class Entry>
auto HashTable<Entry>::findByUserCode(const NativeCollectionKey& key) const -> Place {
  const PendingErrorWatch watch;
  UserComparedKey compared;
  for (int restarts = 0; restarts <= kMaxRestarts; ++restarts) {
    if (count_ == 0) return {};
    const std::uint64_t changesBefore = changes_;
    const ChainLink<Node> chain = buckets_[bucketOf(key.hash)];
    Node* node = chain.mayHold(key.hash) ? chain.first() : nullptr;
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
  Node* node = buckets_[bucketOf(key.hash)].first();
  while (node != nullptr && !identicalKeys(node->key, key)) node = node->next;
  return node;
}

template class HashTable<NativeMapEntry>;
template class HashTable<void*>;

}  // namespace vorn::collections
