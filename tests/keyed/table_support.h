// Records of maps and sets without their objects, for tests of the tables alone.
#pragma once

#include <new>

#include "collections/core/port/roots.h"
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
