// Sorting Strings asks the runtime once a pair. The questions are counted by wrapping them at link time.
#include "collections/core/equality/element_order.h"
#include "collections/core/port/objects.h"
#include "tests/core/core_test_support.h"
#include "tests/core/user_classes.h"

namespace {
int questions = 0;
}

// Linked in place of the runtime's functions; the second name of each is the real one.
#define VORN_COUNTED(result, wrapped, real, parameters, arguments) \
  extern "C" result real parameters;                               \
  extern "C" result wrapped parameters {                           \
    ++questions;                                                   \
    return real arguments;                                         \
  }
VORN_COUNTED(int, __wrap__Z20compareStringObjectsPvS_, __real__Z20compareStringObjectsPvS_, (void* a, void* b), (a, b))
VORN_COUNTED(bool, __wrap__Z27Vorn_collectionObjectsEqualPvS_Rb, __real__Z27Vorn_collectionObjectsEqualPvS_Rb,
             (void* a, void* b, bool& equal), (a, b, equal))
VORN_COUNTED(bool, __wrap__Z26Vorn_collectionObjectsLessPvS_Rb, __real__Z26Vorn_collectionObjectsLessPvS_Rb,
             (void* a, void* b, bool& less), (a, b, less))
#undef VORN_COUNTED

namespace vorn::tests {
namespace {

class StringOrder : public RuntimeTest {};

TEST_F(StringOrder, AsksOnceAPair) {
  const std::vector<std::string> texts = {"",         "a",        "ab",      "b", std::string("a\0b", 3),
                                          "\xC3\xA9", "prefix-1", "prefix-2"};
  for (const std::string& left : texts) {
    for (const std::string& right : texts) {
      const Handle leftString = string(left);
      const Handle rightString = string(right);
      questions = 0;
      const int order = compareListValues(leftString, rightString);
      EXPECT_EQ(questions, 1);
      EXPECT_EQ(order, left == right ? 0 : (left < right ? -1 : 1)) << left << " and " << right;
    }
  }
}

TEST_F(StringOrder, AsksNothingAboutTheSameString) {
  const Handle word = string("word");
  questions = 0;
  EXPECT_EQ(compareListValues(word, word), 0);
  EXPECT_EQ(questions, 0);
}

// Both texts are made by user code: the first has to outlive the making of the second.
TEST_F(StringOrder, TextsOfObjectsWhoseClassIsNamedString_AreComparedWhileBothLive) {
  const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}};
  vorn_class_definition definition{};
  definition.name = "texts.String";
  definition.fields = fields;
  definition.field_count = 1;
  definition.to_string = [](void* self, void*) -> void* {
    const std::string words(100, static_cast<char>('a' + Vorn_getField_i64(self, "id")));
    return string(words).get();
  };
  defineClass(definition);
  const Handle first = object("texts.String");
  const Handle same = object("texts.String");
  const Handle other = object("texts.String");
  vorn_field_set_integer(other, "id", 1);
  EXPECT_TRUE(listValuesEqual(first, same));
  EXPECT_FALSE(listValuesEqual(first, other));
  EXPECT_FALSE(listValuesEqual(other, first));
}

}  // namespace
}  // namespace vorn::tests
