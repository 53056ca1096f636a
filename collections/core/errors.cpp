#include "collections/core/errors.h"

#include <string>

#include "collections/core/port/pending_errors.h"

namespace vorn::collections::errors {

namespace {

constexpr const char* kException = "Exception";
constexpr const char* kNullException = "NullException";
constexpr const char* kIndexException = "IndexException";
constexpr const char* kKeyException = "KeyException";
constexpr const char* kReadOnlyException = "ReadOnlyException";
constexpr const char* kTypeError = "TypeError";
constexpr const char* kValueException = "ValueException";

}  // namespace

void raiseAddOnNull() { Vorn_raise(kNullException, "Cannot call ArrayList.add() on null"); }

void raiseIndexOutOfBounds() { Vorn_raise(kIndexException, "Index out of bounds"); }

void raiseExpectedIntItem() { Vorn_raise(kTypeError, "Expected Int item"); }

void raiseExpectedFloatingItem() { Vorn_raise(kTypeError, "Expected floating list item"); }

void raiseCodeUnitOutOfRange() { Vorn_raise(kTypeError, "CodeUnit code unit out of range (0..0xFFFF)"); }

void raiseCharNotScalar() {
  Vorn_raise(kValueException, "Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
}

void raiseIntStorageExpected() { Vorn_raise(kTypeError, "ArrayList<Int> storage expected"); }

void raiseIntegerStorageExpected() { Vorn_raise(kTypeError, "ArrayList integer storage expected"); }

void raiseFloatingStorageExpected() { Vorn_raise(kTypeError, "ArrayList floating storage expected"); }

void raisePrimitiveStorageExpected() { Vorn_raise(kTypeError, "ArrayList primitive storage expected"); }

void raiseAddAllSource() { Vorn_raise(kTypeError, "addAll expects a list, array, tuple or set"); }

// The general class, not ValueException, is what the language promises for a zero step.
void raiseSliceStepZero() { Vorn_raise(kException, "slice step cannot be zero"); }

void raiseSliceAssignmentSource() { Vorn_raise(kTypeError, "slice assignment source must be an ordered collection"); }

void raiseSliceAssignmentRange() { Vorn_raise(kIndexException, "Invalid slice assignment range"); }

void raiseExtendedSliceCount() {
  Vorn_raise(kValueException, "extended slice assignment requires the same number of values");
}

void raiseSumOfNull() { Vorn_raise(kTypeError, "sum does not support null values"); }

void raiseMapKeyIsNull() { Vorn_raise(kNullException, "Map key cannot be null"); }

void raiseKeyNotFound() { Vorn_raise(kKeyException, "Key not found"); }

void raiseKeysChangedDuringWalk() { Vorn_raise(kException, "Keys changed during a walk"); }

// "a IList" is how the language's own texts have it.
void raiseImmutableListSource() { Vorn_raise(kTypeError, "argument 1 of ImmutableList must be a IList"); }

void raiseImmutableListReadOnly() { Vorn_raise(kReadOnlyException, "ImmutableList is read-only"); }

void raiseTupleSource() { Vorn_raise(kTypeError, "argument 1 of Tuple must be a packed variadic list"); }

void raiseTupleReadOnly() { Vorn_raise(kReadOnlyException, "Tuple is read-only"); }

void raiseArraySizeNegative() { Vorn_raise(kValueException, "Array size cannot be negative"); }

void raiseInvalidArrayElement() { Vorn_raise(kTypeError, "Invalid array element type"); }

void raiseExpectedIntegerArrayItem() { Vorn_raise(kTypeError, "Expected integer array item"); }

void raiseExpectedFloatingArrayItem() { Vorn_raise(kTypeError, "Expected floating array item"); }

void raiseArrayCopyOfNull() { Vorn_raise(kTypeError, "Array copy constructor expects a non-null ordered collection"); }

void raiseArrayCopySource() { Vorn_raise(kTypeError, "Array copy constructor expects an ordered collection"); }

void raiseFixedSliceCount() {
  Vorn_raise(kValueException, "fixed array slice assignment requires the same number of values");
}

void raiseArrayConcatSource() { Vorn_raise(kTypeError, "array concatenation expects an ordered collection"); }

void raiseNulInString() { Vorn_raise(kValueException, "U+0000 cannot be stored in a String"); }

void raiseUnpairedHighSurrogate() { Vorn_raise(kValueException, "Unpaired high surrogate in CodeUnit[]"); }

void raiseUnpairedLowSurrogate() { Vorn_raise(kValueException, "Unpaired low surrogate in CodeUnit[]"); }

void raiseElementTypeRefused(std::string_view declaredName, const char* valueTypeName) {
  // Every list class says "ArrayList" here, the linked and synchronised ones included.
  std::string message = "ArrayList<";
  message += declaredName;
  message += "> cannot accept ";
  message += valueTypeName != nullptr ? valueTypeName : "null";
  Vorn_raise(kTypeError, message.c_str());
}

}  // namespace vorn::collections::errors
