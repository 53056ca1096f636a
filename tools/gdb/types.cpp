// The types that the debugger's printers read memory by, as debugging information and nothing else.
//
// The libraries carry no types, whether they are built for release or with the line tables of a debug build. This file
// is compiled with full debugging information into a small library of its own (vorn_types.debug), which no program
// links and which the printers hand to gdb. Whatever is renamed or moved in a record, or added to the table of kinds,
// reaches the printers by being compiled here; what they cannot find any more they say.
#include <pthread.h>

#include "collections/array/array_data.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "runtime/heap/global_roots.h"
#include "runtime/heap/stress_blocks.h"
#include "runtime/objects/runtime_class.h"
#include "runtime/objects/tuple_object.h"
#include "runtime/threads/thread_state.h"

namespace vorn::debugger {

// The number of each kind, and its element type, under the kind's name.
enum class KindNumbers : std::uint8_t {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) enumerator = value,
#include "collections/core/kinds.def"
};
struct KindElements {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) type enumerator;
#include "collections/core/kinds.def"
};

// The family of each kind, and the kind of each character type, under their names.
enum class KindFamilies : std::uint8_t {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  enumerator = static_cast<std::uint8_t>(collections::KindFamily::family),
#include "collections/core/kinds.def"
};
enum class CharacterKinds : std::uint8_t {
#define VORN_CHARACTER_TYPE(name, kind) name = static_cast<std::uint8_t>(collections::PrimitiveKind::kind),
#include "collections/core/kinds.def"
};

// What the tables of maps and sets are read by.
enum class Constants : std::uint32_t {
  placesInChunk = collections::OrderedTable::Chunks::kChunk,
  vacantTag = static_cast<std::uint32_t>(collections::OrderedTable::kVacant),
};
static_assert(collections::HashTable<void*>::Chunks::kChunk == collections::OrderedTable::Chunks::kChunk);
static_assert(collections::HashTable<void*>::kVacant == collections::OrderedTable::kVacant);

// Everything that is looked at. No object of this type is ever made.
struct Types {
  KindNumbers kindNumbers;
  KindElements* kindElements;
  KindFamilies kindFamilies;
  CharacterKinds characterKinds;
  collections::KindFamily family;
  Constants constants;
  ListData* list;
  ArrayData* array;
  MapData* map;
  SetData* set;
  StringObject* string;
  SizedObject* sized;
  RegisteredObject* box;
  runtime::TupleObject* tuple;
  RuntimeClass* objectClass;
  ObjectField* field;
  pthread_mutex_t* mutex;
  LinkedHandles::Node* linkedNode;
  collections::HashTable<void*>::Node* setNode;
  collections::HashTable<NativeMapEntry>::Node* mapNode;
  collections::OrderedTable::Node* orderedNode;
  collections::OrderedTable::Link* orderedLink;
  runtime::ThreadState* thread;
  runtime::GlobalRoots* globalRoots;
  runtime::StressBlocks* stressBlocks;
};

}  // namespace vorn::debugger

extern "C" {
extern const vorn::debugger::Types* const vornDebuggerTypes;
const vorn::debugger::Types* const vornDebuggerTypes = nullptr;
}
