// Equality and order of every pair of value classes, in both directions, against the rules worked out in the oracle.
#include "collections/core/elements/element_types.h"
#include "collections/core/equality/element_order.h"
#include "tests/core/element_order_oracle.h"

namespace vorn::tests {
namespace {

class ElementOrderTable : public RuntimeTest {
 protected:
  std::vector<Specimen> specimens_ = makeSpecimens();
};

TEST_F(ElementOrderTable, DescriptionsAgreeWithTheRuntime) {
  for (const Specimen& specimen : specimens_) {
    SCOPED_TRACE(specimen.label);
    EXPECT_EQ(isObjectPointer(specimen.handle), specimen.isObject());
    NativeNumericValue number{};
    EXPECT_EQ(tryReadNativeNumericValue(specimen.handle, number), specimen.isNumeric());
    const RegisteredObject* registered = getRegisteredObjectUnsafe(specimen.handle);
    const bool isRegisteredInteger = registered != nullptr && static_cast<int>(registered->kind()) == 1;
    EXPECT_EQ(isRegisteredInteger, specimen.kind == Specimen::Class::Integer);
    if (isRegisteredInteger) {
      EXPECT_EQ(registered->integer, specimen.payload);
    }
    if (specimen.isObject()) {
      EXPECT_EQ(isFloatLikeListType(Vorn_objectTypeName(specimen.handle)), specimen.kind == Specimen::Class::Floating);
      EXPECT_EQ(isIntLikeListType(Vorn_objectTypeName(specimen.handle)), specimen.isIntLike());
    }
  }
}

TEST_F(ElementOrderTable, EqualityOfEveryPair) {
  for (const Specimen& a : specimens_) {
    for (const Specimen& b : specimens_) {
      EXPECT_EQ(listValuesEqual(a.handle, b.handle), expectedEqual(a, b)) << a.label << " and " << b.label;
    }
  }
}

TEST_F(ElementOrderTable, OrderOfEveryPair) {
  for (const Specimen& a : specimens_) {
    for (const Specimen& b : specimens_) {
      const int order = compareListValues(a.handle, b.handle);
      if (a.isNumeric() && b.isNumeric()) {
        EXPECT_EQ(signOf(order), expectedOrder(a, b)) << a.label << " and " << b.label;
      } else {
        EXPECT_EQ(order, expectedOrder(a, b)) << a.label << " and " << b.label;
      }
    }
  }
}

TEST_F(ElementOrderTable, EveryValueEqualsItselfAndSortsWithItself) {
  for (const Specimen& specimen : specimens_) {
    EXPECT_TRUE(listValuesEqual(specimen.handle, specimen.handle)) << specimen.label;
    EXPECT_EQ(compareListValues(specimen.handle, specimen.handle), 0) << specimen.label;
  }
}

TEST_F(ElementOrderTable, NumbersTextsAndNullNeedNoAllocation) {
  vorn_heap_statistics before;
  vorn_heap_get_statistics(&before);
  long long sum = 0;
  for (const Specimen& a : specimens_) {
    for (const Specimen& b : specimens_) {
      if ((a.isNumeric() && b.isNumeric()) || (!a.isObject() && !b.isObject())) {
        sum += compareListValues(a.handle, b.handle) + (listValuesEqual(a.handle, b.handle) ? 1 : 0);
      }
    }
  }
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&after);
  EXPECT_EQ(after.allocations, before.allocations);
  EXPECT_NE(sum, 0);
}

TEST_F(ElementOrderTable, StringObjectTextOfEveryValue) {
  for (const Specimen& specimen : specimens_) {
    const char* found = stringObjectTextOrNull(specimen.handle);
    if (specimen.kind == Specimen::Class::String) {
      ASSERT_NE(found, nullptr) << specimen.label;
      EXPECT_EQ(found, specimen.text);
    } else {
      EXPECT_EQ(found, nullptr) << specimen.label;
    }
  }
}

}  // namespace
}  // namespace vorn::tests
