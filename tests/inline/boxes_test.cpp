// The numbers in boxes, read inline: for every type and handle what the runtime's functions for the type give.
#include <vorn/runtime.h>

#include "tests/inline/inline_cases.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class InlineBoxes : public RuntimeTest {};

// What the runtime finds in a handle as a type; "none" where it is no box of the type.
template <class Value>
std::string told(int (*unbox)(void*, Value*), void* handle) {
  Value value{};
  if (unbox(handle, &value) == 0) return "none";
  if constexpr (std::is_floating_point_v<Value>) return describeNumber(static_cast<double>(value));
  return std::to_string(static_cast<long long>(value));
}
std::string toldByRuntime(vorn_element_type type, void* handle) {
  switch (type) {
    case VORN_SBYTE:
      return told(vorn_unbox_sbyte, handle);
    case VORN_BYTE:
      return told(vorn_unbox_byte, handle);
    case VORN_SHORT:
      return told(vorn_unbox_short, handle);
    case VORN_USHORT:
      return told(vorn_unbox_ushort, handle);
    case VORN_INT:
      return told(vorn_unbox_int, handle);
    case VORN_UINT:
      return told(vorn_unbox_uint, handle);
    case VORN_LONG:
      return told(vorn_unbox_long, handle);
    case VORN_ULONG:
      return told(vorn_unbox_ulong, handle);
    case VORN_FLOAT:
      return told(vorn_unbox_float, handle);
    case VORN_DOUBLE:
      return told(vorn_unbox_double, handle);
    case VORN_BOOLEAN:
      return told(vorn_unbox_boolean, handle);
    case VORN_CHAR:
      return told(vorn_unbox_char, handle);
    case VORN_CODE_UNIT:
      return told(vorn_unbox_code_unit, handle);
    case VORN_HANDLES:
      break;
  }
  return "none";
}

std::string toldInline(vorn_element_type type, const void* handle) {
  long long integer = 0;
  double floating = 0;
  if (vorn_inline_unbox_integer(handle, type, &integer)) return std::to_string(integer);
  return vorn_inline_unbox_floating(handle, type, &floating) ? describeNumber(floating) : "none";
}

// Boxes of all types with values in and beyond their ranges, and everything else that may be a handle.
std::vector<Handle> handles() {
  std::vector<Handle> all = {Handle(),      string("Int"), item(1), list("ArrayList<Int>", {integer("Int", 1)}),
                             boolean(true), boolean(false)};
  for (const char* bare : {"", "a", "a text that is longer than a box"}) all.push_back(text(bare));
  for (const vorn_element_type type : kTypes) {
    if (type == VORN_BOOLEAN) continue;
    if (isFloating(type)) {
      for (const double value : numbersToStore()) all.push_back(floating(nameOf(type), value));
    } else {
      for (const long long value : integersToStore()) all.push_back(integer(nameOf(type), value));
    }
  }
  return all;
}

TEST_F(InlineBoxes, EveryTypeAndHandle_AreReadAsTheRuntimeReadsThem) {
  const std::vector<Handle> all = handles();
  takeCalls();
  for (const vorn_element_type type : kTypes) {
    for (const Handle& handle : all) {
      const std::string expected = toldByRuntime(type, handle);
      EXPECT_EQ(toldInline(type, handle), expected) << nameOf(type) << " in " << describe(handle);
      if (expected == "none") continue;
      EXPECT_EQ(isFloating(type) ? describeNumber(vorn_proven_unbox_floating(handle, type))
                                 : std::to_string(vorn_proven_unbox_integer(handle, type)),
                expected)
          << nameOf(type) << " in " << describe(handle);
    }
  }
  EXPECT_EQ(takeCalls(), std::vector<std::string>{});
  EXPECT_NOTHING_RAISED();
}

TEST_F(InlineBoxes, BorrowedBox_IsReadAsOneOfTheHeap) {
  vorn_borrowed_box storage;
  EXPECT_EQ(toldInline(VORN_INT, vorn_borrow_int(&storage, -5)), "-5");
  EXPECT_EQ(toldInline(VORN_LONG, vorn_borrow_int(&storage, -5)), "none");
  EXPECT_EQ(toldInline(VORN_DOUBLE, vorn_borrow_double(&storage, 0.5)), "0.5");
}

TEST_F(InlineBoxes, RefusedHandle_LeavesTheValue) {
  long long integer = 77;
  double floating = 7.5;
  EXPECT_FALSE(vorn_inline_unbox_integer(string("a"), VORN_INT, &integer));
  EXPECT_FALSE(vorn_inline_unbox_integer(tests::floating("Double", 1), VORN_DOUBLE, &integer));
  EXPECT_FALSE(vorn_inline_unbox_integer(nullptr, VORN_HANDLES, &integer));
  EXPECT_FALSE(vorn_inline_unbox_floating(tests::integer("Int", 1), VORN_INT, &floating));
  EXPECT_FALSE(vorn_inline_unbox_floating(tests::floating("Float", 1), VORN_DOUBLE, &floating));
  EXPECT_EQ(integer, 77);
  EXPECT_EQ(floating, 7.5);
}

#if VORN_INLINE_CHECKS

TEST_F(InlineBoxes, ProvenForms_AnotherHandle_EndADebugBuild) {
  const Handle box = integer("Long", 1);
  EXPECT_DEATH(vorn_proven_unbox_integer(box, VORN_INT), "integer was expected, but the handle is vorn.Long");
  EXPECT_DEATH(vorn_proven_unbox_integer(nullptr, VORN_INT), "integer was expected");
  EXPECT_DEATH(vorn_proven_unbox_floating(box, VORN_DOUBLE), "floating number was expected");
}

#endif

}  // namespace
}  // namespace vorn::tests
