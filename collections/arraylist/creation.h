// Making lists from values: what the literal natives and other parts of the library share. Each gives null when the
// list object cannot be had. All of them allocate.
#pragma once

#include <string_view>

#include "collections/core/storage/list_data.h"

// A list of the given handles, unboxed when all are primitive values of one kind and type name. `values` is kept alive
// by this call.
void* createArrayListLiteralFromValues(bool synchronised, void** values, unsigned long count);

// A plain ArrayList<Int> of the values' low 32 bits.
void* createArrayListLiteralFromIntValues(const long long* values, unsigned long count);

// An empty list declared with the type name (null: none), in primitive storage when the name has a kind.
void* createArrayListPrimitiveEmpty(const char* typeName, bool synchronised);

// A list in primitive storage sized max(n, 0), whose elements the caller writes through the returned pointer. A type
// name without a kind ("Int" when null) raises TypeError "ArrayList primitive storage expected" and gives null.
void* createArrayListPrimitiveDataBuffer(bool synchronised, long long n, const char* typeName, void** outList);
