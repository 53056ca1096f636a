// Maps and sets as they were at one moment, and which of their keys are the same.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "collections/core/port/collection_key.h"
#include "collections/core/port/roots.h"

namespace vorn::runtime {

// The keys of a map or set and the values of a map, in storage order. What the keys borrow stays alive with them. Those
// of a sorted map have no hashes.
struct KeyedSnapshot {
  bool hashed = true;
  collections::RootedVector<NativeCollectionKey> keys;
  collections::HandleVector values;
};

// Fill an empty snapshot under the collection's lock. Allocate; std::bad_alloc.
void snapshotMap(void* map, KeyedSnapshot& snapshot);
void snapshotSet(void* set, KeyedSnapshot& snapshot);

// The number of entries of a map or elements of a set, read under its lock.
std::size_t sizeOfMap(void* map);
std::size_t sizeOfSet(void* set);

enum class Matching : unsigned char { Complete, Missing, Raised };

// Finds for each of the left keys its equal among the right ones, where no right key serves twice; `places` gets their
// positions, in the order of the left keys. Two sorted maps are compared place by place; only where that cannot decide,
// since keys of theirs have no order but by address, and for a sorted map beside a hashed one are hashes made, which
// the snapshot keeps. May run user equality, order and hashing, which may raise; holds no lock. May allocate.
Matching matchKeys(KeyedSnapshot& left, KeyedSnapshot& right, std::vector<std::size_t>& places);

}  // namespace vorn::runtime
