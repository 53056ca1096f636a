// Records of maps and sets without their objects, for tests of the tables alone.
#pragma once

#include <new>

#include "collections/core/port/roots.h"
#include "collections/keyed/keyed_validation.h"
#include "tests/keyed/keyed_cases.h"

namespace vorn::tests {

// A record in a rooted collected block of its own.
template <class Record>
class CollectedRecord {
 public:
  CollectedRecord() : block_(Vorn_gcAlloc(sizeof(Record))) { new (block_.get()) Record(); }
  Record& operator*() const { return *static_cast<Record*>(block_.get()); }
  Record* operator->() const { return static_cast<Record*>(block_.get()); }

 private:
  Handle block_;
};

// A table inside a map's record that uses it.
template <bool kHashed>
struct InMap {
  static constexpr bool hashed = kHashed;
  static auto& of(MapData& map) {
    if constexpr (kHashed) {
      return map.hash;
    } else {
      return map.ordered;
    }
  }
};
using Hashed = InMap<true>;
using Ordered = InMap<false>;

// Fixture: a table that a test uses as the natives do, and that is whole when the test ends.
template <class Choice>
class TableTest : public RuntimeTest {
 protected:
  void SetUp() override { map_->hashed = Choice::hashed; }
  void TearDown() override {
    expectWhole();
    RuntimeTest::TearDown();
  }

  [[nodiscard]] auto& table() const { return Choice::of(*map_); }
  void expectWhole() const { ASSERT_EQ(collections::validateMapData(*map_), ""); }

  void put(const NativeCollectionKey& key, void* value) const {
    const Handle keep(value);
    auto place = table().find(key);
    if (place.node != nullptr) {
      place.node->entry.value = value;
      return;
    }
    table().makeRoom(place, key);
    table().insert(place, key, {nullptr, value});
  }
  void put(std::int64_t key, std::int64_t value) const { put(integerCollectionKey(key), number(value)); }
  void put(std::int64_t key) const { put(key, key); }
  bool remove(const NativeCollectionKey& key) const {
    const auto place = table().find(key);
    if (place.node == nullptr) return false;
    table().remove(place);
    return true;
  }
  bool remove(std::int64_t key) const { return remove(integerCollectionKey(key)); }
  // The integer keys, in the order of the table.
  [[nodiscard]] std::vector<std::int64_t> keys() const {
    std::vector<std::int64_t> result;
    table().forEach([&](const NativeCollectionKey& key, const NativeMapEntry&) {
      result.push_back(static_cast<std::int64_t>(key.words[0]));
    });
    return result;
  }

  CollectedRecord<MapData> map_;
};

// Small pseudo-random numbers, the same in every run (Marsaglia, "Xorshift RNGs", 2003).
class Randoms {
 public:
  explicit Randoms(std::uint64_t seed) : state_(seed) {}
  std::uint64_t below(std::uint64_t bound) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return (state_ >> 11) % bound;
  }

 private:
  std::uint64_t state_;
};

// A key whose hash is one of a few, so that chains grow long.
inline NativeCollectionKey crowdedKey(std::int64_t value) {
  NativeCollectionKey key = integerCollectionKey(value);
  key.hash = static_cast<std::uint32_t>(value % 5) * 0x30000000U;
  return key;
}

}  // namespace vorn::tests
