#include <vorn/collections/array_list.h>

#include "tests/nets/catalogue.h"
#include "tests/support/error_texts.h"

namespace vorn::tests::nets {

using enum Role;

std::vector<Native> listElementNatives() {
  return {
      native<vorn_collections_ArrayList_add, Receiver, Value>().on(kLists).nullRaises(error_texts::kAddOnNull),
      native<vorn_collections_ArrayList_addInt, Receiver, Number>().on(kLists).neverRaises(),
      native<vorn_collections_ArrayList_addPrimitiveI64, Receiver, Number, TypeName>().on(kLists),
      native<vorn_collections_ArrayList_addPrimitiveDouble, Receiver, Real, TypeName>().on(kLists),
      native<vorn_collections_ArrayList_addPrimitiveBool, Receiver, Truth>().on(kLists).neverRaises(),
      native<vorn_collections_ArrayList_addIntToData, Record, Number>().on(kLists).neverRaises(),
      native<vorn_collections_ArrayList_addAt, Receiver, Index, Value>().on(kLists),
      native<vorn_collections_ArrayList_operator_index, Receiver, Index>()
          .on(kReadableLists)
          .nullGives("null")
          .onlyReads(),
      native<vorn_collections_ArrayList_operator_index_eq, Receiver, Index, Value>().on(kLists),
      native<vorn_collections_ArrayList_getInt, Receiver, Index>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_getIntFast, Receiver, Index>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_getIntFromData, Record, Index>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_getDouble, Receiver, Index>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_removeAt, Receiver, Index>().on(kLists),
      native<vorn_collections_ArrayList_remove, Receiver, Value>()
          .on(kLists)
          .nullGives("false")
          .runs(kEqualityHook)
          .neverRaises(),
      native<vorn_collections_ArrayList_clear, Receiver>().on(kLists).neverAllocates().neverRaises(),
      native<vorn_collections_ArrayList_size, Receiver>()
          .on(kReadableLists)
          .nullGives("0")
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_ArrayList_sizeFast, Receiver>()
          .on(kReadableLists)
          .nullGives("0")
          .neverLocks()
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_ArrayList_count, Receiver, Value>()
          .on(kReadableLists)
          .nullGives("0")
          .runs(kEqualityHook)
          .onlyReads()
          .mayBox()
          .neverRaises(),
      native<vorn_collections_ArrayList_operator_in, Receiver, Value>()
          .on(kReadableLists)
          .nullGives("false")
          .runs(kEqualityHook)
          .onlyReads()
          .mayBox()
          .neverRaises(),
      native<vorn_collections_ArrayList_indexOf, Receiver, Value, Start>()
          .on(kReadableLists)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_lastIndexOf, Receiver, Value, Start>()
          .on(kReadableLists)
          .nullGives("-1")
          .runs(kEqualityHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_sort, Receiver>().on(kLists).runs(kEqualityHook | kOrderHook).neverRaises(),
      native<vorn_collections_ArrayList_sortNew, Receiver>()
          .on(kLists)
          .nullGives("null")
          .runs(kEqualityHook | kOrderHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_sortI64Fast, Receiver>()
          .on(kLists)
          .runs(kEqualityHook | kOrderHook)
          .neverRaises(),
      native<vorn_collections_ArrayList_sortF64Fast, Receiver>()
          .on(kLists)
          .runs(kEqualityHook | kOrderHook)
          .neverRaises(),
      native<vorn_collections_ArrayList_sumInt, Receiver>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_sumI64Fast, Receiver>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_sumF64Fast, Receiver>().on(kReadableLists).nullGives("0").onlyReads(),
      native<vorn_collections_ArrayList_toString, Receiver>()
          .on(kReadableLists)
          .nullGives("String []")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_join, Receiver, Separator>()
          .on(kReadableLists)
          .nullGives("String ")
          .runs(kTextHook)
          .onlyReads()
          .neverRaises(),
  };
}

std::vector<Native> listConstructionNatives() {
  return {
      native<vorn_collections_ArrayList_literal0>().neverRaises(),
      native<vorn_collections_ArrayListSync_literal0>().neverRaises(),
      native<vorn_collections_ArrayList_literal1, Value>().neverRaises(),
      native<vorn_collections_ArrayList_literal5, Value, Value, Value, Value, Value>().neverRaises(),
      native<vorn_collections_ArrayList_literal10, Value, Value, Value, Value, Value, Value, Value, Value, Value,
             Value>()
          .neverRaises(),
      variadicNative<vorn_collections_ArrayList_literal, void*, Value>().neverRaises(),
      variadicNative<vorn_collections_ArrayListSync_literal, void*, Value>().neverRaises(),
      native<vorn_collections_ArrayList_intLiteral0>().neverRaises(),
      native<vorn_collections_ArrayListSync_intLiteral0>().neverRaises(),
      native<vorn_collections_ArrayList_intLiteral1, Number>().neverRaises(),
      native<vorn_collections_ArrayList_intLiteral5, Number, Number, Number, Number, Number>().neverRaises(),
      native<vorn_collections_ArrayList_intLiteral10, Number, Number, Number, Number, Number, Number, Number, Number,
             Number, Number>()
          .neverRaises(),
      native<vorn_collections_ArrayList_intLiteral20, Number, Number, Number, Number, Number, Number, Number, Number,
             Number, Number, Number, Number, Number, Number, Number, Number, Number, Number, Number, Number>()
          .neverRaises(),
      variadicNative<vorn_collections_ArrayList_intLiteral, long long, Number>().neverRaises(),
      native<vorn_collections_ArrayList_primitiveLiteral0, TypeName>().neverRaises(),
      native<vorn_collections_ArrayListSync_primitiveLiteral0, TypeName>().neverRaises(),
      native<vorn_collections_ArrayList_newPrimitiveData, Count, TypeName, Role::Slot>().isRandom(),
      native<vorn_collections_ArrayListSync_newPrimitiveData, Count, TypeName, Role::Slot>().isRandom(),
      native<vorn_collections_ArrayList_newPrimitiveI64Data, Count, TypeName, Role::Slot>().neverRaises(),
      native<vorn_collections_ArrayList_newDoubleData, Count, TypeName, Role::Slot>().neverRaises(),
      native<vorn_collections_ArrayList_prepareIntData, Receiver, Count>()
          .on(kLists)
          .nullGives("no pointer")
          .neverRaises(),
      native<vorn_collections_ArrayList_preparePrimitiveI64Data, Receiver, Count, TypeName>()
          .on(kLists)
          .nullGives("no pointer")
          .neverRaises(),
      native<vorn_collections_ArrayList_prepareDoubleData, Receiver, Count, TypeName>()
          .on(kLists)
          .nullGives("no pointer")
          .neverRaises(),
      native<vorn_collections_ArrayList_commitIntDataSize, Receiver, Written>().on(kLists),
      native<vorn_collections_ArrayList_commitPrimitiveI64DataSize, Receiver, Written>().on(kLists),
      native<vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast, Receiver, Written>().on(kLists).neverLocks(),
      native<vorn_collections_ArrayList_commitDoubleDataSize, Receiver, Written>().on(kLists),
      native<vorn_collections_ArrayList_commitDoubleDataSizeFast, Receiver, Written>().on(kLists).neverLocks(),
      native<vorn_collections_ArrayList_commitPrimitiveDataSize, Receiver, Written>().on(kLists),
      native<vorn_collections_ArrayList_commitPrimitiveDataSizeFast, Receiver, Written>().on(kLists).neverLocks(),
      native<vorn_collections_ArrayList_i64DataPtr, Receiver>()
          .on(kReadableLists)
          .nullGives("no pointer")
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_f64DataPtr, Receiver>()
          .on(kReadableLists)
          .nullGives("no pointer")
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_primitiveDataPtr, Receiver>()
          .on(kReadableLists)
          .nullGives("null")
          .onlyReads()
          .givesAddress()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_ArrayList_dataHandle, Receiver>()
          .on(kReadableLists)
          .nullGives("no pointer")
          .neverLocks()
          .onlyReads()
          .neverAllocates()
          .neverRaises(),
      native<vorn_collections_ArrayList_reserve, Receiver, Count>().on(kLists).neverRaises(),
  };
}

std::vector<Native> listBulkNatives() {
  return {
      native<vorn_collections_ArrayList_addAll, Receiver, Other>().on(kLists).refusesBadSourcesFirst().locksBoth(),
      native<vorn_collections_ArrayList_addAllAt, Receiver, Index, Other>()
          .on(kLists)
          .refusesBadSourcesFirst()
          .locksBoth(),
      native<vorn_collections_ArrayList_slice, Receiver, Bound, Bound, Step, Mark, Mark>()
          .on(kReadableLists)
          .nullGives("ArrayList []")
          .onlyReads(),
      native<vorn_collections_ArrayList_sliceAssign, Receiver, Bound, Bound, Step, Mark, Mark, Other>()
          .on(kLists)
          .mayStopHalfway()
          .locksBoth(),
      native<vorn_collections_ArrayList_concat, Receiver, OtherList>()
          .on(kReadableLists)
          .nullGives("ArrayList [*")
          .onlyReads()
          .neverRaises()
          .locksBoth(),
      native<vorn_collections_ArrayList_repeat, Receiver, Count>()
          .on(kReadableLists)
          .nullGives("ArrayList []")
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_reverse, Receiver>().on(kLists).neverAllocates().neverRaises(),
      native<vorn_collections_ArrayList_reverseNew, Receiver>()
          .on(kReadableLists)
          .nullGives("null")
          .onlyReads()
          .neverRaises(),
      native<vorn_collections_ArrayList_shuffle, Receiver>().on(kLists).isRandom().neverRaises(),
  };
}

}  // namespace vorn::tests::nets
