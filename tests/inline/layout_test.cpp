// Programs that were compiled for another layout, and receivers of a family that they should not be of.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include "tests/inline/inline_cases.h"

namespace vorn::tests {
namespace {

class InlineLayout : public RuntimeTest {};

TEST_F(InlineLayout, Check_SameLayout_DoesNothing) { vorn_inline_check(); }

TEST_F(InlineLayout, Check_OtherLayout_EndsTheProcessWithBothNumbers) {
  const std::string both =
      "compiled with an inline.h of layout 7, but the collections library in use, .*, has layout " +
      std::to_string(VORN_INLINE_ABI) + "; compile it again";
  EXPECT_DEATH(vorn_inline_require(7), both);
}

TEST_F(InlineLayout, InlineForms_ObjectOfAnotherFamily_EndTheProcessAsNativesDo) {
  const Handle list = object("ArrayList<Int>");
  const Handle map = object("Map");
  const std::string noList = "a list was expected, but the handle is vorn\\.collections\\.Map";
  const std::string noMap = "a map was expected, but the handle is vorn\\.collections\\.ArrayList<Int>";
  EXPECT_DEATH(vorn_inline_ArrayList_getInt(map, 0, VORN_INT), noList);
  EXPECT_DEATH(vorn_inline_ArrayList_addInt(map, 0), noList);
  EXPECT_DEATH(vorn_inline_ArrayList_setInt(map, 0, 0, VORN_INT), noList);
  EXPECT_DEATH(vorn_inline_ArrayList_size(text("no list").get()), "a list was expected");
  EXPECT_DEATH(vorn_inline_Array_getInt(list, 0, VORN_INT), "array was expected");
  EXPECT_DEATH(vorn_inline_Map__get_integer(list, 1), noMap);
  EXPECT_DEATH(vorn_inline_Map_operator_index_text(list, "a", 1), noMap);
  EXPECT_DEATH(vorn_inline_HashSet_operator_in_integer(map, 1), "a set was expected");
}

#if VORN_INLINE_CHECKS

TEST_F(InlineLayout, ProvenForms_ObjectOfAnotherFamily_EndADebugBuild) {
  const Handle list = object("ArrayList<Int>");
  const Handle map = object("Map");
  EXPECT_DEATH(vorn_proven_ArrayList_getInt(map, 0, VORN_INT), "a list was expected");
  EXPECT_DEATH(vorn_proven_ArrayList_add(text("no list").get(), nullptr), "a list was expected");
  EXPECT_DEATH(vorn_proven_Array_setInt(list, 0, 0, VORN_INT), "array was expected");
  EXPECT_DEATH(vorn_proven_Map__get_text(list, "a", 1), "a map was expected");
  EXPECT_DEATH(vorn_proven_HashSet_operator_in_integer(map, 1), "a set was expected");
  EXPECT_DEATH(vorn_proven_Tuple_operator_index(map, 0), "expected");
}

#endif

}  // namespace
}  // namespace vorn::tests
