// The validator sees each broken invariant. Every test breaks one thing in a sound record and mends it again.
#include "collections/array/array_validation.h"

#include "collections/core/array_slot_kind.h"
#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

using collections::validateArrayData;

class ArrayValidation : public RuntimeTest {};

template <class Field>
void expectBroken(const ArrayData& array, Field& field, std::type_identity_t<Field> broken, const char* message) {
  ASSERT_EQ(validateArrayData(array), "");
  const Field sound = std::exchange(field, broken);
  EXPECT_EQ(validateArrayData(array), message);
  field = sound;
  EXPECT_EQ(validateArrayData(array), "");
}

TEST_F(ArrayValidation, SlotKinds) {
  const Handle array = newArray(arrayType("Int"), 3);
  ArrayData& data = recordOf(array);
  expectBroken(data, data.slotKind, static_cast<SlotKind>(static_cast<int>(SlotKind::Object) + 1),
               "the slot kind is unknown");
  const char* const misfit = "the plain slot kind is not the slot kind, or there is a lock";
  expectBroken(data, data.plainSlotKind, static_cast<std::uint8_t>(SlotKind::Int64), misfit);
  expectBroken(data, data.synchronized, true, misfit);
}

TEST_F(ArrayValidation, SynchronisedWithoutMutex) {
  const Handle array = object("ArraySync<Int>");
  ArrayData& data = recordOf(array);
  ASSERT_TRUE(data.synchronized);
  expectBroken(data, data.mutex, nullptr, "a synchronised array has no mutex");
}

TEST_F(ArrayValidation, SizesBeyondCapacities) {
  const Handle numbers = newArray(arrayType("Int"), 40);
  ArrayData& unboxed = recordOf(numbers);
  expectBroken(unboxed, unboxed.primitive.size, unboxed.primitive.capacity + 1, "more unboxed slots than capacity");
  const Handle texts = newArray(arrayType("String"), 3);
  ArrayData& boxed = recordOf(texts);
  expectBroken(boxed, boxed.objects.size, boxed.objects.capacity + 1, "more handles than capacity");
}

TEST_F(ArrayValidation, InlineCapacityBeyondTheInlineStorage) {
  const Handle array = newArray(arrayType("Int"), 3);
  ArrayData& data = recordOf(array);
  ASSERT_EQ(data.primitive.data, data.primitive.inlineBytes);
  expectBroken(data, data.primitive.capacity, 33, "the inline capacity exceeds the inline storage");
}

TEST_F(ArrayValidation, BothStoresInUse) {
  const Handle numbers = newArray(arrayType("Int"), 3);
  ArrayData& unboxed = recordOf(numbers);
  expectBroken(unboxed, unboxed.objects.size, 1, "an unboxed array has handles");
  const Handle texts = newArray(arrayType("String"), 3);
  ArrayData& boxed = recordOf(texts);
  expectBroken(boxed, boxed.primitive.size, 1, "an array of handles has unboxed slots");
}

TEST_F(ArrayValidation, WidthOfAnotherKind) {
  const Handle array = newArray(arrayType("Int"), 3);
  ArrayData& data = recordOf(array);
  expectBroken(data, data.primitive.elementSize, 2, "the slot width is not the kind's");
}

TEST_F(ArrayValidation, HandlesPastTheSize) {
  const Handle array = newArray(arrayType("String"), 3);
  ArrayData& data = recordOf(array);
  expectBroken(data, data.objects.data[3], array, "a handle slot past the size is not null");
}

}  // namespace
}  // namespace vorn::tests
