// What the tests of the debugger's printers look at: collections in every form of storage, keys of every form, values,
// and records that are broken. Everything is kept in variables with C names, which gdb finds without type information.
#include <pthread.h>
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <thread>
#include <vorn/runtime.hpp>

#include "collections/array/array_data.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

extern "C" {

void *aNull, *anInt, *aByte, *aULong, *aDouble, *aTrue, *aChar, *aString, *anEscapedString, *aLongString, *aText;
void *unboxedInline, *unboxedHeap, *boxedInline, *boxedHeap, *linkedList, *emptyList, *untypedList, *syncList,
    *lockedList, *floats, *booleans, *codeUnits, *everyKind[vorn::collections::kPrimitiveKinds - 1], *immutableList,
    *manyInts, *nestedList, *selfList;
void *intArray, *objectArray, *charArray, *emptyArray;
void *aTuple, *emptyTuple, *aPoint, *emptyType;
void *smallMap, *bucketMap, *gappedMap, *sortedMap, *sortedTexts, *emptyMap, *emptySortedMap, *syncMap;
void *smallSet, *keySet, *emptySet, *syncSet;
void *wrongKind, *wrongSize, *wrongWidth, *unreadableList, *brokenLinks, *noRecord, *noClass, *wildClass,
    *wrongObjectKind, *movedObject, *wrongSlotKind, *brokenChain, *brokenPlaces, *noMutex, *wildPointer, *endlessCount;
void *zeroedRecord, *freedRecord;
void* rooted;
// Under the names that the guide uses.
void *list, *map, *text, *broken, *moved;

// The debugger stops here, with everything in place.
[[gnu::noinline]] void stopHere() { asm volatile("" : : : "memory"); }
}

// As the classes of a C++ API over handles are.
namespace vorn {
class Wrapped {
 public:
  explicit Wrapped(void* handle) : handle_(handle) {}

 private:
  Handle handle_;
};
class WrappedList : public Wrapped {
 public:
  using Wrapped::Wrapped;
};
}  // namespace vorn

namespace {

void* intBox(int value) { return vorn_box_int(value); }

void* listOf(const char* className, std::initializer_list<void*> values) {
  void* list = vorn_object_new(className);
  for (void* value : values) vorn_collections_ArrayList_add(list, value);
  return list;
}

void* ints(const char* className, int count) {
  void* list = vorn_object_new(className);
  for (int i = 0; i < count; ++i) vorn_collections_ArrayList_add(list, intBox(i));
  return list;
}

void* mapOf(const char* className, int count) {
  void* map = vorn_object_new(className);
  for (int i = 0; i < count; ++i) vorn_collections_Map_put(map, intBox(count - i), intBox(10 * i));
  return map;
}

void* string(const char* text) { return vorn_string_new(text, SIZE_MAX); }

void makeValues() {
  anInt = intBox(-42);
  aByte = vorn_box_byte(200);
  aULong = vorn_box_ulong(std::numeric_limits<std::uint64_t>::max());
  aDouble = vorn_box_double(2.5);
  aTrue = vorn_box_boolean(true);
  aChar = vorn_box_char(0x1F600);
  aString = string("a string");
  anEscapedString = string("\"quoted\"\n\x01");
  aLongString = string("0123456789012345678901234567890123456789");
  aText = vorn_text_new("a bare text");
}

void makeLists() {
  unboxedInline = ints("ArrayList<Int>", 3);
  unboxedHeap = ints("ArrayList<Int>", 33);
  boxedInline = listOf("ArrayList", {aString, nullptr, aText, anInt});
  boxedHeap = listOf("ArrayList<Object>", {aString, nullptr, aText, aString, aTrue});
  linkedList = listOf("LinkedList<String>", {aText, aString});
  emptyList = vorn_object_new("ArrayList<Int>");
  untypedList = listOf("ArrayList", {vorn_box_short(-3)});
  syncList = listOf("ArrayListSync<Double>", {aDouble, vorn_box_double(-0.125)});
  lockedList = listOf("LinkedListSync", {aTrue});
  floats = listOf("ArrayList<Float>", {vorn_box_float(0.1F)});
  booleans = listOf("ArrayList<Boolean>", {aTrue, vorn_box_boolean(false)});
  codeUnits = listOf("ArrayList<CodeUnit>", {vorn_box_code_unit('A'), vorn_box_code_unit(0xD800)});
  void** kind = everyKind;
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  *kind++ = listOf("ArrayList<" #enumerator ">", {vorn_object_new(#enumerator)});
#include "collections/core/kinds.def"
  immutableList = vorn_object_new("ImmutableList<Int>");
  vorn_collections_ImmutableList_ctor(immutableList, unboxedInline);
  manyInts = ints("ArrayList<Int>", 1000);
  nestedList = listOf("ArrayList", {listOf("ArrayList", {unboxedInline, linkedList})});
  selfList = vorn_object_new("ArrayList");
  vorn_collections_ArrayList_add(selfList, selfList);
}

void makeArraysAndTuples() {
  intArray = vorn_object_new("Array<Int>");
  objectArray = vorn_object_new("ArraySync<String>");
  charArray = vorn_object_new("Array<Char>");
  emptyArray = vorn_object_new("Array<Int>");
  vorn_collections_Array_ctor(intArray, 3);
  vorn_collections_Array_setInt(intArray, 1, -7);
  vorn_collections_Array_ctor(objectArray, 2);
  vorn_collections_Array_operator_index_eq(objectArray, 0, aString);
  vorn_collections_Array_ctor(charArray, 2);
  vorn_collections_Array_setInt(charArray, 0, 'A');
  void* items[] = {aString, anInt, unboxedInline};
  aTuple = vorn_tuple_new("Tuple<String,Int,Object>", items, 3);
  emptyTuple = vorn_object_new("Tuple");
}

// An object without allocation's help: of a user class with fields and hooks.
void makeInstance() {
  static const vorn_field_definition fields[] = {
      {"x", VORN_FIELD_INTEGER}, {"weight", VORN_FIELD_FLOATING}, {"next", VORN_FIELD_HANDLE}};
  vorn_class_definition point{};
  point.struct_size = sizeof(point);
  point.name = "app.Point";
  point.fields = fields;
  point.field_count = 3;
  point.equals = [](void* self, void* other, void*) { return self == other; };
  point.hash = [](void*, void*) { return std::uint64_t{7}; };
  vorn_class_define(&point);
  aPoint = vorn_object_new("app.Point");
  vorn_field_set_integer(aPoint, "x", -5);
  vorn_field_set_floating(aPoint, "weight", 0.5);
  vorn_field_set_handle(aPoint, "next", aString);
  emptyType = vorn_object_new("Type");
}

void makeMaps() {
  smallMap = vorn_object_new("Map<String,Int>");
  vorn_collections_Map_put(smallMap, aString, anInt);
  vorn_collections_Map_put(smallMap, aText, nullptr);
  bucketMap = mapOf("Map<Int,Int>", 17);
  gappedMap = mapOf("Map", 4);
  vorn_collections_Map_remove(gappedMap, intBox(3));
  sortedMap = mapOf("SortedMap<Int,Int>", 3);
  sortedTexts = vorn_object_new("SortedMapSync");
  vorn_collections_Map_put(sortedTexts, aText, unboxedInline);
  vorn_collections_Map_put(sortedTexts, string("a"), aTrue);
  emptyMap = vorn_object_new("Map");
  emptySortedMap = vorn_object_new("SortedMap");
  syncMap = mapOf("HashMapSync", 1);
}

void makeSets() {
  smallSet = vorn_object_new("HashSet");
  vorn_collections_HashSet_add(smallSet, anInt);
  vorn_collections_HashSet_add(smallSet, nullptr);
  keySet = vorn_object_new("HashSet");
  for (void* key : {static_cast<void*>(nullptr), anInt, aULong, aDouble, aTrue, aChar, vorn_box_code_unit(0xD800),
                    aText, aLongString, unboxedInline, aTuple, aPoint}) {
    vorn_collections_HashSet_add(keySet, key);
  }
  emptySet = vorn_object_new("HashSet");
  syncSet = vorn_object_new("HashSetSync");
}

ListData& recordOf(void* list) { return *getListData(list); }

// A block that no test's other part uses, aligned as objects are, with a header that fits its address.
ObjectRecord* forgedObject(ObjectKind kind, const RuntimeClass* type) {
  auto* object = static_cast<ObjectRecord*>(std::calloc(1, 1024));
  object->header = objectHeaderFor(object, kind);
  object->runtimeClass = type;
  return object;
}

void breakRecords() {
  wrongKind = ints("ArrayList<Int>", 2);
  recordOf(wrongKind).primitiveKind = static_cast<vorn::collections::PrimitiveKind>(77);
  wrongSize = listOf("ArrayList", {aTrue, aString});
  recordOf(wrongSize).objects.size = 5;
  wrongWidth = ints("ArrayList<Int>", 1);
  recordOf(wrongWidth).primitive.elementSize = 8;
  unreadableList = ints("ArrayList<Int>", 2);
  recordOf(unreadableList).primitive.data = reinterpret_cast<unsigned char*>(0x10);
  brokenLinks = listOf("LinkedList", {aTrue, aTrue});
  recordOf(brokenLinks).linkedObjects.count = 3;
  const RuntimeClass* const type = classOfObject(emptyList);
  noRecord = forgedObject(ObjectKind::List, type);
  noClass = forgedObject(ObjectKind::Instance, nullptr);
  wildClass = forgedObject(ObjectKind::Instance, reinterpret_cast<const RuntimeClass*>(0x10));
  wrongObjectKind = forgedObject(static_cast<ObjectKind>(99), type);
  movedObject = std::calloc(1, 1024);
  std::memcpy(movedObject, anInt, sizeof(RegisteredObject));
  wrongSlotKind = vorn_object_new("Array<Int>");
  getArrayData(wrongSlotKind)->slotKind = static_cast<ArraySlotKind>(50);
  brokenChain = mapOf("SortedMap", 2);
  const auto& tree = getMapData(brokenChain)->ordered.tree();
  const_cast<std::uint32_t&>(tree.links()[tree.first()].next) = 900;
  brokenPlaces = mapOf("Map", 2);
  // The table's last words are how many places there are, which nothing outside it may set.
  std::uint32_t places = 70'000;
  auto* const table = reinterpret_cast<unsigned char*>(&getMapData(brokenPlaces)->hash);
  std::memcpy(table + sizeof(getMapData(brokenPlaces)->hash) - sizeof(places), &places, sizeof(places));
  noMutex = listOf("ArrayListSync", {});
  recordOf(noMutex).mutex = nullptr;
  wildPointer = reinterpret_cast<void*>(0x18);
  endlessCount = listOf("ArrayList", {aTrue, aString});
  recordOf(endlessCount).objects.size = ~std::uint64_t{0};
  zeroedRecord = std::calloc(1, 1024);
  freedRecord = std::malloc(1024);
  std::memset(freedRecord, 0xDB, 1024);
}

}  // namespace

int main(int, char** arguments) {
  vorn_runtime_options options;
  if (vorn_runtime_parse_options(arguments[1], &options) == 0 || vorn_runtime_start(&options) == 0) return 1;
  makeValues();
  makeLists();
  makeArraysAndTuples();
  makeInstance();
  makeMaps();
  makeSets();
  breakRecords();
  ListDataLock once(recordOf(lockedList));
  ListDataLock twice(recordOf(lockedList));

  list = unboxedInline;
  map = smallMap;
  text = aText;
  broken = wrongSize;
  moved = movedObject;

  rooted = unboxedInline;
  vorn_root_add(&rooted);
  vorn::Handle handle = aString;
  [[maybe_unused]] const vorn::WrappedList wrapped(unboxedInline);
  [[maybe_unused]] const vorn::collections::RootedHandle outer(linkedList);
  void* words[] = {aText, reinterpret_cast<void*>(0x10), nullptr};
  [[maybe_unused]] const vorn::collections::RootedRange range(words, sizeof(words));
  pthread_barrier_t bothReady;
  pthread_barrier_init(&bothReady, nullptr, 2);
  std::thread other([&] {
    const vorn::collections::RootedHandle inner(anInt);
    pthread_barrier_wait(&bothReady);
    pthread_barrier_wait(&bothReady);
  });
  pthread_barrier_wait(&bothReady);
  stopHere();
  pthread_barrier_wait(&bothReady);
  other.join();
  return handle.get() == aString ? 0 : 1;
}
