// Reading a foreign collection element by element; shared by lists and arrays.
#pragma once

#include "collections/core/roots.h"

// Appends the elements of a list, array, immutable list or tuple, boxed; false for anything else. Each element is read
// through the class's own native, which locks by itself; the collection is not frozen in between. The vector belongs
// to a HandleVector. Allocates.
bool collectOrderedCollectionValues(void* value, vorn::collections::HandleVector::Storage& values);

// The same, and hash sets too.
bool collectListInsertionValues(void* value, vorn::collections::HandleVector::Storage& values);
