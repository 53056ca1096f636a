// Every language error that this library raises: one function per error, which takes facts and never prose. All class
// names and texts stand in errors.cpp. The two errors of characters, which the runtime raises as well, are declared in
// <vorn/collections/runtime_helpers.hpp>.
#pragma once

#include <vorn/collections/runtime_helpers.hpp>

#include <string_view>

namespace vorn::collections::errors {

[[gnu::cold]] void raiseAddOnNull();
[[gnu::cold]] void raiseIndexOutOfBounds();
[[gnu::cold]] void raiseExpectedIntItem();
[[gnu::cold]] void raiseExpectedFloatingItem();
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
[[gnu::cold]] void raiseKeysChangedDuringWalk();

[[gnu::cold]] void raiseImmutableListSource();
[[gnu::cold]] void raiseImmutableListReadOnly();
[[gnu::cold]] void raiseTupleSource();
[[gnu::cold]] void raiseTupleReadOnly();

[[gnu::cold]] void raiseArraySizeNegative();
[[gnu::cold]] void raiseInvalidArrayElement();
[[gnu::cold]] void raiseExpectedIntegerArrayItem();
[[gnu::cold]] void raiseExpectedFloatingArrayItem();
[[gnu::cold]] void raiseArrayCopyOfNull();
[[gnu::cold]] void raiseArrayCopySource();
[[gnu::cold]] void raiseFixedSliceCount();
[[gnu::cold]] void raiseArrayConcatSource();
[[gnu::cold]] void raiseNulInString();
[[gnu::cold]] void raiseUnpairedHighSurrogate();
[[gnu::cold]] void raiseUnpairedLowSurrogate();

// `valueTypeName` is the value's runtime type name; null stands for a value that has none.
[[gnu::cold]] void raiseElementTypeRefused(std::string_view declaredName, const char* valueTypeName);

}  // namespace vorn::collections::errors
