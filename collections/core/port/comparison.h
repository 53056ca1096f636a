// Numbers, equality and order of values.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

// A number of any kind, exactly. Zero-initialised it is the signed integer 0.
struct NativeNumericValue {
  enum class Kind : std::uint8_t { Signed = 0, Unsigned = 1, Floating = 2 };
  Kind kind;
  std::uint64_t payload;  // the integer's bits, or the double's
};

// Whether the handle is a boxed number (the eight integer types, Float, Double), and which. Runs no user code.
bool tryReadNativeNumericValue(void* handle, NativeNumericValue& value);

// 0 exactly when the two numbers are equal across kinds, without rounding; a NaN equals nothing, itself included.
int compareNativeNumericValues(const NativeNumericValue& left, const NativeNumericValue& right);

// A total preorder for sorting: by value across kinds, -0.0 equal to 0.0, NaNs equal to each other and last.
int compareNativeNumericValuesForSort(const NativeNumericValue& left, const NativeNumericValue& right);

// Nonzero when two values are structurally equal. May run user code, raise and allocate.
extern "C" int Vorn_deepEquals(void* left, void* right);

// True when both objects could be compared as collections (or by the runtime's own content rule); `equal` then tells
// the result. May run user code, raise and allocate.
bool Vorn_collectionObjectsEqual(void* left, void* right, bool& equal);

// Negative, zero or positive: the order of two String objects, in one call what the questions before and after this one
// take two for. Runs no user code and does not allocate.
int compareStringObjects(void* left, void* right);

// True when the two objects could be ordered; `less` then tells whether left comes first. May run user code, raise and
// allocate.
bool Vorn_collectionObjectsLess(void* left, void* right, bool& less);

#pragma GCC visibility pop
