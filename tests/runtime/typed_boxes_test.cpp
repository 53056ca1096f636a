// Boxing and unboxing by a function for each primitive type, and that the table of types has no row without them.
#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

#include "collections/core/kinds.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using collections::PrimitiveType;
using TypedBoxes = RuntimeTest;

// One type's functions, with its values in the bits of a 64-bit word.
struct TypedBox {
  PrimitiveType type;
  bool isFloating;
  bool isSigned;
  std::size_t width;
  std::vector<std::uint64_t> samples;
  void* (*box)(std::uint64_t bits);
  int (*unbox)(void* handle, std::uint64_t& bits);
  int (*unboxNowhere)(void* handle);
};

template <class Value>
std::uint64_t bitsOf(Value value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(value));
  return bits;
}

template <class Value>
Value fromBits(std::uint64_t bits) {
  Value value;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

template <auto kBox, auto kUnbox, class Value>
TypedBox typedBoxOf(PrimitiveType type, void* (*)(Value)) {
  using Limits = std::numeric_limits<Value>;
  TypedBox typed{type, std::is_floating_point_v<Value>, std::is_signed_v<Value>, sizeof(Value), {}, {}, {}, {}};
  for (const Value value : {Limits::lowest(), Limits::min(), Value{0}, Value{1}, Limits::max()})
    typed.samples.push_back(bitsOf(value));
  typed.box = [](std::uint64_t bits) { return kBox(fromBits<Value>(bits)); };
  typed.unbox = [](void* handle, std::uint64_t& bits) {
    auto value = fromBits<Value>(bits);
    const int status = kUnbox(handle, &value);
    bits = bitsOf(value);
    return status;
  };
  typed.unboxNowhere = [](void* handle) { return kUnbox(handle, nullptr); };
  return typed;
}

template <auto kBox, auto kUnbox>
TypedBox typedBox(PrimitiveType type) {
  return typedBoxOf<kBox, kUnbox>(type, kBox);
}

const TypedBox kTypedBoxes[] = {
    typedBox<vorn_box_sbyte, vorn_unbox_sbyte>(PrimitiveType::SByte),
    typedBox<vorn_box_byte, vorn_unbox_byte>(PrimitiveType::Byte),
    typedBox<vorn_box_short, vorn_unbox_short>(PrimitiveType::Short),
    typedBox<vorn_box_ushort, vorn_unbox_ushort>(PrimitiveType::UShort),
    typedBox<vorn_box_int, vorn_unbox_int>(PrimitiveType::Int),
    typedBox<vorn_box_uint, vorn_unbox_uint>(PrimitiveType::UInt),
    typedBox<vorn_box_long, vorn_unbox_long>(PrimitiveType::Long),
    typedBox<vorn_box_ulong, vorn_unbox_ulong>(PrimitiveType::ULong),
    typedBox<vorn_box_float, vorn_unbox_float>(PrimitiveType::Float),
    typedBox<vorn_box_double, vorn_unbox_double>(PrimitiveType::Double),
    typedBox<vorn_box_char, vorn_unbox_char>(PrimitiveType::Char),
    typedBox<vorn_box_code_unit, vorn_unbox_code_unit>(PrimitiveType::CodeUnit),
};

std::string nameOf(const TypedBox& typed) { return std::string(collections::infoOf(typed.type).name); }

TEST_F(TypedBoxes, EveryTypeOfTheTableButBooleanHasItsFunctionsInItsOwnForm) {
  std::vector<PrimitiveType> covered;
  for (const TypedBox& typed : kTypedBoxes) {
    covered.push_back(typed.type);
    const auto kind = collections::kindOf(typed.type);
    const bool inForm = collections::visitKind(
        kind,
        [&typed](auto tag) {
          using Element = typename decltype(tag)::Element;
          return typed.width == sizeof(Element) && typed.isFloating == std::is_floating_point_v<Element> &&
                 typed.isSigned == std::is_signed_v<Element>;
        },
        false);
    EXPECT_TRUE(inForm) << nameOf(typed);
  }
  std::vector<PrimitiveType> all;
  for (std::size_t i = 1; i < collections::kPrimitiveTypes; ++i) {
    if (static_cast<PrimitiveType>(i) != PrimitiveType::Boolean) all.push_back(static_cast<PrimitiveType>(i));
  }
  EXPECT_EQ(covered, all);
}

TEST_F(TypedBoxes, Boxes_BearTheNameOfTheirTypeAndKeepEveryValue) {
  for (const TypedBox& typed : kTypedBoxes) {
    for (const std::uint64_t bits : typed.samples) {
      const Handle box = typed.box(bits);
      EXPECT_EQ(vorn_type_name(box), "vorn." + nameOf(typed));
      std::uint64_t read = bits ^ 0xFF;
      EXPECT_EQ(typed.unbox(box, read), 1) << nameOf(typed);
      EXPECT_EQ(read, bits) << nameOf(typed);
    }
  }
}

TEST_F(TypedBoxes, Boxes_AreWhatBoxingByNameMakes) {
  const Handle negative = vorn_box_short(-2);
  std::int64_t whole = 0;
  EXPECT_EQ(vorn_unbox_integer(negative, &whole), 1);
  EXPECT_EQ(whole, -2);
  EXPECT_EQ(vorn_unbox_integer(Handle(vorn_box_uint(0xFFFFFFFF)), &whole), 1);
  EXPECT_EQ(whole, 0xFFFFFFFF);
  double real = 0;
  EXPECT_EQ(vorn_unbox_floating(Handle(vorn_box_float(0.1F)), &real), 1);
  EXPECT_EQ(real, double{0.1F});
  EXPECT_EQ(vorn_equals(negative, integer("Short", -2)), 1);
  EXPECT_EQ(vorn_equals(Handle(vorn_box_char('A')), integer("Char", 'A')), 1);
  EXPECT_EQ(vorn_equals(Handle(vorn_box_char('A')), Handle(vorn_box_code_unit('A'))), 0);
}

TEST_F(TypedBoxes, Boxing_MakesANewBoxEachTime) {
  const Handle first = vorn_box_int(5);
  const Handle second = vorn_box_int(5);
  EXPECT_NE(first.get(), second.get());
}

TEST_F(TypedBoxes, Unboxing_RefusesBoxesOfEveryOtherTypeAndLeavesTheValueAlone) {
  for (const TypedBox& made : kTypedBoxes) {
    const Handle box = made.box(0);
    for (const TypedBox& asked : kTypedBoxes) {
      if (asked.type == made.type) continue;
      std::uint64_t bits = asked.samples.back();
      EXPECT_EQ(asked.unbox(box, bits), 0) << nameOf(made) << " as " << nameOf(asked);
      EXPECT_EQ(bits, asked.samples.back());
    }
  }
}

TEST_F(TypedBoxes, Unboxing_RefusesEverythingThatIsNoNumberBox) {
  for (const Handle& handle :
       {Handle(nullptr), boolean(true), string("1"), text("1"), plain(1), object("ArrayList<Int>")}) {
    for (const TypedBox& typed : kTypedBoxes) {
      std::uint64_t bits = typed.samples.back();
      EXPECT_EQ(typed.unbox(handle, bits), 0) << nameOf(typed);
      EXPECT_EQ(bits, typed.samples.back());
    }
  }
}

TEST_F(TypedBoxes, Unboxing_WithNowhereToPutTheValueIsRefused) {
  for (const TypedBox& typed : kTypedBoxes) EXPECT_EQ(typed.unboxNowhere(Handle(typed.box(0))), 0) << nameOf(typed);
}

TEST_F(TypedBoxes, Unboxing_OfAnIntegerOutsideTheRangeGivesItsLowBits) {
  std::uint8_t value = 0;
  EXPECT_EQ(vorn_unbox_byte(integer("Byte", 0x1FE), &value), 1);
  EXPECT_EQ(value, 0xFE);
}

TEST_F(TypedBoxes, ExhaustedMemory_IsANullResult) {
  for (const TypedBox& typed : kTypedBoxes) {
    vorn_heap_fail_allocation(0);
    EXPECT_EQ(typed.box(0), nullptr) << nameOf(typed);
    EXPECT_EQ(vorn_heap_failure_happened(), 1);
  }
}

TEST_F(TypedBoxes, Boxing_AllocatesOnceAndUnboxingNever) {
  for (const TypedBox& typed : kTypedBoxes) {
    vorn_heap_statistics before, between, after;
    vorn_heap_get_statistics(&before);
    const Handle box = typed.box(0);
    vorn_heap_get_statistics(&between);
    std::uint64_t bits = 0;
    EXPECT_EQ(typed.unbox(box, bits), 1);
    vorn_heap_get_statistics(&after);
    EXPECT_EQ(between.allocations - before.allocations, 1u) << nameOf(typed);
    EXPECT_EQ(after.allocations, between.allocations) << nameOf(typed);
  }
}

}  // namespace
}  // namespace vorn::tests
