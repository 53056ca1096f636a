// Texts that are not UTF-8, hold NUL bytes, are very long or look like something else: as elements, keys, separators and
// names.
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "runtime/text/text.h"
#include "tests/support/collections.h"

namespace vorn::tests {
namespace {

const std::vector<std::string>& badTexts() {
  static const std::vector<std::string> texts = {
      "\xFF\xFE",
      "\xC0\x80",          // NUL in two bytes
      "\xED\xA0\x80",      // a surrogate
      "\xF4\x90\x80\x80",  // beyond Unicode
      "\xE2\x82",          // cut short
      "\x80",              // the middle of a character alone
      "a\xFFz",
      "\x01\x1F\x7F\"\\\n",
      "%s%n%d",
      "<<<>>",
      "ArrayList<",
      ">",
      "Int<Int>",
      "vorn.",
      "..",
      " ",
      "Int ",
      std::string(100'000, '\xBF'),
      std::string(5000, '<'),
      "",
  };
  return texts;
}

// Texts with NUL bytes too, which only Strings can hold.
std::vector<std::string> badStrings() {
  std::vector<std::string> texts = badTexts();
  for (const char* tail : {"", "b", "c"}) texts.push_back(std::string("a\0", 2) + tail);
  texts.push_back(std::string("\0", 1));
  texts.push_back(std::string("\0\xFF", 2));
  return texts;
}

std::string bytesOf(void* handle) {
  std::string_view text;
  EXPECT_TRUE(vorn::runtime::readText(handle, text));
  return std::string(text);
}

class BadTexts : public RuntimeTest {};

TEST_F(BadTexts, AsKeys_AreToldApartByAllTheirBytes) {
  const std::vector<std::string> texts = badStrings();
  for (const char* type : {"Map", "HashMapSync", "SortedMap", "SortedMapSync"}) {
    const Handle map = object(type);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      vorn_collections_Map_put(map, string(texts[i]), integer("Int", static_cast<std::int64_t>(i)));
    }
    EXPECT_EQ(vorn_collections_Map_size(map), static_cast<long long>(texts.size()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
      std::int64_t found = -1;
      vorn_unbox_integer(vorn_collections_Map__get(map, string(texts[i])), &found);
      EXPECT_EQ(found, static_cast<std::int64_t>(i)) << type;
    }
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, string("\xFF")));
    EXPECT_EQ(faultOfMap(map), "");
    EXPECT_NE(vorn_collections_Map_toString(map), nullptr);
  }
  const Handle set = object("HashSet");
  for (const std::string& bytes : texts) vorn_collections_HashSet_add(set, string(bytes));
  EXPECT_EQ(vorn_collections_HashSet_size(set), static_cast<long long>(texts.size()));
  EXPECT_EQ(faultOfSet(set), "");
}

TEST_F(BadTexts, AsElements_AreSortedAndFoundByTheirBytes) {
  std::vector<std::string> texts = badStrings();
  const Handle target = object("ArrayList<String>");
  for (const std::string& bytes : texts) vorn_collections_ArrayList_add(target, string(bytes));
  // The equality of elements takes texts as C strings, up to their first NUL.
  for (const std::string& bytes : texts) {
    const auto same = std::ranges::count_if(
        texts, [&](const std::string& other) { return std::strcmp(other.c_str(), bytes.c_str()) == 0; });
    EXPECT_EQ(vorn_collections_ArrayList_count(target, string(bytes)), same);
  }
  vorn_collections_ArrayList_sort(target);
  std::ranges::sort(texts);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(bytesOf(vorn_collections_ArrayList_operator_index(target, static_cast<long long>(i))), texts[i]) << i;
  }
  EXPECT_VALID_LIST(target);
}

TEST_F(BadTexts, AsSeparatorsAndElements_AreJoinedAsTheyAre) {
  for (const std::string& separator : badTexts()) {
    const Handle target = list("LinkedListSync", {text("\xFE"), string("b\xC0")});
    const Handle joined = vorn_collections_ArrayList_join(target, separator.c_str());
    EXPECT_EQ(bytesOf(joined), "\xFE" + separator + "b\xC0");
  }
}

TEST_F(BadTexts, InDisplays_LeaveATextThatEnds) {
  for (const std::string& bytes : badStrings()) {
    const Handle shown = vorn_collections_ArrayList_toString(list("ArrayList", {string(bytes), string("end")}));
    const std::string display = bytesOf(shown);
    EXPECT_EQ(display.find('\0'), std::string::npos);
    EXPECT_EQ(display.find('\n'), std::string::npos);
    EXPECT_TRUE(display.ends_with(", \"end\"]")) << display.substr(0, 100);
  }
}

// What a name that means nothing leads to differs with the native; the list is whole in any case.
TEST_F(BadTexts, AsTypeNames_LeaveListsWhole) {
  for (const std::string& bytes : badTexts()) {
    const char* const name = bytes.c_str();
    for (const char* type : {"ArrayList", "LinkedListSync", "ArrayListSync<Int>"}) {
      const Handle target = object(type);
      vorn_collections_ArrayList_addPrimitiveI64(target, 5, name);
      vorn_collections_ArrayList_addPrimitiveDouble(target, 0.5, name);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 2);
      EXPECT_VALID_LIST(target);
      vorn_collections_ArrayList_preparePrimitiveI64Data(target, 3, name);
      vorn_collections_ArrayList_commitPrimitiveI64DataSize(target, 0);
      EXPECT_VALID_LIST(target);
      vorn_collections_ArrayList_prepareDoubleData(target, 3, name);
      vorn_collections_ArrayList_commitDoubleDataSize(target, 0);
      EXPECT_VALID_LIST(target);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
      takeErrors();
    }
    void* made = nullptr;
    vorn_collections_ArrayList_newPrimitiveData(2, name, &made);
    EXPECT_EQ(made, nullptr) << "a name that is no primitive type's";
    EXPECT_RAISED("TypeError: ArrayList primitive storage expected");
    Handle kept = vorn_collections_ArrayListSync_primitiveLiteral0(name);
    EXPECT_VALID_LIST(kept);
    vorn_collections_ArrayList_newDoubleData(2, name, &made);
    kept = made;
    EXPECT_VALID_LIST(kept);
  }
}

TEST_F(BadTexts, AsNamesOfTheEmbeddingApi_AreRefusedOrTaken) {
  const Handle tuple = object("Tuple");
  for (const std::string& bytes : badTexts()) {
    const char* const name = bytes.c_str();
    EXPECT_EQ(vorn_box_integer(name, 1), nullptr);
    EXPECT_EQ(vorn_box_floating(name, 1), nullptr);
    EXPECT_EQ(vorn_tuple_new(name, nullptr, 0), nullptr);
    std::int64_t value = 7;
    EXPECT_EQ(vorn_field_get_integer(tuple, name, &value), 0);
    EXPECT_EQ(vorn_field_set_handle(tuple, name, nullptr), 0);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(vorn_is_instance(tuple, name), 0);
    EXPECT_EQ(vorn_call(name, nullptr, nullptr, nullptr), -1);
    vorn_runtime_options options;
    EXPECT_EQ(vorn_runtime_parse_options(name, &options) != 0, bytes.empty());
    vorn_raise(name, name);
    EXPECT_STREQ(vorn_error_message(0), name);
    vorn_errors_clear();
  }
}

TEST_F(BadTexts, AsGenericArguments_MakeObjectsThatAreWhole) {
  for (const std::string& bytes : badTexts()) {
    const Handle made = object("ArrayListSync<" + bytes + ">");
    if (made.get() == nullptr) continue;
    vorn_collections_ArrayList_add(made, integer("Int", 1));
    takeErrors();
    EXPECT_VALID_LIST(made);
    const Handle array = object("Array<" + bytes + ">");
    if (array.get() == nullptr) continue;
    vorn_collections_Array_ctor(array, 3);
    EXPECT_EQ(faultOfArray(array), "");
  }
}

}  // namespace
}  // namespace vorn::tests
