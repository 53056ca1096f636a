// Reading a foreign collection whole; shared by lists and arrays.
#pragma once

#include "collections/arraylist/collected_values.h"

// Collects the elements of a list, array, immutable list or tuple into empty values; false for anything else. It takes
// one copy under the collection's lock, so that it is linear whatever the class and sees one moment of it; only tuples,
// which do not change, are read item by item, and values.complete() tells when an item raised. An unsynchronised
// collection lends its elements, unless it is the `receiver`: the one that the caller is going to change. Allocates.
bool collectOrderedCollectionValues(void* value, const void* receiver, vorn::collections::CollectedValues& values);

// The same, and hash sets too.
bool collectListInsertionValues(void* value, const void* receiver, vorn::collections::CollectedValues& values);
