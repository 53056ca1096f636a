// The chained hash table of hash maps and sets.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - `buckets_` is null, with a bucket count of 0, until the first insertion or reserve; then the bucket count is one
//   of
//     a fixed sequence of primes and at least the number of elements (a maximum load factor of 1);
//   - the node of a key hangs in the chain of bucketOf(key.hash), once, and the bucket's link says no more and no less
//     about its chain than that;
//   - all nodes are the pool's, and the pool's nodes in use are those in the chains;
//   - `changes` differs after every change of the chains or of the bucket array.
// A table lives in a record inside its object's block, starts empty without allocating, and is never destroyed.
//
// Iteration order is the order of the nodes in memory: elements in the order of insertion, where each insertion takes
// the place that was vacated last, if there is one. It is the same for every walk over an unchanged table, and survives
// a growing bucket array. Walking costs a step per place, vacant ones included.
//
// Nothing in this file locks. What is defined here may be used by the runtime; the rest only by this library.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collections/core/collection_key.h"
#include "collections/keyed/chain_link.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/node_pool.h"

namespace vorn::collections {

template <class Entry>
class HashTable {
 public:
  static constexpr float kMaxLoadFactor = 1.0F;

  struct Node {
    Node* next;
    NativeCollectionKey key;
    Entry entry;

    Node*& poolLink() { return next; }
  };
  using Cursor = typename NodePool<Node>::Cursor;

  HashTable() = default;
  HashTable(const HashTable&) = delete;
  HashTable& operator=(const HashTable&) = delete;

  [[nodiscard]] std::uint64_t count() const { return count_; }
  [[nodiscard]] std::uint64_t bucketCount() const { return bucketCount_; }
  [[nodiscard]] std::uint64_t changes() const { return changes_; }

  // Calls visit(key, entry) for every element in iteration order. It must not change the table.
  template <class Visit>
  void forEach(Visit visit) const {
    Cursor cursor = walk();
    while (const Node* node = cursor.next()) visit(node->key, node->entry);
  }

  // A cursor before the first node in iteration order.
  [[nodiscard]] Cursor walk() const { return Cursor(pool_); }

  // The node of a key that compares without user code, or null. Does not allocate.
  [[nodiscard]] Node* findPlain(const NativeCollectionKey& key) const {
    if (count_ == 0) return nullptr;
    const KeyWords words(key);
    const bool longText = key.tag == NativeCollectionKey::Tag::LongText;
    const ChainLink<Node> chain = buckets_[bucketOf(words.hash())];
    if (!chain.mayHold(words.hash())) return nullptr;
    for (Node* node = chain.first(); node != nullptr; node = node->next) {
      if (words.match(node->key)) return node;
      if (longText && NativeCollectionKeyEqual()(key, node->key)) return node;
    }
    return nullptr;
  }

  // What a search came to: `node` is null when the key is absent, or when user code raised an error meanwhile
  // (`failed`).
  struct Place {
    Node* node = nullptr;
    bool failed = false;
  };

  // The node of a key. For a key that compares by user code, that code may change this very table: the search then
  // starts again, and after kMaxRestarts times takes identity for equality, so that it ends. The result holds for the
  // table as it is on return.
  [[nodiscard]] Place find(const NativeCollectionKey& key) const {
    if (!key.comparesByUserCode()) return {findPlain(key), false};
    return findByUserCode(key);
  }

  // Makes the next insert() possible: a free node, and buckets for one element more. Allocates; throws std::bad_alloc
  // or std::length_error with the elements unchanged.
  void makeRoom() {
    pool_.makeRoom();
    if (count_ >= bucketCount_) rehash(bucketCountFor(count_ + 1));
  }

  // Links a new element after find() did not find its key and makeRoom() made room. Neither allocates nor runs user
  // code. The place is of no use here; it makes the call the same as an ordered table's.
  void insert(const Place& /*place*/, const NativeCollectionKey& key, const Entry& entry) {
    Node* const node = pool_.take();
    ChainLink<Node>& bucket = buckets_[bucketOf(key.hash)];
    node->next = bucket.first();
    KeyWords(key).storeTo(node->key);
    node->entry = entry;
    bucket = bucket.prepended(node);
    ++count_;
    ++changes_;
  }

  // Removes a node of this table. Neither allocates nor runs user code.
  void remove(Node* node);

  // Empties the table and leaves the nodes to the collector; the bucket array stays for the elements that follow.
  void clear();

  // Makes the bucket array the one for `wanted` elements, or for those present when these are more. Throws
  // std::length_error for a number beyond all bucket counts and std::bad_alloc, with nothing changed. Allocates.
  void reserve(std::uint64_t wanted);

  // The smallest bucket count for that many elements. Throws std::length_error beyond the largest.
  static std::uint64_t bucketCountFor(std::uint64_t elements);

  // A hash spread over [0, bucketCount) by multiplication instead of division (Lemire, "Fast random integer generation
  // in an interval", 2019).
  [[nodiscard]] std::uint64_t bucketOf(std::uint32_t hash) const { return (hash * bucketCount_) >> 32; }

  [[nodiscard]] ChainLink<Node> bucket(std::uint64_t index) const { return buckets_[index]; }
  [[nodiscard]] bool hasBuckets() const { return buckets_ != nullptr; }
  [[nodiscard]] const NodePool<Node>& pool() const { return pool_; }

 private:
  void rehash(std::uint64_t newBucketCount);
  [[nodiscard]] Place findByUserCode(const NativeCollectionKey& key) const;
  [[nodiscard]] Node* findIdentical(const NativeCollectionKey& key) const;

  ChainLink<Node>* buckets_ = nullptr;  // in pointer-free memory
  std::uint64_t bucketCount_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t changes_ = 0;
  NodePool<Node> pool_;
};

}  // namespace vorn::collections
