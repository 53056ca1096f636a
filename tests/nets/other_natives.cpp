#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include "tests/nets/catalogue.h"
#include "tests/support/error_texts.h"

namespace vorn::tests::nets {

using enum Role;

std::vector<Native> arrayNatives() {
  return {
      native<vorn_collections_Array_ctor, Receiver, Count>().on(kArrays),
      native<vorn_collections_Array_copyCtor, Receiver, Other>().on(kArrays).mayStopHalfway().locksBoth(),
      native<vorn_collections_Array_size, Receiver>()
          .on(kArrays)
          .nullGives("0")
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Array_rawSize, Receiver>()
          .on(kArrays)
          .nullGives("0")
          .neverLocks()
          .onlyReads()
          .givesAddress()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Array_rawDataPtr, Receiver>()
          .on(kArrays)
          .nullGives("null")
          .neverLocks()
          .onlyReads()
          .givesAddress()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Array_i64DataPtr, Receiver>()
          .on(kArrays)
          .nullGives("no pointer")
          .neverLocks()
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Array_f64DataPtr, Receiver>()
          .on(kArrays)
          .nullGives("no pointer")
          .neverLocks()
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Array_getInt, Receiver, Index>().on(kArrays).nullGives("0").onlyReads(),
      native<vorn_collections_Array_getDouble, Receiver, Index>().on(kArrays).nullGives("0").onlyReads(),
      native<vorn_collections_Array_setInt, Receiver, Index, Number>().on(kArrays),
      native<vorn_collections_Array_setDouble, Receiver, Index, Real>().on(kArrays),
      native<vorn_collections_Array_setBool, Receiver, Index, Truth>().on(kArrays),
      native<vorn_collections_Array_operator_index, Receiver, Index>().on(kArrays).nullGives("null").onlyReads(),
      native<vorn_collections_Array_operator_index_eq, Receiver, Index, Value>().on(kArrays),
      native<vorn_collections_Array_count, Receiver, Value>()
          .on(kArrays)
          .nullGives("0")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_indexOf, Receiver, Value, Start>()
          .on(kArrays)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_lastIndexOf, Receiver, Value, Start>()
          .on(kArrays)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_operator_in, Receiver, Value>()
          .on(kArrays)
          .nullGives("false")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_sumI64Fast, Receiver>().on(kArrays).nullGives("0").onlyReads(),
      native<vorn_collections_Array_sumF64Fast, Receiver>().on(kArrays).nullGives("0").onlyReads(),
      native<vorn_collections_Array_operator_eq, Receiver, Other>()
          .on(kArrays)
          .nullGives("false")
          .runs(kEqualityHook)
          .onlyReads()
          .locksBoth()
          .neverRaises(),
      native<vorn_collections_Array_operator_ne, Receiver, Other>()
          .on(kArrays)
          .nullGives("true")
          .runs(kEqualityHook)
          .onlyReads()
          .locksBoth()
          .neverRaises(),
      native<vorn_collections_Array_sort, Receiver>().on(kArrays).runs(kEqualityHook | kOrderHook).neverRaises(),
      native<vorn_collections_Array_sortNew, Receiver>()
          .on(kArrays)
          .nullGives("null")
          .runs(kEqualityHook | kOrderHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_reverse, Receiver>().on(kArrays).neverAllocates().neverRaises(),
      native<vorn_collections_Array_reverseNew, Receiver>().on(kArrays).nullGives("null").onlyReads().neverRaises(),
      native<vorn_collections_Array_slice, Receiver, Bound, Bound, Step, Mark, Mark>()
          .on(kArrays)
          .nullGives("null")
          .onlyReads(),
      native<vorn_collections_Array_sliceAssign, Receiver, Bound, Bound, Step, Mark, Mark, Other>()
          .on(kArrays)
          .mayStopHalfway()
          .locksBoth(),
      native<vorn_collections_Array_concat, Receiver, Other>().on(kArrays).nullGives("null").onlyReads().locksBoth(),
      native<Vorn_stringFromCharArray, Receiver>().on(kArrays).nullGives("String ").onlyReads(),
      native<Vorn_stringFromCodeUnitArray, Receiver>().on(kArrays).nullGives("String ").onlyReads(),
      native<vorn_collections_Array_toString, Receiver>()
          .on(kArrays)
          .nullGives("String f:[]")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Array_join, Receiver, Separator>()
          .on(kArrays)
          .nullGives("String ")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
  };
}

std::vector<Native> keyedNatives() {
  constexpr unsigned kKeyHooks = kEqualityHook | kOrderHook | kHashHook;
  constexpr unsigned kElementHooks = kEqualityHook | kHashHook;
  return {
      native<vorn_collections_Map_put, Receiver, Key, Value>().on(kMaps).runs(kKeyHooks),
      native<vorn_collections_Map__set, Receiver, Key, Value>().on(kMaps).runs(kKeyHooks),
      native<vorn_collections_Map_operator_index_eq, Receiver, Key, Value>().on(kMaps).runs(kKeyHooks),
      native<vorn_collections_Map__get, Receiver, Key>()
          .on(kMaps)
          .nullGives("null")
          .runs(kKeyHooks)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Map_operator_index, Receiver, Key>()
          .on(kMaps)
          .nullGives("null")
          .runs(kKeyHooks)
          .onlyReads(),
      native<vorn_collections_Map_tryGet, Receiver, Key, Role::Slot>()
          .on(kMaps)
          .nullGives("false, and null")
          .runs(kKeyHooks)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Map_operator_in, Receiver, Key>()
          .on(kMaps)
          .nullGives("false")
          .runs(kKeyHooks)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Map_remove, Receiver, Key>()
          .on(kMaps)
          .nullGives("false")
          .runs(kKeyHooks)
          .canDoWithout()
          .neverRaises(),
      native<vorn_collections_Map_containsValue, Receiver, Value>()
          .on(kMaps)
          .nullGives("false")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Map_keys, Receiver>().on(kMaps).nullGives("null").onlyReads().neverRaises(),
      native<vorn_collections_Map_values, Receiver>().on(kMaps).nullGives("null").onlyReads().neverRaises(),
      native<vorn_collections_Map_items, Receiver>().on(kMaps).nullGives("null").onlyReads().neverRaises(),
      native<vorn_collections_Map_clear, Receiver>().on(kMaps).neverAllocates().neverRaises(),
      native<vorn_collections_Map_reserve, Receiver, Count>().on(kMaps).neverRaises(),
      native<vorn_collections_Map_size, Receiver>().on(kMaps).nullGives("0").onlyReads().neverAllocates().neverRaises(),
      native<vorn_collections_Map_operator_eq, Receiver, Other>()
          .on(kMaps)
          .nullGives("false")
          .runs(kElementHooks)
          .onlyReads()
          .locksBoth()
          .neverRaises(),
      native<vorn_collections_Map_operator_ne, Receiver, Other>()
          .on(kMaps)
          .nullGives("true")
          .runs(kElementHooks)
          .onlyReads()
          .locksBoth()
          .neverRaises(),
      native<vorn_collections_Map_toString, Receiver>()
          .on(kMaps)
          .nullGives("String {}")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_HashSet_add, Receiver, Value>().on(kSets).runs(kElementHooks).neverRaises(),
      native<vorn_collections_HashSet_remove, Receiver, Value>()
          .on(kSets)
          .nullGives("false")
          .runs(kElementHooks)
          .canDoWithout()
          .neverRaises(),
      native<vorn_collections_HashSet_operator_in, Receiver, Value>()
          .on(kSets)
          .nullGives("false")
          .runs(kElementHooks)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_HashSet_count, Receiver, Value>()
          .on(kSets)
          .nullGives("0")
          .runs(kElementHooks)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_HashSet_operator_index, Receiver, Index>().on(kSets).nullGives("null").onlyReads(),
      native<vorn_collections_HashSet_items, Receiver>().on(kSets).nullGives("ArrayList []").onlyReads().neverRaises(),
      native<vorn_collections_HashSet_clear, Receiver>().on(kSets).neverAllocates().neverRaises(),
      native<vorn_collections_HashSet_reserve, Receiver, Count>().on(kSets).neverRaises(),
      native<vorn_collections_HashSet_size, Receiver>()
          .on(kSets)
          .nullGives("0")
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_HashSet_toString, Receiver>()
          .on(kSets)
          .nullGives("String {}")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
  };
}

std::vector<Native> immutableNatives() {
  return {
      native<vorn_collections_ImmutableList_ctor, Receiver, Other>().on(kImmutables).constructs().locksBoth(),
      native<vorn_collections_ImmutableList_size, Receiver>()
          .on(kReadableLists)
          .nullGives("0")
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_ImmutableList_operator_index, Receiver, Index>()
          .on(kReadableLists)
          .nullGives("null")
          .onlyReads(),
      native<vorn_collections_ImmutableList_operator_index_eq, Receiver, Index, Value>()
          .on(kImmutables)
          .nullRaises(error_texts::kImmutableListReadOnly)
          .neverLocks()
          .onlyReads(),
      native<vorn_collections_ImmutableList_indexOf, Receiver, Value, Start>()
          .on(kReadableLists)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ImmutableList_lastIndexOf, Receiver, Value, Start>()
          .on(kReadableLists)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ImmutableList_sortNew, Receiver>()
          .on(kReadableLists)
          .nullGives("null")
          .runs(kEqualityHook | kOrderHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ImmutableList_toString, Receiver>()
          .on(kImmutables)
          .nullGives("String i:[]")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_Tuple_ctor, Receiver, Other>().on(kTuples).constructs().locksBoth(),
      native<vorn_collections_Tuple_size, Receiver>()
          .on(kTuples)
          .nullGives("0")
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_Tuple_operator_index, Receiver, Index>().on(kTuples).nullGives("null").onlyReads(),
      native<vorn_collections_Tuple_operator_index_eq, Receiver, Index, Value>()
          .on(kTuples)
          .nullRaises(error_texts::kTupleReadOnly)
          .onlyReads(),
      native<vorn_collections_Tuple_toString, Receiver>()
          .on(kTuples)
          .nullGives("String ()")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
  };
}

const std::vector<Native>& allNatives() {
  static const std::vector<Native> all = [] {
    std::vector<Native> natives;
    for (const auto part :
         {listElementNatives, listConstructionNatives, listBulkNatives, arrayNatives, keyedNatives, immutableNatives}) {
      for (Native& native : part()) natives.push_back(std::move(native));
    }
    return natives;
  }();
  return all;
}

}  // namespace vorn::tests::nets
