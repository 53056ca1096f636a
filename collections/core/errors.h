// Every language error that this library raises: one function per error, which takes facts and never prose. All class
// names and texts stand in errors.cpp.
#pragma once

#include <string_view>

namespace vorn::collections::errors {

[[gnu::cold]] void raiseAddOnNull();
[[gnu::cold]] void raiseIndexOutOfBounds();
[[gnu::cold]] void raiseExpectedIntItem();
[[gnu::cold]] void raiseExpectedFloatingItem();
[[gnu::cold]] void raiseCodeUnitOutOfRange();
[[gnu::cold]] void raiseCharNotScalar();

[[gnu::cold]] void raiseIntStorageExpected();
[[gnu::cold]] void raiseIntegerStorageExpected();
[[gnu::cold]] void raiseFloatingStorageExpected();
[[gnu::cold]] void raisePrimitiveStorageExpected();
[[gnu::cold]] void raiseAddAllSource();
[[gnu::cold]] void raiseSliceStepZero();
[[gnu::cold]] void raiseSliceAssignmentSource();
[[gnu::cold]] void raiseSliceAssignmentRange();
[[gnu::cold]] void raiseExtendedSliceCount();
[[gnu::cold]] void raiseSumOfNull();

[[gnu::cold]] void raiseMapKeyIsNull();
[[gnu::cold]] void raiseKeyNotFound();

[[gnu::cold]] void raiseImmutableListSource();
[[gnu::cold]] void raiseImmutableListReadOnly();
[[gnu::cold]] void raiseTupleSource();
[[gnu::cold]] void raiseTupleReadOnly();

// `valueTypeName` is the value's runtime type name; null stands for a value that has none.
[[gnu::cold]] void raiseElementTypeRefused(std::string_view declaredName, const char* valueTypeName);

}  // namespace vorn::collections::errors
