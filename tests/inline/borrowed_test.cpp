// Borrowed boxes: natives that may be given one give the results that they give for a box of the heap, keep no handle of
// it and show it to no user code; the others are caught when they are about to keep it.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <cstring>
#include <system_error>

#include "collections/array/array_data.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/values.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/inline/inline_cases.h"
#include "tests/support/held_mutex.h"
#include "tests/support/user_objects.h"

// The test program is linked so that calls that make boxes of integers come here first.
static bool noBoxes = false;
// NOLINTBEGIN(bugprone-reserved-identifier)
void* realBoxOfInteger(RuntimeTypeName type, long long value) asm("__real__Z19boxIntegerLikeLocal15RuntimeTypeNamex");
void* wrapBoxOfInteger(RuntimeTypeName type, long long value) asm("__wrap__Z19boxIntegerLikeLocal15RuntimeTypeNamex");
// NOLINTEND(bugprone-reserved-identifier)
void* wrapBoxOfInteger(RuntimeTypeName type, long long value) {
  return noBoxes ? nullptr : realBoxOfInteger(type, value);
}

namespace vorn::tests {
namespace {

class Borrowed : public RuntimeTest {};

// A number in both sorts of box.
struct Number {
  vorn_element_type type;
  long long integer;
  double floating;
};

const std::vector<Number>& borrowable() {
  static const std::vector<Number> all = {
      {VORN_INT, 3, 0},      {VORN_INT, -7, 0},    {VORN_LONG, kLeast, 0},  {VORN_BYTE, 255, 0},
      {VORN_SBYTE, -1, 0},   {VORN_SHORT, 300, 0}, {VORN_USHORT, 65535, 0}, {VORN_UINT, 7, 0},
      {VORN_ULONG, -1, 0},   {VORN_CHAR, 'a', 0},  {VORN_CODE_UNIT, 97, 0}, {VORN_DOUBLE, 0, 2.5},
      {VORN_DOUBLE, 0, 3.0}, {VORN_FLOAT, 0, 0.1}, {VORN_DOUBLE, 0, -0.0},  {VORN_INT, 1'000'000, 0}};
  return all;
}

void* borrowed(vorn_borrowed_box& storage, const Number& number) {
  return isFloating(number.type) ? vorn_borrow_floating(&storage, number.type, number.floating)
                                 : vorn_borrow_integer(&storage, number.type, number.integer);
}
Handle boxed(const Number& number) {
  return isFloating(number.type) ? floating(nameOf(number.type), number.floating)
                                 : integer(nameOf(number.type), number.integer);
}
std::string described(const Number& number) { return describe(boxed(number)); }

TEST_F(Borrowed, Box_AnyNumber_IsReadAsOneOfTheHeap) {
  for (const Number& number : borrowable()) {
    vorn_borrowed_box storage;
    void* const handle = borrowed(storage, number);
    EXPECT_EQ(describe(handle), described(number));
    EXPECT_STREQ(vorn_type_name(handle), vorn_type_name(boxed(number)));
    EXPECT_TRUE(collections::isBorrowedBox(handle));
    EXPECT_FALSE(collections::isBorrowedBox(boxed(number)));
  }
  vorn_borrowed_box storage;
  EXPECT_EQ(describe(vorn_borrow_int(&storage, -5)), "Int -5");
  EXPECT_EQ(describe(vorn_borrow_long(&storage, 1LL << 40)), "Long 1099511627776");
  EXPECT_EQ(describe(vorn_borrow_double(&storage, 0.5)), "Double 0.5");
}

TEST_F(Borrowed, ClassOfAType_WithoutMemory_Throws) {
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(vorn_borrow_class(VORN_LONG), std::bad_alloc);
}

// The host throws by itself; another runtime may answer null.
TEST_F(Borrowed, ClassOfAType_RuntimeThatGivesNoBox_Throws) {
  noBoxes = true;
  EXPECT_THROW(vorn_borrow_class(VORN_LONG), std::bad_alloc);
  noBoxes = false;
}

// What the inline searches leave to the library is locked there.
TEST_F(Borrowed, SearchesOfSynchronisedCollections_Lock) {
  const Handle map = object("HashMapSync");
  const Handle set = object("HashSetSync");
  const HeldRecordMutex<MapData> heldMap(*getMapData(map));
  const HeldRecordMutex<SetData> heldSet(*getSetData(set));
  EXPECT_THROW(vorn_inline_find_integer(getMapData(map), 1), std::system_error);
  EXPECT_THROW(vorn_inline_has_integer(getSetData(set), 1), std::system_error);
}

// The box is nobody else's while the elements beside it are boxed.
TEST_F(Borrowed, BoxedStores_IntoUnboxedStorage_KeepTheBox) {
  const Handle numbers = list("ArrayList", {integer("Int", 1), integer("Int", 2)});
  vorn_inline_set_boxed_floating(numbers, 0, 2.5, VORN_DOUBLE);
  EXPECT_EQ(describe(Handle(vorn_collections_ArrayList_operator_index(numbers, 0))), "Double 2.5");
  const Handle reals = list("ArrayList", {floating("Double", 0.5), floating("Double", 1.5)});
  vorn_inline_set_boxed_integer(reals, 1, 7, VORN_LONG);
  EXPECT_EQ(describe(Handle(vorn_collections_ArrayList_operator_index(reals, 1))), "Long 7");
  EXPECT_EQ(describe(Handle(vorn_collections_ArrayList_operator_index(reals, 0))), "Double 0.5");
}

// No form asks for a box of no type.
TEST_F(Borrowed, BoxedStores_OfNoType_LeaveTheList) {
  const Handle target = list("ArrayList", {integer("Int", 1)});
  vorn_inline_set_boxed_integer(target, 0, 5, 0);
  vorn_inline_set_boxed_integer(target, 0, 5, VORN_DOUBLE);
  vorn_inline_set_boxed_floating(target, 0, 5.0, VORN_INT);
  EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 0), 1);
}

TEST_F(Borrowed, Borrowing_TypeBorrowedBefore_AllocatesNothing) {
  for (const Number& number : borrowable()) {
    vorn_borrowed_box storage;
    borrowed(storage, number);
    vorn_heap_statistics before;
    vorn_heap_get_statistics(&before);
    borrowed(storage, number);
    vorn_heap_statistics after;
    vorn_heap_get_statistics(&after);
    EXPECT_EQ(after.allocations, before.allocations);
  }
}

// ---- Natives that may be given one ----------------------------------------------------------------------------------

struct BorrowingNative {
  const char* name;
  std::vector<Receiver> receivers;
  std::function<std::string(void* receiver, void* key)> call;
};

// Keys and elements of every sort, with instances whose hooks would like to see what they are compared with.
void fillMap(void* map) {
  for (int i = 0; i < 4; ++i) vorn_collections_Map_put(map, userKey(i), integer("Int", i));
  for (const Number& number : borrowable()) vorn_collections_Map_put(map, boxed(number), string(described(number)));
  vorn_collections_Map_put(map, string("a"), nullptr);
}
void fillSet(void* set) {
  for (int i = 0; i < 4; ++i) vorn_collections_HashSet_add(set, userKey(i));
  for (const Number& number : borrowable()) vorn_collections_HashSet_add(set, boxed(number));
}

std::vector<BorrowingNative> borrowingNatives() {
  std::vector<Receiver> maps{{"null", [] { return Handle(nullptr); }}};
  for (const char* const type : {"Map", "HashMapSync", "SortedMap", "SortedMapSync"}) {
    maps.push_back({std::string("empty ") + type, [type] { return object(type); }});
    maps.push_back({type, [type] {
                      Handle map = object(type);
                      fillMap(map);
                      return map;
                    }});
  }
  std::vector<Receiver> sets{{"null", [] { return Handle(nullptr); }}};
  for (const char* const type : {"HashSet", "HashSetSync"}) {
    sets.push_back({std::string("empty ") + type, [type] { return object(type); }});
    sets.push_back({type, [type] {
                      Handle set = object(type);
                      fillSet(set);
                      return set;
                    }});
  }
  std::vector<Receiver> lists;
  std::vector<Receiver> arrays;
  for (const char* const element : {"Int", "Double", "ULong", "Char", "Boolean"}) {
    for (const char* const type : {"ArrayList", "ArrayListSync", "LinkedList"}) {
      const std::string name = std::string(type) + "<" + element + ">";
      lists.push_back({name, [=] {
                         Handle list = object(name);
                         for (const Number& number : borrowable()) {
                           vorn_collections_ArrayList_add(list, boxed(number));
                           vorn_errors_clear();
                         }
                         return list;
                       }});
    }
    const std::string name = std::string("Array<") + element + ">";
    arrays.push_back({name, [=] {
                        Handle array = object(name);
                        vorn_collections_Array_ctor(array, 4);
                        vorn_collections_Array_setInt(array, 2, 3);
                        return array;
                      }});
  }
  const auto shown = [](auto value) { return std::to_string(value); };
  return {
      {"Map._get", maps, [](void* map, void* key) { return describe(vorn_collections_Map__get(map, key)); }},
      {"Map.operator_index", maps,
       [](void* map, void* key) { return describe(vorn_collections_Map_operator_index(map, key)); }},
      {"Map.tryGet", maps,
       [](void* map, void* key) {
         void* value = map;
         const bool found = vorn_collections_Map_tryGet(map, key, &value);
         return (found ? "found " : "absent ") + describe(value);
       }},
      {"Map.operator_in", maps,
       [=](void* map, void* key) { return shown(vorn_collections_Map_operator_in(map, key)); }},
      {"Map.remove", maps, [=](void* map, void* key) { return shown(vorn_collections_Map_remove(map, key)); }},
      {"HashSet.operator_in", sets,
       [=](void* set, void* key) { return shown(vorn_collections_HashSet_operator_in(set, key)); }},
      {"HashSet.count", sets, [=](void* set, void* key) { return shown(vorn_collections_HashSet_count(set, key)); }},
      {"HashSet.remove", sets, [=](void* set, void* key) { return shown(vorn_collections_HashSet_remove(set, key)); }},
      {"ArrayList.indexOf", lists,
       [=](void* list, void* value) { return shown(vorn_collections_ArrayList_indexOf(list, value, 0)); }},
      {"ArrayList.lastIndexOf", lists,
       [=](void* list, void* value) { return shown(vorn_collections_ArrayList_lastIndexOf(list, value, -1)); }},
      {"ArrayList.count", lists,
       [=](void* list, void* value) { return shown(vorn_collections_ArrayList_count(list, value)); }},
      {"ArrayList.operator_in", lists,
       [=](void* list, void* value) { return shown(vorn_collections_ArrayList_operator_in(list, value)); }},
      {"ArrayList.remove", lists,
       [=](void* list, void* value) { return shown(vorn_collections_ArrayList_remove(list, value)); }},
      {"Array.indexOf", arrays,
       [=](void* array, void* value) { return shown(vorn_collections_Array_indexOf(array, value, 0)); }},
      {"Array.lastIndexOf", arrays,
       [=](void* array, void* value) { return shown(vorn_collections_Array_lastIndexOf(array, value, -1)); }},
      {"Array.count", arrays,
       [=](void* array, void* value) { return shown(vorn_collections_Array_count(array, value)); }},
      {"Array.operator_in", arrays,
       [=](void* array, void* value) { return shown(vorn_collections_Array_operator_in(array, value)); }},
  };
}

// Whether a word of some memory is an address within the box.
bool mentions(const void* memory, std::size_t bytes, const vorn_borrowed_box& box) {
  const auto first = reinterpret_cast<std::uintptr_t>(&box);
  for (std::size_t at = 0; at + sizeof(std::uintptr_t) <= bytes; at += sizeof(std::uintptr_t)) {
    std::uintptr_t word = 0;
    std::memcpy(&word, static_cast<const char*>(memory) + at, sizeof(word));
    if (word >= first && word < first + sizeof(box)) return true;
  }
  return false;
}

// Whether the collection has a handle of the box anywhere: in its record, in its elements, in its keys.
bool keeps(void* collection, const vorn_borrowed_box& box) {
  const auto* object = static_cast<const ObjectRecord*>(collection);
  if (object == nullptr) return false;
  bool found = false;
  const auto look = [&](const auto& memory) { found = found || mentions(&memory, sizeof(memory), box); };
  switch (object->kind()) {
    case ObjectKind::Map:
      look(*getMapData(collection));
      getMapData(collection)->forEach([&](const auto& key, const auto& entry) {
        look(key);
        look(entry);
      });
      break;
    case ObjectKind::Set:
      look(*getSetData(collection));
      getSetData(collection)->forEach([&](const auto& key, const auto& element) {
        look(key);
        look(element);
      });
      break;
    case ObjectKind::Array:
      look(*getArrayData(collection));
      break;
    default: {
      const ListData& data = *getListData(collection);
      look(data);
      for (void* handle : handlesOf(data)) look(handle);
      found = found || mentions(data.objects.data, data.objects.capacity * sizeof(void*), box);
      if (data.linkedObjects.newest != nullptr) {
        const LinkedHandles::Block& block = *data.linkedObjects.newest;
        found = found || mentions(block.nodes(), block.used * sizeof(LinkedHandles::Node), box);
      }
    }
  }
  return found;
}

TEST_F(Borrowed, NativesThatMayBeGivenOne_AnyReceiverAndNumber_DoTheSameAndKeepAndShowNothing) {
  const vorn_borrowed_box* now = nullptr;
  int shown = 0;
  const auto look = [&](void* handle) {
    if (now != nullptr && (handle == now || collections::isBorrowedBox(handle))) ++shown;
  };
  const ScopedHooks hooks({.equals =
                               [&](void* self, void* other) {
                                 look(self);
                                 look(other);
                                 return honestEquals(self, other);
                               },
                           .compare =
                               [&](void* self, void* other, bool* comparable) {
                                 look(self);
                                 look(other);
                                 return honestCompare(self, other, comparable);
                               },
                           .hash =
                               [&](void* self) {
                                 look(self);
                                 return kHonestHash;
                               },
                           .toString =
                               [&](void* self) {
                                 look(self);
                                 return honestText(self);
                               }});
  for (const BorrowingNative& native : borrowingNatives()) {
    for (const Receiver& receiver : native.receivers) {
      const Handle mine = receiver.make();
      const Handle other = receiver.make();
      for (const Number& number : borrowable()) {
        vorn_borrowed_box storage;
        void* const key = borrowed(storage, number);
        now = &storage;
        std::string outcome = native.call(mine, key);
        now = nullptr;
        for (const std::string& error : takeErrors()) outcome += error;
        std::string expected = native.call(other, boxed(number));
        for (const std::string& error : takeErrors()) expected += error;
        EXPECT_EQ(outcome, expected) << native.name << ", " << receiver.name << ", " << described(number);
        EXPECT_FALSE(keeps(mine, storage)) << native.name << ", " << receiver.name << ", " << described(number);
      }
    }
  }
  EXPECT_EQ(shown, 0);
}

// The guard of the test above: hooks do see what lists of anything are searched for, and are shown it.
TEST_F(Borrowed, SearchOfAListOfAnything_ElementWithAHook_ShowsWhatIsSearchedFor) {
  const Handle list = object("ArrayList");
  vorn_collections_ArrayList_add(list, item(1));
  vorn_borrowed_box storage;
  void* const key = vorn_borrow_int(&storage, 1);
  bool shown = false;
  const ScopedEquality hook([&](void* self, void* other) {
    shown = shown || self == key || other == key;
    return false;
  });
  vorn_collections_ArrayList_indexOf(list, key, 0);
  EXPECT_TRUE(shown);
}

TEST_F(Borrowed, StoresThatKeepTheNumber_ListAndArrayOfItsType_TakeIt) {
  vorn_borrowed_box storage;
  void* const key = vorn_borrow_int(&storage, 7);
  const Handle list = object("ArrayList<Int>");
  vorn_collections_ArrayList_add(list, key);
  vorn_collections_ArrayList_addAt(list, 0, key);
  vorn_collections_ArrayList_operator_index_eq(list, 1, key);
  const Handle array = object("Array<Int>");
  vorn_collections_Array_ctor(array, 1);
  vorn_collections_Array_operator_index_eq(array, 0, key);
  storage = {};
  EXPECT_EQ(elementsOf(list), (Elements{"Int 7", "Int 7"}));
  EXPECT_EQ(vorn_collections_Array_getInt(array, 0), 7);
}

#ifndef NDEBUG

TEST_F(Borrowed, StoresThatKeepTheHandle_DebugBuild_EndTheProcess) {
  constexpr const char* kMessage = "a borrowed box is valid for one call only";
  vorn_borrowed_box storage;
  void* const key = vorn_borrow_int(&storage, 7);
  const Handle one = integer("Int", 1);
  const Handle boxes = list("ArrayList", {string("a"), string("b")});
  const Handle linked = list("LinkedList", {string("a"), string("b")});
  const Handle array = object("Array<Object>");
  vorn_collections_Array_ctor(array, 2);
  const Handle map = object("Map");
  const Handle sorted = object("SortedMap");
  const Handle set = object("HashSet");
  void* items[] = {one};
  const Handle tuple = vorn_tuple_new("Tuple", items, 1);
  const Handle user = plain(1);
  EXPECT_DEATH(vorn_collections_ArrayList_add(boxes, key), kMessage);
  EXPECT_DEATH(vorn_collections_ArrayList_addAt(boxes, 0, key), kMessage);
  EXPECT_DEATH(vorn_collections_ArrayList_operator_index_eq(boxes, 0, key), kMessage);
  EXPECT_DEATH(vorn_collections_ArrayList_literal5(one, key, boxes, nullptr, one), kMessage);
  EXPECT_DEATH(vorn_collections_ArrayList_add(linked, key), kMessage);
  EXPECT_DEATH(vorn_collections_Array_operator_index_eq(array, 0, key), kMessage);
  EXPECT_DEATH(vorn_collections_Map_put(map, key, one), kMessage);
  EXPECT_DEATH(vorn_collections_Map_put(map, one, key), kMessage);
  EXPECT_DEATH(vorn_collections_Map_put(sorted, key, one), kMessage);
  EXPECT_DEATH(vorn_collections_HashSet_add(set, key), kMessage);
  EXPECT_DEATH(vorn_field_set_handle(tuple, "_0", key), kMessage);
  EXPECT_DEATH(vorn_field_set_handle(user, "next", key), kMessage);
}

#endif

}  // namespace
}  // namespace vorn::tests
