// The texts of all language errors, spelled independently of the library: whatever a test expects to be raised comes
// from here.
#pragma once

namespace vorn::tests::error_texts {

inline constexpr const char* kAddOnNull = "NullException: Cannot call ArrayList.add() on null";
inline constexpr const char* kIndexOutOfBounds = "IndexException: Index out of bounds";
inline constexpr const char* kExpectedIntItem = "TypeError: Expected Int item";
inline constexpr const char* kExpectedFloatingItem = "TypeError: Expected floating list item";
inline constexpr const char* kCodeUnitOutOfRange = "TypeError: CodeUnit code unit out of range (0..0xFFFF)";
inline constexpr const char* kCharNotScalar =
    "ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)";
inline constexpr const char* kIntStorageExpected = "TypeError: ArrayList<Int> storage expected";
inline constexpr const char* kIntegerStorageExpected = "TypeError: ArrayList integer storage expected";
inline constexpr const char* kFloatingStorageExpected = "TypeError: ArrayList floating storage expected";
inline constexpr const char* kPrimitiveStorageExpected = "TypeError: ArrayList primitive storage expected";
inline constexpr const char* kAddAllSource = "TypeError: addAll expects a list, array, tuple or set";
inline constexpr const char* kSliceStepZero = "Exception: slice step cannot be zero";
inline constexpr const char* kSliceAssignmentSource =
    "TypeError: slice assignment source must be an ordered collection";
inline constexpr const char* kSliceAssignmentRange = "IndexException: Invalid slice assignment range";
inline constexpr const char* kExtendedSliceCount =
    "ValueException: extended slice assignment requires the same number of values";
inline constexpr const char* kSumOfNull = "TypeError: sum does not support null values";
inline constexpr const char* kMapKeyIsNull = "NullException: Map key cannot be null";
inline constexpr const char* kKeyNotFound = "KeyException: Key not found";
inline constexpr const char* kKeysChangedDuringWalk = "Exception: Keys changed during a walk";
inline constexpr const char* kImmutableListSource = "TypeError: argument 1 of ImmutableList must be a IList";
inline constexpr const char* kImmutableListReadOnly = "ReadOnlyException: ImmutableList is read-only";
inline constexpr const char* kTupleSource = "TypeError: argument 1 of Tuple must be a packed variadic list";
inline constexpr const char* kTupleReadOnly = "ReadOnlyException: Tuple is read-only";
inline constexpr const char* kArraySizeNegative = "ValueException: Array size cannot be negative";
inline constexpr const char* kInvalidArrayElement = "TypeError: Invalid array element type";
inline constexpr const char* kExpectedIntegerArrayItem = "TypeError: Expected integer array item";
inline constexpr const char* kExpectedFloatingArrayItem = "TypeError: Expected floating array item";
inline constexpr const char* kArrayCopyOfNull =
    "TypeError: Array copy constructor expects a non-null ordered collection";
inline constexpr const char* kArrayCopySource = "TypeError: Array copy constructor expects an ordered collection";
inline constexpr const char* kFixedSliceCount =
    "ValueException: fixed array slice assignment requires the same number of values";
inline constexpr const char* kArrayConcatSource = "TypeError: array concatenation expects an ordered collection";
inline constexpr const char* kNulInString = "ValueException: U+0000 cannot be stored in a String";
inline constexpr const char* kUnpairedHighSurrogate = "ValueException: Unpaired high surrogate in CodeUnit[]";
inline constexpr const char* kUnpairedLowSurrogate = "ValueException: Unpaired low surrogate in CodeUnit[]";

}  // namespace vorn::tests::error_texts
