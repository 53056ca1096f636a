// Inserting many values at once.
#pragma once

#include "collections/core/roots.h"

// Inserts collected values before `index`, or at the end. All values are checked before the first is inserted: one that
// the declared type refuses, or a Char or CodeUnit out of range, raises and leaves the list unchanged. An empty vector
// or a null list does nothing, whatever the index. Locks the list. Allocates.
void arrayListAddAllCaptured(void* list, long long index, bool append,
                             const vorn::collections::HandleVector::Storage& values);
