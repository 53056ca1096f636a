/* The public headers from C11: a runtime is started, lists are filled and read, and errors looked at. Prints every
 * check that fails and returns 1 when there was one. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/runtime.h>

static int failures = 0;

static void check(int holds, const char* what, int line) {
  if (holds) return;
  ++failures;
  fprintf(stderr, "line %d: %s does not hold\n", line, what);
}
#define CHECK(condition) check((condition) != 0, #condition, __LINE__)

/* Exactly one pending error, of this class and message; clears it. */
static int raised(const char* exception_class, const char* message) {
  const int as_expected = vorn_error_count() == 1 && strcmp(vorn_error_class(0), exception_class) == 0 &&
                          strcmp(vorn_error_message(0), message) == 0;
  for (size_t i = 0; !as_expected && i < vorn_error_count(); ++i)
    fprintf(stderr, "pending: %s: %s\n", vorn_error_class(i), vorn_error_message(i));
  vorn_errors_clear();
  return as_expected;
}

static int64_t integer_of(void* handle) {
  int64_t value = INT64_MIN;
  vorn_unbox_integer(handle, &value);
  return value;
}

/* A box and its value by the functions of one type; a box of another type is refused. */
#define CHECK_BOX(type, suffix, type_name, extreme)                \
  do {                                                             \
    type value = 0;                                                \
    box = vorn_box_##suffix(extreme);                              \
    CHECK(strcmp(vorn_type_name(box), "vorn." type_name) == 0);    \
    CHECK(vorn_unbox_##suffix(box, &value) && value == (extreme)); \
    CHECK(!vorn_unbox_##suffix(vorn_box_boolean(true), &value));   \
  } while (0)

static void check_boxes(void) {
  void* box = NULL;
  vorn_root_add(&box);
  CHECK_BOX(int8_t, sbyte, "SByte", INT8_MIN);
  CHECK_BOX(uint8_t, byte, "Byte", UINT8_MAX);
  CHECK_BOX(int16_t, short, "Short", INT16_MIN);
  CHECK_BOX(uint16_t, ushort, "UShort", UINT16_MAX);
  CHECK_BOX(int32_t, int, "Int", INT32_MIN);
  CHECK_BOX(uint32_t, uint, "UInt", UINT32_MAX);
  CHECK_BOX(int64_t, long, "Long", INT64_MIN);
  CHECK_BOX(uint64_t, ulong, "ULong", UINT64_MAX);
  CHECK_BOX(float, float, "Float", 0.1F);
  CHECK_BOX(double, double, "Double", 0.1);
  CHECK_BOX(uint32_t, char, "Char", UINT32_C(0x10FFFF));
  CHECK_BOX(uint16_t, code_unit, "CodeUnit", UINT16_MAX);
  vorn_root_remove(&box);
}

static void check_unboxed_list(void) {
  void* list = NULL;
  void* value = NULL;
  vorn_root_add(&list);
  vorn_root_add(&value);
  list = vorn_object_new("ArrayList<Int>");
  CHECK(vorn_is_object(list));
  CHECK(strcmp(vorn_type_name(list), "vorn.collections.ArrayList<Int>") == 0);
  for (int i = 0; i < 33; ++i) vorn_collections_ArrayList_addInt(list, 100 + i);
  value = vorn_box_int(7);
  vorn_collections_ArrayList_add(list, value);
  vorn_collections_ArrayList_operator_index_eq(list, 0, value);

  vorn_list_storage_info info;
  CHECK(vorn_list_get_storage(list, &info));
  CHECK(info.storage == VORN_LIST_PRIMITIVE && info.size == 34 && info.capacity == 64 && info.bytes_per_element == 4);
  CHECK(vorn_collections_ArrayList_size(list) == 34);
  CHECK(vorn_collections_ArrayList_getInt(list, -1) == 7);
  CHECK(vorn_collections_ArrayList_getIntFast(list, 32) == 132);
  CHECK(vorn_collections_ArrayList_getDouble(list, 1) == 101.0);
  CHECK(integer_of(vorn_collections_ArrayList_operator_index(list, 5)) == 105);
  CHECK(vorn_collections_ArrayList_count(list, value) == 2);
  CHECK(vorn_collections_ArrayList_lastIndexOf(list, value, -1) == 33);
  CHECK(vorn_collections_ArrayList_remove(list, value) == true);
  CHECK(vorn_collections_ArrayList_getInt(list, 0) == 101);

  CHECK(vorn_error_count() == 0);
  CHECK(vorn_collections_ArrayList_getInt(list, 33) == 0);
  CHECK(raised("IndexException", "Index out of bounds"));
  value = vorn_string_new("seven", SIZE_MAX);
  vorn_collections_ArrayList_add(list, value);
  CHECK(raised("TypeError", "ArrayList<Int> cannot accept vorn.String"));
  vorn_collections_ArrayList_add(NULL, value);
  CHECK(raised("NullException", "Cannot call ArrayList.add() on null"));
  CHECK(vorn_collections_ArrayList_size(list) == 33);
  vorn_root_remove(&value);
  vorn_root_remove(&list);
}

static void check_list_of_texts(const char* class_name) {
  void* list = NULL;
  void* value = NULL;
  vorn_root_add(&list);
  vorn_root_add(&value);
  list = vorn_object_new(class_name);
  static const char* const kTexts[] = {"one", "two", "three"};
  for (size_t i = 0; i < 3; ++i) {
    value = vorn_string_new(kTexts[i], strlen(kTexts[i]));
    vorn_collections_ArrayList_add(list, value);
  }
  value = vorn_text_new("zero");
  vorn_collections_ArrayList_addAt(list, 0, value);
  vorn_heap_collect();
  CHECK(strcmp(vorn_string_text(vorn_collections_ArrayList_operator_index(list, 0)), "zero") == 0);
  CHECK(strcmp(vorn_string_text(vorn_collections_ArrayList_operator_index(list, -1)), "three") == 0);
  value = vorn_text_new("two");
  CHECK(vorn_collections_ArrayList_indexOf(list, value, 0) == 2);
  CHECK(vorn_collections_ArrayList_operator_in(list, value) == true);
  vorn_collections_ArrayList_removeAt(list, 2);
  CHECK(vorn_collections_ArrayList_operator_in(list, value) == false);
  vorn_collections_ArrayList_clear(list);
  CHECK(vorn_collections_ArrayList_sizeFast(list) == 0);
  CHECK(vorn_error_count() == 0);
  vorn_root_remove(&value);
  vorn_root_remove(&list);
}

static void check_sequences(void) {
  void* items[2] = {NULL, NULL};
  void* tuple = NULL;
  void* list = NULL;
  void* map = NULL; /* a list at first */
  vorn_root_add(&items[0]);
  vorn_root_add(&items[1]);
  vorn_root_add(&tuple);
  vorn_root_add(&list);
  vorn_root_add(&map);
  items[0] = vorn_string_new("answer", SIZE_MAX);
  items[1] = vorn_box_int(42);
  tuple = vorn_tuple_new("Tuple<String,Int>", items, 2);
  CHECK(strcmp(vorn_type_name(tuple), "vorn.collections.Tuple<String,Int>") == 0);
  CHECK(vorn_collections_Tuple_size(tuple) == 2);
  CHECK(vorn_collections_Tuple_operator_index(tuple, -1) == items[1]);
  vorn_collections_Tuple_operator_index_eq(tuple, 0, NULL);
  CHECK(vorn_error_count() == 1 && strcmp(vorn_error_class(0), "ReadOnlyException") == 0);
  vorn_errors_clear();

  list = vorn_object_new("ImmutableList");
  map = vorn_object_new("ArrayList");
  vorn_collections_ArrayList_add(map, tuple);
  vorn_collections_ImmutableList_ctor(list, map);
  CHECK(vorn_collections_ImmutableList_size(list) == 1);
  CHECK(vorn_collections_ImmutableList_operator_index(list, 0) == tuple);

  map = vorn_object_new("SortedMap<Tuple,String>");
  CHECK(vorn_object_new("HashSetSync<Int>") != NULL);
  vorn_collections_Map_put(map, tuple, items[0]);
  tuple = vorn_tuple_new(NULL, items, 2);
  CHECK(vorn_collections_Map_operator_index(map, tuple) == items[0]);
  CHECK(vorn_error_count() == 0);
  vorn_root_remove(&map);
  vorn_root_remove(&list);
  vorn_root_remove(&tuple);
  vorn_root_remove(&items[1]);
  vorn_root_remove(&items[0]);
}

int main(void) {
  const char* heap = getenv("VORN_TEST_HEAP");
  vorn_runtime_options options;
  if (!vorn_runtime_parse_options(heap != NULL ? heap : "heap=collected", &options) || !vorn_runtime_start(&options)) {
    fprintf(stderr, "cannot start the runtime with VORN_TEST_HEAP=%s\n", heap != NULL ? heap : "(unset)");
    return 1;
  }
  check_boxes();
  check_unboxed_list();
  check_list_of_texts("ArrayList<String>");
  check_list_of_texts("ArrayListSync<String>");
  check_list_of_texts("LinkedList<String>");
  check_list_of_texts("LinkedListSync");
  check_sequences();
  vorn_runtime_stop();
  return failures == 0 ? 0 : 1;
}
