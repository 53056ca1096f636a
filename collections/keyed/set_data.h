// The storage record of hash sets, plain and synchronised.
//
// Invariants, checked by validateSetData (keyed_validation.h): those of the table; `synchronized` and `mutex` never
// change after creation, and a synchronised set has a mutex. An element's entry is the handle that was added last for
// its key, and may be null.
// The record belongs to its object and lives inside the object's block; it starts empty without allocating and is never
// destroyed. Only natives lock; nothing in this file does.
#pragma once

#include <pthread.h>

#include <cstdint>

#include "collections/core/record_lock.h"
#include "collections/keyed/hash_table.h"
#include "collections/keyed/table_concept.h"

struct SetData {
  void* runtimeHeader[2] = {};  // the runtime's words; never read or written here
  bool synchronized = false;
  vorn::collections::HashTable<void*> table;
  pthread_mutex_t* mutex = nullptr;

  SetData() = default;
  SetData(const SetData&) = delete;
  SetData& operator=(const SetData&) = delete;

  // Number of elements.
  [[nodiscard]] std::uint64_t count() const { return table.count(); }

  // Calls visit(key, element) for every element in iteration order. It must not change the set.
  template <class Visit>
  void forEach(Visit visit) const {
    table.forEach(visit);
  }
};
static_assert(vorn::collections::KeyedTable<vorn::collections::HashTable<void*>, void*>);
static_assert(sizeof(vorn::collections::HashTable<void*>::Node) == 32, "two elements share a cache line");

using SetDataLock = vorn::collections::RecordLock<SetData>;
