#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

#include "console/native_shapes.h"

namespace vorn::console {

namespace {

using enum Effect;

constexpr NativeRow kSequenceRows[] = {
    native<&vorn_collections_ImmutableList_ctor>("list, source", Changes,
                                                 "ImmutableList(xs): a list with the elements of another"),
    native<&vorn_collections_ImmutableList_size>("list", Reads, "the number of elements"),
    native<&vorn_collections_ImmutableList_operator_index>("list, index", Reads, "xs[i]: the element at an index"),
    native<&vorn_collections_ImmutableList_operator_index_eq>("list, index, value", Reads, "raises: it is read-only"),
    native<&vorn_collections_ImmutableList_indexOf>("list, value, start=0", Reads,
                                                    "the first position of the value at or after start, or -1"),
    native<&vorn_collections_ImmutableList_lastIndexOf>("list, value, start=-1", Reads,
                                                        "the last position of the value at or before start, or -1"),
    native<&vorn_collections_ImmutableList_sortNew>("list", Reads, "a sorted copy"),
    native<&vorn_collections_ImmutableList_toString>("list", Reads, "the display text"),
    native<&vorn_collections_Tuple_ctor>("tuple, packed", Changes, "Tuple(xs): a tuple of a list's elements"),
    native<&vorn_collections_Tuple_size>("tuple", Reads, "the number of items"),
    native<&vorn_collections_Tuple_operator_index>("tuple, index", Reads, "t[i]: the item at an index"),
    native<&vorn_collections_Tuple_operator_index_eq>("tuple, index, value", Reads, "raises: it is read-only"),
    native<&vorn_collections_Tuple_toString>("tuple", Reads, "the display text"),
};

}  // namespace

std::span<const NativeRow> sequenceNatives() { return kSequenceRows; }

}  // namespace vorn::console
