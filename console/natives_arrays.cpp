#include <vorn/collections/array.h>

#include "console/native_shapes.h"

namespace vorn::console {

namespace {

using enum Effect;

constexpr NativeRow kArrayRows[] = {
    native<&vorn_collections_Array_ctor>("array, size", Changes, "Array<T>(n): so many zero elements"),
    native<&vorn_collections_Array_copyCtor>("array, source", Changes, "Array<T>(xs): a copy of an ordered collection"),
    native<&vorn_collections_Array_size>("array", Reads, "the number of elements"),
    native<&vorn_collections_Array_rawSize>("array", Reads, "the number of elements, 0 for a synchronised array"),
    native<&vorn_collections_Array_rawDataPtr>("array", Reads, "the unboxed elements of an unsynchronised array",
                                               Gives::Raw),
    native<&vorn_collections_Array_i64DataPtr>("array", Reads, "the elements of an array of Long"),
    native<&vorn_collections_Array_f64DataPtr>("array", Reads, "the elements of an array of Double"),
    native<&vorn_collections_Array_getInt>("array, index", Reads, "the element at an index as an integer", Gives::Long),
    native<&vorn_collections_Array_getDouble>("array, index", Reads, "the element at an index as a Double"),
    native<&vorn_collections_Array_setInt>("array, index, value", Changes, "stores a raw integer, converted"),
    native<&vorn_collections_Array_setDouble>("array, index, value", Changes, "stores a raw double, converted"),
    native<&vorn_collections_Array_setBool>("array, index, value", Changes, "stores a raw Boolean, converted"),
    native<&vorn_collections_Array_operator_index>("array, index", Reads, "a[i]: the element at an index"),
    native<&vorn_collections_Array_operator_index_eq>("array, index, value", Changes,
                                                      "a[i] = v: stores a fitting value"),
    native<&vorn_collections_Array_count>("array, value", Reads, "how many elements equal the value"),
    native<&vorn_collections_Array_indexOf>("array, value, start=0", Reads,
                                            "the first position of the value at or after start, or -1"),
    native<&vorn_collections_Array_lastIndexOf>("array, value, start=-1", Reads,
                                                "the last position of the value at or before start, or -1"),
    native<&vorn_collections_Array_operator_in>("array, value", Reads, "v in a: whether an element equals it"),
    native<&vorn_collections_Array_sumI64Fast>("array", Reads, "the sum of the elements as an integer", Gives::Long),
    native<&vorn_collections_Array_sumF64Fast>("array", Reads, "the sum of the elements as a Double"),
    native<&vorn_collections_Array_operator_eq>("array, other", Reads, "a == b: whether both hold the same"),
    native<&vorn_collections_Array_operator_ne>("array, other", Reads, "a != b: whether they differ"),
    native<&vorn_collections_Array_sort>("array", Changes, "sorts the array in place, ascending"),
    native<&vorn_collections_Array_sortNew>("array", Reads, "a sorted copy"),
    native<&vorn_collections_Array_reverse>("array", Changes, "reverses the array in place"),
    native<&vorn_collections_Array_reverseNew>("array", Reads, "a reversed copy"),
    native<&vorn_collections_Array_slice>("array, start, stop, step, hasStart, hasStop", Reads,
                                          "a[x:y:z]: a new array of a range; a null hasStart omits the bound"),
    native<&vorn_collections_Array_sliceAssign>("array, start, stop, step, hasStart, hasStop, source", Changes,
                                                "a[x:y:z] = ys: stores as many values as the range has"),
    native<&vorn_collections_Array_concat>("array, other", Reads, "a + b: a new array of both"),
    native<&vorn_collections_Array_toString>("array", Reads, "the display text"),
    native<&vorn_collections_Array_join>("array, separator", Reads,
                                         "the texts of the elements with the separator between them"),
};

}  // namespace

std::span<const NativeRow> arrayNatives() { return kArrayRows; }

}  // namespace vorn::console
