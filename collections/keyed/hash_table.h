// The chained hash table of hash maps and sets.
//
// Elements stand in places that are numbered in the order of insertion (entry_chunks.h). Which places may hold a key,
// the tags of the places say in a table of up to 16 elements (place_tags.h), and in a larger one buckets of one cache
// line, with a prime policy (bucket_lines.h). Iteration is a walk over the places.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - places below `places_` have been given out. The first and the last of those that hold an element are `first_` and
//     `places_` - 1; a table without elements has no places. Each other one holds an element or is vacant: zero but for
//     its tag, kVacant, so that it keeps no object alive;
//   - the bucket count is 0 or one of a fixed sequence, and elementLimit() of it at least the number of elements;
//   - without buckets no place has a number beyond the tags', those of the elements are of their hashes, and all others
//     are 0;
//   - the bucket of an element's hash has its place, with its tag, once, and buckets have nothing else;
//   - beyond a few places more than half of the places hold elements, and elements take more than a quarter of the
//     memory there is for them, as far as memory could be had to move them;
//   - `changes` differs after every change of the elements' places, of the buckets or of the memory behind them.
// A table lives in a record inside its object's block, which it points into, starts empty without allocating, and is
// never destroyed.
//
// Iteration order is the order of insertion among what is present; an element whose entry is replaced stays where it
// is. No growing or compacting changes that. A walk passes at most two places an element, and so does the way to the
// n-th element from the nearer end. Taking all elements away from either end costs a constant number of steps each.
//
// A std::unordered_map with the collector's allocator takes 100,014 blocks for 100,000 elements, one a node, where this
// takes 279; it comes in no order that a program could rely on, and holds a node in its own frame while it allocates
// buckets, where the collector need not look.
//
// Nothing in this file locks. What is defined here may be used by the runtime; the rest only by this library.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "collections/core/port/collection_key.h"
#include "collections/keyed/bucket_lines.h"
#include "collections/keyed/entry_chunks.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/place_tags.h"

namespace vorn::collections {

template <class Entry>
class HashTable {
 public:
  // Of elements per bucket.
  static constexpr float kMaxLoadFactor = 6.0F;

  // The tag of a vacant place. No key that the runtime makes has it.
  static constexpr auto kVacant = static_cast<NativeCollectionKey::Tag>(0xFF);

  struct Node {
    NativeCollectionKey key;
    Entry entry;
  };
  using Chunks = EntryChunks<Node>;

  HashTable() = default;
  HashTable(const HashTable&) = delete;
  HashTable& operator=(const HashTable&) = delete;

  [[nodiscard]] std::uint64_t count() const { return count_; }
  [[nodiscard]] std::uint64_t changes() const { return changes_; }
  // The same where it stands, for compiled code that walks over the elements.
  [[nodiscard]] const std::uint64_t& changesCounter() const { return changes_; }

  // Walks the elements in iteration order.
  class Cursor {
   public:
    explicit Cursor(const HashTable& table) : table_(&table), place_(table.first_) {}

    // The next node, or null after the last. The table must not have changed since the cursor was made.
    Node* next() {
      while (place_ < table_->places_) {
        Node& node = table_->at(place_++);
        if (node.key.tag != kVacant) return &node;
      }
      return nullptr;
    }

   private:
    const HashTable* table_;
    std::uint32_t place_;
  };

  // A cursor before the first node in iteration order.
  [[nodiscard]] Cursor walk() const { return Cursor(*this); }

  // Calls visit(key, entry) for every element in iteration order. It must not change the table.
  template <class Visit>
  void forEach(Visit visit) const {
    for (std::uint32_t place = first_; place != places_;) {
      const Node* node = &at(place);
      for (std::uint64_t left = chunks_.runFrom(place, places_); left != 0; --left, ++place, ++node) {
        if (node->key.tag != kVacant) visit(node->key, node->entry);
      }
    }
  }

  // The node at a position below the count, in iteration order. At once when no place is vacant between the first
  // element and the last, else by a walk from the nearer end.
  [[nodiscard]] Node* nth(std::uint64_t position) const;

  // The node of a key that compares without user code, or null. Does not allocate.
  [[nodiscard]] Node* findPlain(const NativeCollectionKey& key) const { return locatePlain(key).node; }

  // The same for a key whose equality its words decide.
  template <class Words>
  [[nodiscard]] Node* findWords(const Words words) const {
    Node* result = nullptr;
    Place place;
    visitCandidates(words.hash(), place, [&](std::uint32_t candidate) {
      Node& node = chunks_.at(candidate);
      if (!words.match(node.key)) return false;
      result = &node;
      return true;
    });
    return result;
  }

  // What a search came to: `node` is null when the key is absent, or when user code raised an error meanwhile
  // (`failed`).
  struct Place {
    Node* node = nullptr;
    BucketLine* bucket = nullptr;  // the first line of the key's bucket, where there are buckets
    std::uint32_t place = 0;       // of the node
    bool failed = false;
  };

  // The same with what an insertion needs besides.
  template <class Words>
  [[nodiscard]] Place locateWords(const Words words) const {
    Place result;
    visitCandidates(words.hash(), result, [&](std::uint32_t candidate) {
      Node& node = chunks_.at(candidate);
      if (!words.match(node.key)) return false;
      result.node = &node;
      result.place = candidate;
      return true;
    });
    return result;
  }

  // The node of a key. For a key that compares by user code, that code may change this very table: the search then
  // starts again, and after kMaxRestarts times takes identity for equality, so that it ends. The result holds for the
  // table as it is on return.
  [[nodiscard]] Place find(const NativeCollectionKey& key) const {
    if (!key.comparesByUserCode()) return locatePlain(key);
    return findByUserCode(key);
  }

  // Makes the next insert() of a key that find() did not find possible, and keeps what it gave up to date. Allocates;
  // throws std::bad_alloc or std::length_error with the elements unchanged.
  void makeRoom(Place& absent, const NativeCollectionKey& key) {
    if (places_ == chunks_.capacity()) [[unlikely]]
      makePlace();
    if (count_ == elementLimit(lines_.bucketCount())) [[unlikely]] {
      rehash(bucketCountFor(count_ + 1));
      absent.bucket = lines_.firstLine(key.hash);
    }
    if (absent.bucket == nullptr) {
      if (places_ == PlaceTags::kPlaces) moveTogether();
    } else if (!lines_.hasRoomIn(*absent.bucket)) [[unlikely]] {
      makeFurtherLines();
    }
  }

  // Adds a new element after find() did not find its key and makeRoom() made room. Neither allocates nor runs user
  // code.
  void insert(const Place& absent, const NativeCollectionKey& key, const Entry& entry) {
    Node& node = chunks_.at(places_);
    KeyWords(key).storeTo(node.key);
    node.entry = entry;
    if (absent.bucket == nullptr) {
      lines_.tags().tags[places_] = PlaceTags::tagOf(key.hash);
    } else {
      lines_.addTo(*absent.bucket, key.hash, places_);
    }
    ++places_;
    ++count_;
    ++changes_;
  }

  // Removes the element that find() found. May move the others to give memory back, for which it may allocate; where
  // there is no memory it does without. Runs no user code.
  void remove(const Place& found);

  // Empties the table and leaves the memory to the collector, but for a small number of buckets.
  void clear();

  // Makes the bucket count the one for `wanted` elements, or for those present when these are more. Throws
  // std::length_error for a number beyond all bucket counts and std::bad_alloc, with nothing changed. Allocates.
  void reserve(std::uint64_t wanted);

  // The smallest bucket count for that many elements; 0 for those of a small table. Throws std::length_error for more than a table can have.
  static std::uint64_t bucketCountFor(std::uint64_t elements);

  // How many elements so many buckets may have.
  static constexpr std::uint64_t elementLimit(std::uint64_t bucketCount) {
    return bucketCount == 0 ? PlaceTags::kPlaces : bucketCount * static_cast<std::uint64_t>(kMaxLoadFactor);
  }

  // For checks and tests.
  [[nodiscard]] std::uint64_t bucketCount() const { return lines_.bucketCount(); }
  [[nodiscard]] const BucketLines& lines() const { return lines_; }
  [[nodiscard]] const Chunks& chunks() const { return chunks_; }
  [[nodiscard]] std::uint32_t firstPlace() const { return first_; }
  [[nodiscard]] std::uint32_t places() const { return places_; }
  [[nodiscard]] Node& at(std::uint32_t place) const { return chunks_.at(place); }

  // Whether removals have left so many places vacant, or so much memory unused, that it is given back.
  [[nodiscard]] bool hasManyGaps() const { return chunks_.capacity() > kFewPlaces && 2 * count_ < places_; }
  [[nodiscard]] bool hasMuchUnused() const {
    return chunks_.capacity() > kFewPlaces && 4 * count_ < chunks_.capacity();
  }

 private:
  static constexpr std::uint64_t kMostPlaces = std::numeric_limits<std::uint32_t>::max();
  static constexpr std::uint64_t kFewPlaces = 16;
  static constexpr std::uint64_t kBucketsKept = 64;

  [[nodiscard]] Place locatePlain(const NativeCollectionKey& key) const {
    const KeyWords words(key);
    const bool longText = key.tag == NativeCollectionKey::Tag::LongText;
    Place result;
    visitCandidates(words.hash(), result, [&](std::uint32_t place) {
      Node& node = chunks_.at(place);
      if (!words.match(node.key) && !(longText && NativeCollectionKeyEqual()(key, node.key))) return false;
      result.node = &node;
      result.place = place;
      return true;
    });
    return result;
  }

  // Calls visit(place) for the places that may hold a key of the hash, until it returns true: it must when it has
  // changed the table. Sets the bucket of what is found or not.
  template <class Visit>
  void visitCandidates(std::uint32_t hash, Place& result, Visit visit) const {
    if (lines_.bucketCount() == 0) {
      for (std::uint32_t places = lines_.tags().placesWith(hash); places != 0; places &= places - 1) {
        if (visit(static_cast<std::uint32_t>(std::countr_zero(places)))) return;
      }
      return;
    }
    const std::uint16_t tag = BucketLine::tagOf(hash);
    result.bucket = lines_.firstLine(hash);
    const BucketLine* line = result.bucket;
    do {
      if (line->visitPlacesWith(tag, visit)) return;
      line = lines_.nextLine(line);
    } while (line != nullptr);
  }

  [[nodiscard]] Place findByUserCode(const NativeCollectionKey& key) const;
  [[nodiscard]] Place findIdentical(const NativeCollectionKey& key) const;
  void makePlace();
  void moveTogether();
  void makeFurtherLines();
  void rehash(std::uint64_t newBucketCount);
  bool fill(BucketLines& lines) const;
  bool closeGaps();
  void giveMemoryBack();
  void vacate(std::uint32_t from, std::uint32_t to);

  BucketLines lines_;
  Chunks chunks_;
  std::uint64_t count_ = 0;
  std::uint64_t changes_ = 0;
  std::uint32_t first_ = 0;
  std::uint32_t places_ = 0;
};

}  // namespace vorn::collections
