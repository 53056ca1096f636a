// Every language error with its class and text. The texts stand in tests/support/error_texts.h, so that a change of
// wording shows as one visible difference there and in errors.cpp.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>

#include "collections/core/errors.h"
#include "collections/core/port/pending_errors.h"
#include "tests/core/core_test_support.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

using namespace collections;

class ErrorTexts : public RuntimeTest {};

struct ErrorText {
  const char* function;
  void (*raise)();
  const char* text;
};

const ErrorText kErrorTexts[] = {
    {"raiseAddOnNull", errors::raiseAddOnNull, error_texts::kAddOnNull},
    {"raiseIndexOutOfBounds", errors::raiseIndexOutOfBounds, error_texts::kIndexOutOfBounds},
    {"raiseExpectedIntItem", errors::raiseExpectedIntItem, error_texts::kExpectedIntItem},
    {"raiseExpectedFloatingItem", errors::raiseExpectedFloatingItem, error_texts::kExpectedFloatingItem},
    {"raiseCodeUnitOutOfRange", errors::raiseCodeUnitOutOfRange, error_texts::kCodeUnitOutOfRange},
    {"raiseCharNotScalar", errors::raiseCharNotScalar, error_texts::kCharNotScalar},
    {"raiseIntStorageExpected", errors::raiseIntStorageExpected, error_texts::kIntStorageExpected},
    {"raiseIntegerStorageExpected", errors::raiseIntegerStorageExpected, error_texts::kIntegerStorageExpected},
    {"raiseFloatingStorageExpected", errors::raiseFloatingStorageExpected, error_texts::kFloatingStorageExpected},
    {"raisePrimitiveStorageExpected", errors::raisePrimitiveStorageExpected, error_texts::kPrimitiveStorageExpected},
    {"raiseAddAllSource", errors::raiseAddAllSource, error_texts::kAddAllSource},
    {"raiseSliceStepZero", errors::raiseSliceStepZero, error_texts::kSliceStepZero},
    {"raiseSliceAssignmentSource", errors::raiseSliceAssignmentSource, error_texts::kSliceAssignmentSource},
    {"raiseSliceAssignmentRange", errors::raiseSliceAssignmentRange, error_texts::kSliceAssignmentRange},
    {"raiseExtendedSliceCount", errors::raiseExtendedSliceCount, error_texts::kExtendedSliceCount},
    {"raiseSumOfNull", errors::raiseSumOfNull, error_texts::kSumOfNull},
    {"raiseMapKeyIsNull", errors::raiseMapKeyIsNull, error_texts::kMapKeyIsNull},
    {"raiseKeyNotFound", errors::raiseKeyNotFound, error_texts::kKeyNotFound},
    {"raiseKeysChangedDuringWalk", errors::raiseKeysChangedDuringWalk, error_texts::kKeysChangedDuringWalk},
    {"raiseImmutableListSource", errors::raiseImmutableListSource, error_texts::kImmutableListSource},
    {"raiseImmutableListReadOnly", errors::raiseImmutableListReadOnly, error_texts::kImmutableListReadOnly},
    {"raiseTupleSource", errors::raiseTupleSource, error_texts::kTupleSource},
    {"raiseTupleReadOnly", errors::raiseTupleReadOnly, error_texts::kTupleReadOnly},
    {"raiseArraySizeNegative", errors::raiseArraySizeNegative, error_texts::kArraySizeNegative},
    {"raiseInvalidArrayElement", errors::raiseInvalidArrayElement, error_texts::kInvalidArrayElement},
    {"raiseExpectedIntegerArrayItem", errors::raiseExpectedIntegerArrayItem, error_texts::kExpectedIntegerArrayItem},
    {"raiseExpectedFloatingArrayItem", errors::raiseExpectedFloatingArrayItem, error_texts::kExpectedFloatingArrayItem},
    {"raiseArrayCopyOfNull", errors::raiseArrayCopyOfNull, error_texts::kArrayCopyOfNull},
    {"raiseArrayCopySource", errors::raiseArrayCopySource, error_texts::kArrayCopySource},
    {"raiseFixedSliceCount", errors::raiseFixedSliceCount, error_texts::kFixedSliceCount},
    {"raiseArrayConcatSource", errors::raiseArrayConcatSource, error_texts::kArrayConcatSource},
    {"raiseNulInString", errors::raiseNulInString, error_texts::kNulInString},
    {"raiseUnpairedHighSurrogate", errors::raiseUnpairedHighSurrogate, error_texts::kUnpairedHighSurrogate},
    {"raiseUnpairedLowSurrogate", errors::raiseUnpairedLowSurrogate, error_texts::kUnpairedLowSurrogate},
};

TEST_F(ErrorTexts, EveryErrorHasItsClassAndText) {
  for (const ErrorText& error : kErrorTexts) {
    SCOPED_TRACE(error.function);
    error.raise();
    EXPECT_RAISED(error.text);
  }
}

TEST_F(ErrorTexts, NoFunctionIsMissingHere) {
  const std::regex declaration(R"(void (raise\w+)\()");
  std::vector<std::string> declared;
  for (const char* const name :
       {"/collections/core/errors.h", "/collections/include/vorn/collections/runtime_helpers.hpp"}) {
    std::ifstream header(std::string(VORN_SOURCE_DIR) + name);
    ASSERT_TRUE(header.is_open());
    const std::string source((std::istreambuf_iterator<char>(header)), std::istreambuf_iterator<char>());
    for (std::sregex_iterator at(source.begin(), source.end(), declaration), end; at != end; ++at) {
      declared.push_back((*at)[1]);
    }
  }
  ASSERT_FALSE(declared.empty());
  std::vector<std::string> tested = {"raiseElementTypeRefused"};  // takes facts: see below
  for (const ErrorText& error : kErrorTexts) tested.emplace_back(error.function);
  std::sort(declared.begin(), declared.end());
  std::sort(tested.begin(), tested.end());
  EXPECT_EQ(declared, tested);
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
