// The records that a runtime lays out and fills in: object_layout.h, and those that it embeds.
#include <sys/wait.h>
#include <unistd.h>
#include <vorn/collections/array_list.h>

#include <bit>
#include <cstdio>
#include <cstring>

#include "collections/array/array_data.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "collections/port_facts/port_facts.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

void expectObject(const char* className, void* handle, ObjectKind kind) {
  const std::string what = className;
  expect(what + "'s address modulo 16", reinterpret_cast<std::uintptr_t>(handle) % kObjectAlignment, std::size_t{0});
  expectTrue(what + " has the magic of its address", hasObjectMagic(handle));
  expect(what + "'s kind", static_cast<int>(getObject(handle)->kind()), static_cast<int>(kind));
  expectTrue(what + " has a class", getObject(handle)->runtimeClass != nullptr);
}

template <std::size_t kCount>
void expectObjects(const char* const (&classes)[kCount], ObjectKind kind) {
  for (const char* name : classes) expectObject(name, object(name), kind);
}

template <class Record>
void expectMutex(const char* className, const Record& record) {
  const bool isSync = std::string_view(className).ends_with("Sync");
  expect(std::string("'synchronized' of ") + className, record.synchronized, isSync);
  if (!isSync) return;
  expectTrue(std::string(className) + " has a mutex", record.mutex != nullptr);
  expect(std::string("locking the mutex of ") + className, pthread_mutex_lock(record.mutex), 0);
  expect(std::string("unlocking the mutex of ") + className, pthread_mutex_unlock(record.mutex), 0);
}

// Whether a process that runs the work comes to a bad end.
bool endsProcess(void (*work)()) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stderr) == nullptr) _exit(0);
    work();
    _exit(0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) throw Failure("no process to be had");
  return status != 0;
}

}  // namespace

Checks recordChecks() {
  return {
      {"Vorn_portFacts", "are those of the library",
       [] { expectTrue("the runtime's facts are the library's", collections::agreesWithLibrary(Vorn_portFacts)); }},
      {"ObjectRecord", "begins every object, at a multiple of 16, with the header of its address and kind",
       [] {
         for (const char* name : kIntegerTypes) expectObject(name, box(name, 1), ObjectKind::IntegerBox);
         expectObject("Float", box("Float", 1.0), ObjectKind::FloatingBox);
         expectObject("Double", box("Double", 1.0), ObjectKind::FloatingBox);
         expectObject("Boolean", Vorn_boxBool(true), ObjectKind::BooleanBox);
         expectObject("Char", box("Char", 65), ObjectKind::CharacterBox);
         expectObject("CodeUnit", box("CodeUnit", 65), ObjectKind::CharacterBox);
         expectObject("String", string("text"), ObjectKind::String);
         expectObject("Tuple", object("Tuple"), ObjectKind::Tuple);
         expectObject("ImmutableList", object("ImmutableList"), ObjectKind::List);
         expectObjects(kListClasses, ObjectKind::List);
         expectObjects(kArrayClasses, ObjectKind::Array);
         expectObjects(kMapClasses, ObjectKind::Map);
         expectObjects(kSetClasses, ObjectKind::Set);
         adapter().defineClass({"conformance.Plain"});
         expectObject("a user class", object("conformance.Plain"), ObjectKind::Instance);
       }},
      {"RuntimeClassHead", "names the primitive type of a class's boxes, and none for other classes",
       [] {
         using collections::PrimitiveType;
         const auto typeOf = [](void* handle) { return static_cast<int>(boxedTypeOf(*getObject(handle))); };
         for (const char* name : kIntegerTypes) {
           expect(name, typeOf(box(name, 1)), static_cast<int>(collections::primitiveTypeNamed(name)));
         }
         expect("Float", typeOf(box("Float", 1.0)), static_cast<int>(PrimitiveType::Float));
         expect("Double", typeOf(box("Double", 1.0)), static_cast<int>(PrimitiveType::Double));
         expect("Boolean", typeOf(Vorn_boxBool(true)), static_cast<int>(PrimitiveType::Boolean));
         expect("Char", typeOf(box("Char", 65)), static_cast<int>(PrimitiveType::Char));
         expect("CodeUnit", typeOf(box("CodeUnit", 65)), static_cast<int>(PrimitiveType::CodeUnit));
         expect("String", typeOf(string("text")), 0);
         expect("ArrayList<Int>", typeOf(object("ArrayList<Int>")), 0);
       }},
      {"RegisteredObject", "holds the value of a box: an integer, the bits of a double, or 0 and 1",
       [] {
         const auto word = [](void* handle) {
           return static_cast<long long>(getRegisteredObjectUnsafe(handle)->integer);
         };
         expect("Int -7", word(integer(-7)), -7LL);
         expect("Double 2.5", std::bit_cast<double>(word(box("Double", 2.5))), 2.5);
         expect("Boolean true", word(Vorn_boxBool(true)), 1LL);
         expect("Char U+1F600", word(box("Char", 0x1F600)), 0x1F600LL);
       }},
      {"StringObject", "has a NUL behind its text, and sixteen readable bytes, zero from the text's end",
       [] {
         for (const char* text : {"", "a", "exactly fifteen", "sixteen letters!", "more than sixteen letters"}) {
           const auto* made = static_cast<const StringObject*>(string(text));
           const std::size_t length = std::strlen(text);
           expect("the length of a String", made->length, length);
           expect("the text of a String", std::string_view(made->text), text);
           for (std::size_t at = length; at < 16; ++at) expect("a byte behind the text", int{made->text[at]}, 0);
         }
       }},
      {"SizedObject", "holds the field 'size' of maps and sets behind the object's record",
       [] {
         for (const char* name : {"Map", "SortedMapSync", "HashSet", "HashSetSync"}) {
           void* const handle = object(name);
           static_cast<SizedObject*>(handle)->size = 77;
           expect(std::string("the field 'size' of ") + name, Vorn_getField_i64(handle, "size"), 77LL);
         }
       }},
      {"ListData", "says whether its list is linked and synchronised, and has a mutex then",
       [] {
         for (const char* name : kListClasses) {
           const ListData& data = *getListData(object(name));
           expect(std::string("'linked' of ") + name, data.linked, std::string_view(name).starts_with("Linked"));
           expect(std::string("the size of ") + name, data.logicalSize(), std::size_t{0});
           expectMutex(name, data);
         }
         expectMutex("ImmutableList", *getListData(object("ImmutableList")));
       }},
      {"ArrayData", "says whether its array is synchronised, and has a mutex then",
       [] {
         for (const char* name : kArrayClasses) expectMutex(name, *getArrayData(object(name)));
       }},
      {"MapData", "says whether its map hashes and is synchronised, and has a mutex then",
       [] {
         for (const char* name : kMapClasses) {
           const MapData& data = *getMapData(object(name));
           expect(std::string("'hashed' of ") + name, data.hashed, !std::string_view(name).starts_with("Sorted"));
           expectMutex(name, data);
         }
       }},
      {"SetData", "says whether its set is synchronised, and has a mutex then",
       [] {
         for (const char* name : kSetClasses) expectMutex(name, *getSetData(object(name)));
       }},
      {"runtimeWrongRecordFamily", "ends the process",
       [] {
         void* const map = object("Map");
         static void* const wrong = map;
         expectTrue("the size of a map, asked as if it were a list, ends the process",
                    endsProcess([] { vorn_collections_ArrayList_size(wrong); }));
       }},
  };
}

}  // namespace vorn::conformance
