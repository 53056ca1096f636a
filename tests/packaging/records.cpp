// The records that others than the library know the layout of, as debugging information for check_records.py: those of
// the embedding API and the inline forms, and what the library and a runtime share.
#include <vorn/collections/inline.h>
#include <vorn/runtime.h>

#include "collections/array/array_data.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/collection_key.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/runtime_check.h"
#include "collections/core/port/type_name.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace {

// Every record that is looked at. No object of this type is ever made.
struct Records {
  ArrayData* array;
  KeyHashSeed* seed;
  ListData* list;
  MapData* map;
  NativeCollectionKey* key;
  NativeMapEntry* entry;
  NativeNumericValue* number;
  ObjectField* field;
  ObjectRecord* object;
  PortFact* fact;
  RegisteredObject* box;
  RuntimeClassHead* objectClass;
  RuntimeTypeName* typeName;
  SetData* set;
  SizedObject* sized;
  StringObject* string;
  vorn::collections::InternedTypeName* interned;
  vorn_borrowed_box* borrowed;
  vorn_class_definition* definition;
  vorn_field_definition* fieldDefinition;
  vorn_found* found;
  vorn_heap_statistics* statistics;
  vorn_list_storage_info* storage;
  vorn_runtime_options* options;
  vorn_span* span;
  vorn_walk* walk;
  vorn_word* word;
};

}  // namespace

extern "C" {
extern const Records* const vornPublicRecords;
const Records* const vornPublicRecords = nullptr;
}
