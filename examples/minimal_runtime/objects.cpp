// Objects of every kind, their fields and types.
#include <pthread.h>

#include <bit>
#include <cstdio>
#include <cstdlib>

#include "collections/core/number_rules.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/port_facts/port_facts.h"
#include "minimal_runtime.h"

constinit const PortFact* const Vorn_portFacts = vorn::collections::kPortFacts;

namespace {

template <class Head, class Record>
struct Collection : Head {
  Record record;
  pthread_mutex_t mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
};

template <class Head, class Record>
void* makeCollection(const RuntimeClass* type) {
  auto* object = minimal::make<Collection<Head, Record>>(type);
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
  static constexpr std::uint32_t kOffset = sizeof(ObjectRecord);
  static constexpr ObjectField kSize{Kind::Integer, kOffset, "size"};
  static constexpr ObjectField kInteger{Kind::Integer, kOffset, "_value"};
  static constexpr ObjectField kFloating{Kind::Floating, kOffset, "_value"};
  static constexpr ObjectField kBoolean{Kind::Boolean, kOffset, "_value"};
  if (object == nullptr) return nullptr;
  const ObjectKind kind = object->kind();
  if (kind >= ObjectKind::Tuple && kind != ObjectKind::List) return name == "size" ? &kSize : nullptr;
  if (kind >= ObjectKind::String || name != "_value") return nullptr;
  if (kind == ObjectKind::BooleanBox) return &kBoolean;
  return kind == ObjectKind::FloatingBox ? &kFloating : &kInteger;
}

template <class Number>
Number readNumber(void* handle, const char* name) {
  const ObjectField* field = fieldOf(getObject(handle), name);
  if (field == nullptr) return 0;
  const std::int64_t word = static_cast<RegisteredObject*>(handle)->integer;
  const bool isUnsigned = boxedTypeOf(*getObject(handle)) == vorn::collections::PrimitiveType::ULong;
  if (isUnsigned) return static_cast<Number>(static_cast<std::uint64_t>(word));
  if (field->kind != ObjectField::Kind::Floating) return static_cast<Number>(word);
  const auto value = std::bit_cast<double>(word);
  if constexpr (std::is_same_v<Number, long long>) return vorn::collections::truncateToI64(value);
  return static_cast<Number>(value);
}

// The place that an item's name, "_0", "_1", ..., stands for; null for another name and for another object.
void** itemPlace(void* handle, const char* name, bool makeRoom) {
  auto* tuple = minimal::as<minimal::TupleObject>(handle, ObjectKind::Tuple);
  if (tuple == nullptr || name[0] != '_' || name[1] < '0' || name[1] > '9') return nullptr;
  const std::size_t item = std::strtoul(name + 1, nullptr, 10);
  if (item >= tuple->items.size() && makeRoom) tuple->items.resize(item + 1);
  return item < tuple->items.size() ? &tuple->items[item] : nullptr;
}

}  // namespace

void* Vorn_allocObject(const char* className) {
  const RuntimeClass* type = minimal::findClass(className);
  if (type == nullptr) return nullptr;
  switch (type->kind) {
    case ObjectKind::List:
      return makeCollection<ObjectRecord, ListData>(type);
    case ObjectKind::Array:
      return makeCollection<SizedObject, ArrayData>(type);
    case ObjectKind::Map:
      return makeCollection<SizedObject, MapData>(type);
    case ObjectKind::Set:
      return makeCollection<SizedObject, SetData>(type);
    case ObjectKind::Tuple:
      return minimal::make<minimal::TupleObject>(type);
    case ObjectKind::String:
      return Vorn_allocString({});
    case ObjectKind::BooleanBox:
      return Vorn_boxBool(false);
    default:
      return minimal::make<RegisteredObject>(type);  // a box of zero, or an instance, which has no fields
  }
}

void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool) {
  void* list = Vorn_allocObject(synchronised ? "ArrayListSync" : "ArrayList");
  *listData = getListData(list);
  return list;
}

long long Vorn_getField_i64(void* handle, const char* field) { return readNumber<long long>(handle, field); }
double Vorn_getField_double(void* handle, const char* field) { return readNumber<double>(handle, field); }
bool Vorn_getField_i1(void* handle, const char* field) { return readNumber<bool>(handle, field); }

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

const char* Vorn_objectTypeName(void* handle) {
  return handle != nullptr ? minimal::classOf(handle)->name.c_str() : nullptr;
}

bool Vorn_isInstanceOf(void* handle, const char* typeName) {
  const RuntimeClass* wanted = minimal::findClass(typeName);
  const RuntimeClass* type = minimal::classOf(handle);
  while (type != nullptr && type != wanted) type = type->base;
  return type != nullptr;
}

void runtimeWrongRecordFamily(const void* handle, ObjectKind expected) {
  const RuntimeClass* type = minimal::classOf(handle);
  std::fprintf(stderr, "minimal runtime: kind %d was expected, but the handle is %s\n", static_cast<int>(expected),
               type != nullptr ? type->name.c_str() : "null");
  std::abort();
}
