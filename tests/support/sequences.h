// Makers of tuples and immutable lists.
#pragma once

#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

#include <initializer_list>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

Handle tupleOf(const std::vector<Handle>& items, const char* typeName = nullptr);

// Boxed storage, since a linked list has no other.
Handle boxedImmutable(const std::vector<Handle>& elements);

// Unboxed storage of the named integer type.
Handle unboxedImmutable(const char* type, const std::vector<std::int64_t>& values);

Handle unboxedFloatingImmutable(const char* type, const std::vector<double>& values);

// A tuple in a tuple in a tuple ...
Handle deepTuple(int levels, Handle innermost);

}  // namespace vorn::tests
