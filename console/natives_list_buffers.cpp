#include <vorn/collections/array_list.h>

#include "console/native_shapes.h"

namespace vorn::console {

namespace {

using enum Effect;

constexpr NativeRow kBufferRows[] = {
    native<&vorn_collections_ArrayList_newPrimitiveData>(
        "count, typeName, list", Reads, "a new list of so many raw elements, to be written", Gives::Raw),
    native<&vorn_collections_ArrayListSync_newPrimitiveData>("count, typeName, list", Reads,
                                                             "the same for a synchronised list", Gives::Raw),
    native<&vorn_collections_ArrayList_newPrimitiveI64Data>(
        "count, typeName, list", Reads, "a new list and a buffer of 64-bit integers, which a commit narrows into it"),
    native<&vorn_collections_ArrayList_newDoubleData>("count, typeName, list", Reads,
                                                      "a new list and a buffer of doubles, for a commit"),
    native<&vorn_collections_ArrayList_prepareIntData>("list, count", Changes,
                                                       "empties the list and gives a buffer for so many Int"),
    native<&vorn_collections_ArrayList_preparePrimitiveI64Data>("list, count, typeName", Changes,
                                                                "the same for integers of the named type"),
    native<&vorn_collections_ArrayList_prepareDoubleData>("list, count, typeName", Changes,
                                                          "the same for floating numbers of the named type"),
    native<&vorn_collections_ArrayList_commitIntDataSize>(
        "list, count", Changes, "makes so many buffered values the elements of a list of Int"),
    native<&vorn_collections_ArrayList_commitPrimitiveI64DataSize>("list, count", Changes,
                                                                   "the same for any integer type"),
    native<&vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast>("list, count", Changes,
                                                                       "the same without a lock"),
    native<&vorn_collections_ArrayList_commitDoubleDataSize>("list, count", Changes, "the same for Float and Double"),
    native<&vorn_collections_ArrayList_commitDoubleDataSizeFast>("list, count", Changes,
                                                                 "the same for Float and Double, without a lock"),
    native<&vorn_collections_ArrayList_commitPrimitiveDataSize>(
        "list, count", Changes, "sets how many elements were written directly into the storage"),
    native<&vorn_collections_ArrayList_commitPrimitiveDataSizeFast>("list, count", Changes, "the same without a lock"),
    native<&vorn_collections_ArrayList_i64DataPtr>("list", Reads, "a copy of the elements as 64-bit integers"),
    native<&vorn_collections_ArrayList_f64DataPtr>("list", Reads, "a copy of the elements as doubles"),
    native<&vorn_collections_ArrayList_primitiveDataPtr>("list", Reads, "the unboxed elements themselves", Gives::Raw),
    native<&vorn_collections_ArrayList_dataHandle>("list", Reads,
                                                   "the list's record, for addIntToData and getIntFromData"),
};

}  // namespace

std::span<const NativeRow> listBufferNatives() { return kBufferRows; }

}  // namespace vorn::console
