// Inserting many values at once.
#pragma once

#include "collections/arraylist/collected_values.h"

// Inserts collected values before `index`, or at the end. All values are checked before the first is inserted: one that
// the declared type refuses, or a Char or CodeUnit out of range, raises and leaves the list unchanged. No values or a
// null list do nothing, whatever the index. Raw values are boxed only where the list keeps boxes, or to be refused.
// Locks the list. Allocates.
void arrayListAddAllCaptured(void* list, long long index, bool append,
                             const vorn::collections::CollectedValues& values);
