// Every language error with its class and text: a change of wording shows here as one visible difference.
#include "collections/core/errors.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using namespace collections;

class ErrorTexts : public RuntimeTest {};

TEST_F(ErrorTexts, AddOnNull) {
  errors::raiseAddOnNull();
  EXPECT_RAISED("NullException: Cannot call ArrayList.add() on null");
}

TEST_F(ErrorTexts, IndexOutOfBounds) {
  errors::raiseIndexOutOfBounds();
  EXPECT_RAISED("IndexException: Index out of bounds");
}

TEST_F(ErrorTexts, ExpectedIntItem) {
  errors::raiseExpectedIntItem();
  EXPECT_RAISED("TypeError: Expected Int item");
}

TEST_F(ErrorTexts, ExpectedFloatingItem) {
  errors::raiseExpectedFloatingItem();
  EXPECT_RAISED("TypeError: Expected floating list item");
}

TEST_F(ErrorTexts, CodeUnitOutOfRange) {
  errors::raiseCodeUnitOutOfRange();
  EXPECT_RAISED("TypeError: CodeUnit code unit out of range (0..0xFFFF)");
}

TEST_F(ErrorTexts, CharNotAScalar) {
  errors::raiseCharNotScalar();
  EXPECT_RAISED("ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
}

TEST_F(ErrorTexts, MapKeyIsNull) {
  errors::raiseMapKeyIsNull();
  EXPECT_RAISED("NullException: Map key cannot be null");
}

TEST_F(ErrorTexts, KeyNotFound) {
  errors::raiseKeyNotFound();
  EXPECT_RAISED("KeyException: Key not found");
}

TEST_F(ErrorTexts, ImmutableListSource) {
  errors::raiseImmutableListSource();
  EXPECT_RAISED("TypeError: argument 1 of ImmutableList must be a IList");
}

TEST_F(ErrorTexts, ImmutableListReadOnly) {
  errors::raiseImmutableListReadOnly();
  EXPECT_RAISED("ReadOnlyException: ImmutableList is read-only");
}

TEST_F(ErrorTexts, TupleSource) {
  errors::raiseTupleSource();
  EXPECT_RAISED("TypeError: argument 1 of Tuple must be a packed variadic list");
}

TEST_F(ErrorTexts, TupleReadOnly) {
  errors::raiseTupleReadOnly();
  EXPECT_RAISED("ReadOnlyException: Tuple is read-only");
}

TEST_F(ErrorTexts, ArraySizeNegative) {
  errors::raiseArraySizeNegative();
  EXPECT_RAISED("ValueException: Array size cannot be negative");
}

TEST_F(ErrorTexts, InvalidArrayElement) {
  errors::raiseInvalidArrayElement();
  EXPECT_RAISED("TypeError: Invalid array element type");
}

TEST_F(ErrorTexts, ExpectedIntegerArrayItem) {
  errors::raiseExpectedIntegerArrayItem();
  EXPECT_RAISED("TypeError: Expected integer array item");
}

TEST_F(ErrorTexts, ExpectedFloatingArrayItem) {
  errors::raiseExpectedFloatingArrayItem();
  EXPECT_RAISED("TypeError: Expected floating array item");
}

TEST_F(ErrorTexts, ArrayCopyOfNull) {
  errors::raiseArrayCopyOfNull();
  EXPECT_RAISED("TypeError: Array copy constructor expects a non-null ordered collection");
}

TEST_F(ErrorTexts, ArrayCopySource) {
  errors::raiseArrayCopySource();
  EXPECT_RAISED("TypeError: Array copy constructor expects an ordered collection");
}

TEST_F(ErrorTexts, FixedSliceCount) {
  errors::raiseFixedSliceCount();
  EXPECT_RAISED("ValueException: fixed array slice assignment requires the same number of values");
}

TEST_F(ErrorTexts, ArrayConcatSource) {
  errors::raiseArrayConcatSource();
  EXPECT_RAISED("TypeError: array concatenation expects an ordered collection");
}

TEST_F(ErrorTexts, NulInString) {
  errors::raiseNulInString();
  EXPECT_RAISED("ValueException: U+0000 cannot be stored in a String");
}

TEST_F(ErrorTexts, UnpairedSurrogates) {
  errors::raiseUnpairedHighSurrogate();
  EXPECT_RAISED("ValueException: Unpaired high surrogate in CodeUnit[]");
  errors::raiseUnpairedLowSurrogate();
  EXPECT_RAISED("ValueException: Unpaired low surrogate in CodeUnit[]");
}

TEST_F(ErrorTexts, ElementTypeRefused) {
  errors::raiseElementTypeRefused("Int", "vorn.String");
  EXPECT_RAISED("TypeError: ArrayList<Int> cannot accept vorn.String");
}

TEST_F(ErrorTexts, ElementTypeRefused_ValueWithoutTypeNameIsNull) {
  errors::raiseElementTypeRefused("Boolean", nullptr);
  EXPECT_RAISED("TypeError: ArrayList<Boolean> cannot accept null");
}

TEST_F(ErrorTexts, ElementTypeRefused_DeclaredNameNeedNotBeTerminated) {
  errors::raiseElementTypeRefused(std::string_view("Animals").substr(0, 6), "app.Plant");
  EXPECT_RAISED("TypeError: ArrayList<Animal> cannot accept app.Plant");
}

TEST_F(ErrorTexts, ElementTypeRefused_LongNamesAreKeptWhole) {
  const std::string declared(700, 'D');
  const std::string value(900, 'v');
  errors::raiseElementTypeRefused(declared, value.c_str());
  EXPECT_RAISED("TypeError: ArrayList<" + declared + "> cannot accept " + value);
}

TEST_F(ErrorTexts, RaisingRecordsAPendingErrorAndReturns) {
  EXPECT_EQ(Vorn_hasPendingError(), 0);
  errors::raiseIndexOutOfBounds();
  EXPECT_NE(Vorn_hasPendingError(), 0);
  vorn_errors_clear();
  EXPECT_EQ(Vorn_hasPendingError(), 0);
}

}  // namespace
}  // namespace vorn::tests
