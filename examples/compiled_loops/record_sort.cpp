#include <vorn/collections/array_list.h>
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <utility>
#include <vector>

#include "workloads.h"

namespace compiled_loops {
namespace {

std::int32_t keyAt(long long at) { return static_cast<std::int32_t>(at * 7919 % 1'000'003); }

// The records in the three ways: key(i) and swap(i, j) are all that the sort does to them.
class NativeRecords {
 public:
  explicit NativeRecords(long long size)
      : keys_(vorn_object_new("ArrayList<Int>")), names_(vorn_object_new("ArrayList")) {
    // The first is no number, so that the list keeps handles.
    for (long long i = 0; i < size; ++i) {
      vorn_collections_ArrayList_addInt(keys_, keyAt(i));
      const vorn::Handle name = i == 0 ? vorn_string_new("first", 5) : vorn_box_int(keyAt(i));
      vorn_collections_ArrayList_add(names_, name);
    }
  }
  [[nodiscard]] long long key(long long i) const { return vorn_collections_ArrayList_getInt(keys_, i); }
  void swap(long long i, long long j) {
    const auto key = static_cast<std::int32_t>(vorn_collections_ArrayList_getInt(keys_, i));
    const auto other = static_cast<std::int32_t>(vorn_collections_ArrayList_getInt(keys_, j));
    vorn_collections_ArrayList_operator_index_eq(keys_, i, vorn_box_int(other));
    vorn_collections_ArrayList_operator_index_eq(keys_, j, vorn_box_int(key));
    void* const name = vorn_collections_ArrayList_operator_index(names_, i);
    vorn_collections_ArrayList_operator_index_eq(names_, i, vorn_collections_ArrayList_operator_index(names_, j));
    vorn_collections_ArrayList_operator_index_eq(names_, j, name);
  }

 protected:
  vorn::Handle keys_;
  vorn::Handle names_;
};

class InlinedRecords : NativeRecords {
 public:
  explicit InlinedRecords(long long size) : NativeRecords(size), keyList_(keys_), nameList_(names_) {}
  [[nodiscard]] long long key(long long i) const { return vorn_proven_ArrayList_getInt(keyList_, i, VORN_INT); }
  void swap(long long i, long long j) {
    const long long key = vorn_proven_ArrayList_getInt(keyList_, i, VORN_INT);
    vorn_proven_ArrayList_setInt(keyList_, i, vorn_proven_ArrayList_getInt(keyList_, j, VORN_INT), VORN_INT);
    vorn_proven_ArrayList_setInt(keyList_, j, key, VORN_INT);
    void* const name = vorn_proven_ArrayList_operator_index(nameList_, i);
    vorn_proven_ArrayList_operator_index_eq(nameList_, i, vorn_proven_ArrayList_operator_index(nameList_, j));
    vorn_proven_ArrayList_operator_index_eq(nameList_, j, name);
  }

 private:
  void* keyList_;
  void* nameList_;
};

class StandardRecords {
 public:
  explicit StandardRecords(long long size) {
    for (long long i = 0; i < size; ++i) {
      keys_.push_back(keyAt(i));
      names_.push_back(this);
    }
  }
  [[nodiscard]] long long key(long long i) const { return keys_.at(static_cast<std::size_t>(i)); }
  void swap(long long i, long long j) {
    std::swap(keys_.at(static_cast<std::size_t>(i)), keys_.at(static_cast<std::size_t>(j)));
    std::swap(names_.at(static_cast<std::size_t>(i)), names_.at(static_cast<std::size_t>(j)));
  }

 private:
  std::vector<std::int32_t> keys_;
  std::vector<void*> names_;
};

// Lets the record at `at` sink to its place in a heap of the size.
template <class Records>
void sink(Records& records, long long at, long long size) {
  for (long long child = 2 * at + 1; child < size; child = 2 * at + 1) {
    if (child + 1 < size && records.key(child) < records.key(child + 1)) ++child;
    if (records.key(at) >= records.key(child)) return;
    records.swap(at, child);
    at = child;
  }
}

template <class Records>
std::uint64_t sorted(long long size) {
  Records records(size);
  for (long long at = size / 2; at-- > 0;) sink(records, at, size);
  for (long long last = size - 1; last > 0; --last) {
    records.swap(0, last);
    sink(records, 0, last);
  }
  std::uint64_t result = 0;
  for (long long i = 0; i < size; ++i) result = folded(result, static_cast<std::uint64_t>(records.key(i)));
  return result;
}

}  // namespace

std::uint64_t recordSortByNatives(long long size) { return sorted<NativeRecords>(size); }
std::uint64_t recordSortInlined(long long size) { return sorted<InlinedRecords>(size); }
std::uint64_t recordSortStandard(long long size) { return sorted<StandardRecords>(size); }

}  // namespace compiled_loops
