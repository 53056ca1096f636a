// Objects of every kind, their fields and types.
#include <pthread.h>

#include <cstdio>

#include "collections/core/number_rules.h"
#include "collections/port_facts/port_facts.h"
#include "minimal_runtime.h"

using namespace minimal;
constinit const PortFact* const Vorn_portFacts = vorn::collections::kPortFacts;

namespace {
template <class Head, class Record>
struct Collection : Head {
  Record record;
  pthread_mutex_t mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
};

template <class Head, class Record>
void* makeCollection(const RuntimeClass* type) {
  auto* object = make<Collection<Head, Record>>(type);
  Record& record = object->record;
  object->nativeRecord = &record;
  const std::string_view name = runtimeCollectionBaseName(type->name);
  record.synchronized = name.ends_with("Sync");
  if (record.synchronized) record.mutex = &object->mutex;
  if constexpr (requires { record.linked; }) record.linked = name.starts_with("Linked");
  if constexpr (requires { record.linked; }) record.elementType = type->elementType;
  if constexpr (requires { record.hashed; }) record.hashed = !name.starts_with("Sorted");
  return object;
}

// Fields are the value of a box and the size of a tuple, array, map or set: one word behind the object's record.
const ObjectField* fieldOf(const ObjectRecord* object, std::string_view name) {
  using Kind = ObjectField::Kind;
  static constexpr std::uint32_t kPlace = sizeof(ObjectRecord);
  static constexpr ObjectField kSize{Kind::Integer, kPlace, "size"};
  static constexpr ObjectField kValues[] = {
      {Kind::Integer, kPlace, "_value"}, {Kind::Floating, kPlace, "_value"}, {Kind::Boolean, kPlace, "_value"}};
  const ObjectKind kind = object != nullptr ? object->kind() : ObjectKind::String;
  if (kind >= ObjectKind::Tuple && kind != ObjectKind::List && name == "size") return &kSize;
  if (kind >= ObjectKind::String || name != "_value") return nullptr;
  return &kValues[kind == ObjectKind::FloatingBox ? 1 : (kind == ObjectKind::BooleanBox ? 2 : 0)];
}

std::int64_t wordOf(void* handle) { return static_cast<RegisteredObject*>(handle)->integer; }
// The place that an item's name, "_0", "_1", ..., stands for; null for another name and for another object.
void** itemPlace(void* handle, const char* name, bool makeRoom) {
  auto* tuple = as<TupleObject>(handle, ObjectKind::Tuple);
  if (tuple == nullptr || name[0] != '_' || name[1] < '0' || name[1] > '9') return nullptr;
  const std::size_t item = std::strtoul(name + 1, nullptr, 10);
  if (item >= tuple->items.size() && makeRoom) tuple->items.resize(item + 1);
  return item < tuple->items.size() ? &tuple->items[item] : nullptr;
}
}  // namespace

void* Vorn_allocObject(const char* className) {
  const RuntimeClass* type = findClass(className);
  if (type == nullptr) return nullptr;
  if (type->kind == ObjectKind::List) return makeCollection<ObjectRecord, ListData>(type);
  if (type->kind == ObjectKind::Array) return makeCollection<SizedObject, ArrayData>(type);
  if (type->kind == ObjectKind::Map) return makeCollection<SizedObject, MapData>(type);
  if (type->kind == ObjectKind::Set) return makeCollection<SizedObject, SetData>(type);
  if (type->kind == ObjectKind::Tuple) return make<TupleObject>(type);
  if (type->kind == ObjectKind::String) return Vorn_allocString({});
  if (type->kind == ObjectKind::BooleanBox) return Vorn_boxBool(false);
  return make<RegisteredObject>(type);  // a box of zero, or an instance, which has no fields
}
void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool) {
  void* list = Vorn_allocObject(synchronised ? "ArrayListSync" : "ArrayList");
  *listData = getListData(list);
  return list;
}
long long Vorn_getField_i64(void* handle, const char* field) {
  const ObjectField* found = fieldOf(getObject(handle), field);
  if (found == nullptr) return 0;
  const bool isFloating = found->kind == ObjectField::Kind::Floating;
  return isFloating ? vc::truncateToI64(std::bit_cast<double>(wordOf(handle))) : wordOf(handle);
}
double Vorn_getField_double(void* handle, const char* field) {
  const ObjectField* found = fieldOf(getObject(handle), field);
  if (found == nullptr) return 0;
  if (found->kind == ObjectField::Kind::Floating) return std::bit_cast<double>(wordOf(handle));
  const bool isUnsigned = boxedTypeOf(*getObject(handle)) == vc::PrimitiveType::ULong;
  return isUnsigned ? static_cast<double>(static_cast<std::uint64_t>(wordOf(handle)))
                    : static_cast<double>(wordOf(handle));
}
bool Vorn_getField_i1(void* handle, const char* field) { return Vorn_getField_double(handle, field) != 0; }
void* Vorn_getField_ptr(void* handle, const char* field) {
  void** place = itemPlace(handle, field, false);
  return place != nullptr ? *place : nullptr;
}
void Vorn_setField_i64(void* handle, const char* field, long long value) {
  const ObjectField* found = fieldOf(getObject(handle), field);
  if (found != nullptr && found->name == "size") static_cast<SizedObject*>(handle)->size = value;
}
void Vorn_setField_ptr(void* handle, const char* field, void* value) {
  if (void** place = itemPlace(handle, field, true)) *place = value;
}
ObjectField* findObjectField(ObjectRecord* object, const char* field) {
  return const_cast<ObjectField*>(fieldOf(object, field));
}
const char* Vorn_objectTypeName(void* handle) { return handle != nullptr ? classOf(handle)->name.c_str() : nullptr; }
bool Vorn_isInstanceOf(void* handle, const char* typeName) {
  const RuntimeClass* wanted = findClass(typeName);
  const RuntimeClass* type = classOf(handle);
  while (type != nullptr && type != wanted) type = type->base;
  return type != nullptr;
}
void runtimeWrongRecordFamily(const void* handle, ObjectKind expected) {
  const RuntimeClass* type = classOf(handle);
  const char* name = type != nullptr ? type->name.c_str() : "null";
  std::fprintf(stderr, "minimal runtime: not an object of kind %d: %s\n", static_cast<int>(expected), name);
  std::abort();
}
