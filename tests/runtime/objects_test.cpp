// Objects as such: telling them from everything else, records, fields, allocation.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Objects = RuntimeTest;

// Two pages of which the second cannot be read.
class GuardedPage {
 public:
  GuardedPage() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    start_ = static_cast<char*>(mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_EQ(mprotect(start_ + size_, size_, PROT_NONE), 0);
  }
  ~GuardedPage() { munmap(start_, 2 * size_); }
  GuardedPage(const GuardedPage&) = delete;
  GuardedPage& operator=(const GuardedPage&) = delete;

  // The last readable byte is end() - 1.
  [[nodiscard]] char* end() const { return start_ + size_; }

 private:
  std::size_t size_;
  char* start_;
};

TEST_F(Objects, NewObjectsOfEveryKind_AreObjects) {
  for (const Handle& handle :
       {integer("Int", 1), integer("Char", 'a'), floating("Double", 1.0), boolean(true), boolean(false), string("text"),
        object("ArrayList"), object("ImmutableList"), object("Object"), object("Type"), plain(1)}) {
    EXPECT_TRUE(isObjectPointer(handle)) << vorn_type_name(handle);
    EXPECT_TRUE(hasObjectMagic(handle)) << vorn_type_name(handle);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handle.get()) % kObjectAlignment, 0U) << vorn_type_name(handle);
  }
}

TEST_F(Objects, NullAndTexts_AreNoObjects) {
  EXPECT_FALSE(isObjectPointer(nullptr));
  EXPECT_EQ(getRegisteredObjectUnsafe(nullptr), nullptr);
  EXPECT_FALSE(isObjectPointer("literal"));
  const Handle bare = text("a collected text that is longer than a header");
  EXPECT_FALSE(isObjectPointer(bare));
  EXPECT_EQ(getObject(bare), nullptr);
}

TEST_F(Objects, PointersOfEveryAlignmentIntoAnObject_AreNoObjects) {
  const Handle list = object("ArrayList");
  auto* bytes = static_cast<unsigned char*>(list.get());
  for (std::size_t offset = 1; offset < 64; ++offset) EXPECT_FALSE(isObjectPointer(bytes + offset)) << offset;
}

TEST_F(Objects, OneByteTextsAtTheEndOfAPage_AreReadNoFurther) {
  const GuardedPage page;
  char* last = page.end() - 1;
  for (const char byte : {'\0', 'a', '\xFF'}) {
    *last = byte;
    EXPECT_FALSE(isObjectPointer(last));
  }
  // The last aligned addresses of the page, with the first byte of the magic and nothing behind it.
  std::memset(page.end() - 64, 0, 64);
  for (std::size_t back = 16; back <= 64; back += 16) {
    *(page.end() - back) = '\xFF';
    EXPECT_FALSE(isObjectPointer(page.end() - back)) << back;
  }
}

TEST_F(Objects, AnObjectsBytesAtAnotherAddress_AreNoObject) {
  const Handle box = integer("Int", 42);
  alignas(16) unsigned char copies[64][sizeof(RegisteredObject)];
  int passed = 0;
  for (auto& copy : copies) {
    std::memcpy(copy, box.get(), sizeof(copy));
    passed += isObjectPointer(copy) ? 1 : 0;
  }
  // The address enters with 18 bits, so that a copy passes by chance once in 262,144 times.
  EXPECT_EQ(passed, 0);
}

TEST_F(Objects, MagicBytes_CannotStandInText) {
  const Handle box = integer("Int", 42);
  const auto* bytes = static_cast<const unsigned char*>(box.get());
  EXPECT_EQ(bytes[0], 0xFF);
  for (int i = 0; i < 7; ++i) EXPECT_GE(bytes[i], 0xF8) << i;
  EXPECT_NE(bytes[7], 0);
}

TEST_F(Objects, WrongFamily_EndsTheProcessNamingTheType) {
  const Handle box = integer("Int", 1);
  const Handle bare = text("bare");
  const Handle list = object("ArrayList<Int>");
  EXPECT_DEATH(getListData(box), "a list was expected, but the handle is vorn\\.Int");
  EXPECT_DEATH(getListData(bare), "a list was expected, but the handle is vorn\\.String");
  EXPECT_DEATH(getMapData(list), "a map was expected, but the handle is vorn\\.collections\\.ArrayList<Int>");
  EXPECT_DEATH(getSetData(nullptr), "a set was expected, but the handle is null");
  EXPECT_DEATH(vorn_collections_ArrayList_addInt(box, 1), "a list was expected, but the handle is vorn\\.Int");
}

TEST_F(Objects, NativeRecord_IsPresentForListsOnly) {
  const Handle list = object("LinkedList");
  EXPECT_EQ(getObject(list)->nativeRecord, getListData(list));
  for (const Handle& handle : {integer("Int", 1), floating("Float", 1.0), boolean(true), string("s"), plain(1)}) {
    EXPECT_EQ(getObject(handle)->nativeRecord, nullptr) << vorn_type_name(handle);
  }
}

struct ListClass {
  const char* name;
  bool isSynchronised;
  bool isLinked;
};
constexpr ListClass kListClasses[] = {{"ArrayList", false, false},
                                      {"ArrayListSync", true, false},
                                      {"LinkedList", false, true},
                                      {"LinkedListSync", true, true},
                                      {"ImmutableList", false, false}};

TEST_F(Objects, NewList_IsEmptyAndFlaggedByItsClass) {
  for (const auto& [name, isSynchronised, isLinked] : kListClasses) {
    const Handle list = object(name);
    const ListData& data = *getListData(list);
    EXPECT_EQ(data.synchronized, isSynchronised) << name;
    EXPECT_EQ(data.mutex != nullptr, isSynchronised) << name;
    EXPECT_EQ(data.linked, isLinked) << name;
    EXPECT_EQ(data.logicalSize(), 0U) << name;
    EXPECT_EQ(data.primitiveKind, ListData::PrimitiveKind::None) << name;
    EXPECT_EQ(data.elementType.name, nullptr) << name;
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(Objects, NewList_DeclaresTheNormalisedArgument) {
  const std::pair<const char*, const char*> cases[] = {
      {"ArrayList<Int>", "Int"},
      {"vorn.collections.ArrayList<vorn.Int>", "Int"},
      {"LinkedListSync< app.Foo >", "Foo"},
      {"ImmutableList<Object>", "Object"},
      {"ArrayListSync<vorn.Object>", "Object"},
      {"LinkedList<Array<Map<String, Int>>>", "Array<Map<String, Int>>"},
      {"ArrayList<vorn.collections.Map<vorn.String, Int>>", "Map<vorn.String, Int>"}};
  for (const auto& [name, declared] : cases) {
    const Handle list = object(name);
    ASSERT_NE(list.get(), nullptr) << name;
    EXPECT_EQ(getListData(list)->elementType.get(), declared) << name;
    EXPECT_EQ(getListData(list)->elementType, internRuntimeTypeName(declared)) << name;
  }
}

TEST_F(Objects, NewList_OwnsAMutexOfItsOwn) {
  const Handle first = object("ArrayListSync");
  const Handle second = object("ArrayListSync");
  const vorn::collections::RecordLock<ListData> lock(*getListData(first));
  EXPECT_TRUE(isRecordLocked(*getListData(first)));
  EXPECT_FALSE(isRecordLocked(*getListData(second)));
}

TEST_F(Objects, ListMadeFast_IsAnUntypedListOfTheAskedClass) {
  for (const bool synchronised : {false, true}) {
    for (const bool handles : {false, true}) {
      ListData* data = nullptr;
      const Handle list = Vorn_allocArrayListObjectFast(synchronised, &data, handles);
      EXPECT_EQ(getListData(list), data);
      EXPECT_STREQ(vorn_type_name(list),
                   synchronised ? "vorn.collections.ArrayListSync" : "vorn.collections.ArrayList");
      EXPECT_EQ(data->synchronized, synchronised);
      EXPECT_VALID_LIST(list);
    }
  }
}

TEST_F(Objects, ListMadeFast_IsNullWithoutMemory) {
  ListData* data = nullptr;
  vorn_heap_fail_allocation(0);
  EXPECT_EQ(Vorn_allocArrayListObjectFast(true, &data, false), nullptr);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(vorn_heap_failure_happened(), 1);
}

TEST_F(Objects, AllocationByName_LetsBadAllocPass) {
  for (const char* name : {"ArrayList", "ArrayListSync<Int>", "Object", "Int", "Type"}) {
    vorn_heap_fail_allocation(0);
    EXPECT_THROW(Vorn_allocObject(name), std::bad_alloc) << name;
  }
  for (const int after : {0, 1}) {
    vorn_heap_fail_allocation(after);
    EXPECT_THROW(Vorn_allocString("text"), std::bad_alloc) << after;
  }
}

TEST_F(Objects, AllocationByName_GivesValueTypesTheirZero) {
  EXPECT_EQ(Vorn_getField_i64(object("Long"), "_value"), 0);
  EXPECT_EQ(Vorn_getField_double(object("vorn.Double"), "_value"), 0.0);
  EXPECT_EQ(object("Boolean").get(), Vorn_boxBool(false));
  EXPECT_STREQ(vorn_string_text(object("String")), "");
}

TEST_F(Objects, AllocationByName_KnowsNoOtherNames) {
  for (const char* name : {"", "Nothing", "vorn.Nothing", "vorn.ArrayList", "app.ArrayList", "ArrayList<",
                           "ArrayList<>", "ArrayList<Int", "ArrayList<Int>>", "ArrayList<Int>x", "ArrayList<Int,Int>",
                           "ArrayList<,>", "<Int>", "Int<Int>", "app.Plain<Int>", "IList", "IList<Int>", "arraylist"}) {
    EXPECT_EQ(Vorn_allocObject(name), nullptr) << name;
  }
  EXPECT_EQ(Vorn_allocObject(nullptr), nullptr);
}

TEST_F(Objects, FieldsOfAnInstance_StartAtZeroAndKeepWhatIsStored) {
  const Handle node = plain(0);
  EXPECT_EQ(Vorn_getField_i64(node, "id"), 0);
  EXPECT_EQ(Vorn_getField_ptr(node, "next"), nullptr);
  const Handle other = plain(7);
  Vorn_setField_i64(node, "id", std::numeric_limits<long long>::min());
  Vorn_setField_ptr(node, "next", other);
  EXPECT_EQ(Vorn_getField_i64(node, "id"), std::numeric_limits<long long>::min());
  EXPECT_EQ(Vorn_getField_ptr(node, "next"), other.get());
}

TEST_F(Objects, FieldsOfAnInstance_KeepWhatTheyReferToAlive) {
  const Handle node = plain(1);
  Vorn_setField_ptr(node, "next", string("kept by the field alone"));
  vorn_heap_collect();
  for (int i = 0; i < 100; ++i) string("churn");
  EXPECT_STREQ(vorn_string_text(Vorn_getField_ptr(node, "next")), "kept by the field alone");
}

TEST_F(Objects, MissingFields_ReadAsNothingAndIgnoreWrites) {
  const Handle node = plain(3);
  for (void* handle : {node.get(), static_cast<void*>(nullptr), text("bare").get()}) {
    EXPECT_EQ(Vorn_getField_i64(handle, "absent"), 0);
    EXPECT_EQ(Vorn_getField_double(handle, "absent"), 0.0);
    EXPECT_FALSE(Vorn_getField_i1(handle, "absent"));
    EXPECT_EQ(Vorn_getField_ptr(handle, "absent"), nullptr);
    Vorn_setField_i64(handle, "absent", 1);
    Vorn_setField_ptr(handle, "absent", node);
  }
  EXPECT_EQ(Vorn_getField_i64(node, nullptr), 0);
  EXPECT_EQ(Vorn_getField_i64(node, "_value"), 0);
  EXPECT_EQ(Vorn_getField_i64(node, "ke"), 0);
  EXPECT_EQ(Vorn_getField_i64(node, "keys"), 0);
  EXPECT_EQ(idOf(node), 3);
}

TEST_F(Objects, HandleFields_AreNoNumbers) {
  const Handle node = plain(3);
  Vorn_setField_ptr(node, "next", node);
  EXPECT_EQ(Vorn_getField_i64(node, "next"), 0);
  EXPECT_FALSE(Vorn_getField_i1(node, "next"));
  Vorn_setField_i64(node, "next", 5);
  EXPECT_EQ(nextOf(node), node.get());
  Vorn_setField_ptr(node, "id", node);
  EXPECT_EQ(idOf(node), 3);
  EXPECT_EQ(Vorn_getField_ptr(node, "id"), nullptr);
}

TEST_F(Objects, FindObjectField_DescribesFieldsOfInstancesAndBoxes) {
  const Handle node = plain(3);
  EXPECT_NE(findObjectField(getObject(node), "id"), nullptr);
  EXPECT_NE(findObjectField(getObject(node), "next"), findObjectField(getObject(node), "id"));
  EXPECT_EQ(findObjectField(getObject(node), "_value"), nullptr);
  EXPECT_NE(findObjectField(getObject(integer("Int", 1)), "_value"), nullptr);
  EXPECT_NE(findObjectField(getObject(boolean(true)), "_value"), nullptr);
  EXPECT_EQ(findObjectField(getObject(string("s")), "_value"), nullptr);
  EXPECT_EQ(findObjectField(nullptr, "_value"), nullptr);
}

TEST_F(Objects, TypeObjects_HaveTheirTwoNames) {
  const Handle type = object("Type");
  EXPECT_EQ(Vorn_getField_ptr(type, "_name"), nullptr);
  const Handle name = string("vorn.Int");
  Vorn_setField_ptr(type, "_fullName", name);
  EXPECT_EQ(Vorn_getField_ptr(type, "_fullName"), name.get());
  EXPECT_EQ(Vorn_getField_ptr(type, "_name"), nullptr);
}

}  // namespace
}  // namespace vorn::tests
