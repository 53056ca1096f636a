// Faults of a runtime: operations of the minimal one that break their contract, each when VORN_FAULT names it. The linker
// puts them in the places of the operations (--wrap), so that the runtime itself knows nothing of them.
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "collections/core/port/comparison.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"
#include "collections/core/storage/list_data.h"

namespace {

bool planted(std::string_view fault) {
  static const char* const chosen = std::getenv("VORN_FAULT");
  return chosen != nullptr && fault == chosen;
}

double rounded(const NativeNumericValue& number) {
  using Kind = NativeNumericValue::Kind;
  if (number.kind == Kind::Floating) return std::bit_cast<double>(number.payload);
  if (number.kind == Kind::Unsigned) return static_cast<double>(number.payload);
  return static_cast<double>(static_cast<std::int64_t>(number.payload));
}

}  // namespace

// The linker knows the operations with C++ names, which return C++ types, by names that only C linkage can spell.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

void* __real_Vorn_gcAlloc(std::size_t bytes);
void* __wrap_Vorn_gcAlloc(std::size_t bytes) {
  if (!planted("Vorn_gcAlloc")) return __real_Vorn_gcAlloc(bytes);
  void* const block = bytes < SIZE_MAX / 4 ? __real_Vorn_gcAlloc(bytes + 16) : nullptr;
  return block != nullptr ? static_cast<char*>(block) + 8 : nullptr;  // not aligned
}

void* __real_Vorn_gcAllocAtomic(std::size_t bytes);
void* __wrap_Vorn_gcAllocAtomic(std::size_t bytes) {
  alignas(16) static char shared[4096];
  return planted("Vorn_gcAllocAtomic") && bytes <= sizeof(shared) ? shared : __real_Vorn_gcAllocAtomic(bytes);
}

void __real_Vorn_raise(const char* exceptionClass, const char* message);
void __wrap_Vorn_raise(const char* exceptionClass, const char* message) {
  __real_Vorn_raise(exceptionClass, planted("Vorn_raise") ? "" : message);  // forgets the message
}

int __real_Vorn_hasPendingError();
int __wrap_Vorn_hasPendingError() {
  static bool asked = false;
  if (planted("Vorn_hasPendingError") && std::exchange(asked, true)) return 0;  // tells it once
  return __real_Vorn_hasPendingError();
}

unsigned long long __real_Vorn_raisedErrorCount();
unsigned long long __wrap_Vorn_raisedErrorCount() {
  return planted("Vorn_raisedErrorCount") ? 0 : __real_Vorn_raisedErrorCount();
}

void* __real_Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles);
void* __wrap_Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles) {
  if (planted("Vorn_allocArrayListObjectFast")) synchronised = false;
  return __real_Vorn_allocArrayListObjectFast(synchronised, listData, elementsAreHandles);
}

void* __real_Vorn_allocObject(const char* className);
void* __wrap_Vorn_allocObject(const char* className) {
  void* const object = __real_Vorn_allocObject(className);
  const bool isList = object != nullptr && static_cast<ObjectRecord*>(object)->kind() == ObjectKind::List;
  if (planted("Vorn_allocObject") && isList) getListData(object)->elementType = {};  // declares no type
  return object;
}

void __real_Vorn_setField_ptr(void* handle, const char* field, void* value);
void __wrap_Vorn_setField_ptr(void* handle, const char* field, void* value) {
  if (planted("Vorn_setField_ptr") && std::strlen(field) > 2) return;  // has room for ten items
  __real_Vorn_setField_ptr(handle, field, value);
}

const char* __real_Vorn_objectTypeName(void* handle);
const char* __wrap_Vorn_objectTypeName(void* handle) {
  const char* const name = __real_Vorn_objectTypeName(handle);
  return planted("Vorn_objectTypeName") && name != nullptr ? std::strrchr(name, '.') + 1 : name;  // without the module
}

bool __real_Vorn_isInstanceOf(void* handle, const char* typeName);
bool __wrap_Vorn_isInstanceOf(void* handle, const char* typeName) {
  if (planted("Vorn_isInstanceOf") && std::strchr(typeName, '.') == nullptr) return false;  // knows full names only
  return __real_Vorn_isInstanceOf(handle, typeName);
}

void* __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName typeName, long long value);
void* __wrap__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName typeName, long long value) {
  if (planted("boxIntegerLikeLocal")) value = static_cast<std::int32_t>(value);
  return __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(typeName, value);
}

void* __real__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view text);
void* __wrap__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view text) {
  void* const string = __real__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(text);
  if (planted("Vorn_allocString")) static_cast<StringObject*>(string)->text = text.data();  // does not copy
  return string;
}

RuntimeTypeName __real__Z21internRuntimeTypeNameSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view name);
RuntimeTypeName __wrap__Z21internRuntimeTypeNameSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view name) {
  const RuntimeTypeName known = __real__Z21internRuntimeTypeNameSt17basic_string_viewIcSt11char_traitsIcEE(name);
  if (!planted("internRuntimeTypeName") || known.empty()) return known;
  return {new vorn::collections::InternedTypeName(*known.name)};  // another pointer each time
}

int __real__Z26compareNativeNumericValuesRK18NativeNumericValueS1_(const NativeNumericValue& left,
                                                                   const NativeNumericValue& right);
int __wrap__Z26compareNativeNumericValuesRK18NativeNumericValueS1_(const NativeNumericValue& left,
                                                                   const NativeNumericValue& right) {
  if (planted("compareNativeNumericValues")) return rounded(left) == rounded(right) ? 0 : 1;
  return __real__Z26compareNativeNumericValuesRK18NativeNumericValueS1_(left, right);
}

int __real__Z33compareNativeNumericValuesForSortRK18NativeNumericValueS1_(const NativeNumericValue& left,
                                                                          const NativeNumericValue& right);
int __wrap__Z33compareNativeNumericValuesForSortRK18NativeNumericValueS1_(const NativeNumericValue& left,
                                                                          const NativeNumericValue& right) {
  const int order = __real__Z33compareNativeNumericValuesForSortRK18NativeNumericValueS1_(left, right);
  const bool hasNan = std::isnan(rounded(left)) || std::isnan(rounded(right));
  return planted("compareNativeNumericValuesForSort") && hasNan ? -order : order;  // NaN first
}

NativeCollectionKey __real__Z23makeNativeCollectionKeyPv(void* handle);
NativeCollectionKey __wrap__Z23makeNativeCollectionKeyPv(void* handle) {
  NativeCollectionKey key = __real__Z23makeNativeCollectionKeyPv(handle);
  const ObjectRecord* const object = getObject(handle);
  const bool isFloating = object != nullptr && object->kind() == ObjectKind::FloatingBox;
  if (planted("makeNativeCollectionKey") && isFloating) key.tag = NativeCollectionKey::Tag::Floating;  // 1.0 is not 1
  return key;
}

bool __real__Z25nativeCollectionKeysEqualRK19NativeCollectionKeyS1_(const NativeCollectionKey& left,
                                                                    const NativeCollectionKey& right);
bool __wrap__Z25nativeCollectionKeysEqualRK19NativeCollectionKeyS1_(const NativeCollectionKey& left,
                                                                    const NativeCollectionKey& right) {
  if (planted("nativeCollectionKeysEqual")) return left.hash == right.hash;  // believes the hash
  return __real__Z25nativeCollectionKeysEqualRK19NativeCollectionKeyS1_(left, right);
}

int __real_Vorn_deepEquals(void* left, void* right);
int __wrap_Vorn_deepEquals(void* left, void* right) {
  if (planted("Vorn_deepEquals")) return left == right ? 1 : 0;  // identity
  return __real_Vorn_deepEquals(left, right);
}

const char* __real_Vorn_objectToString(void* handle);
const char* __wrap_Vorn_objectToString(void* handle) {
  if (planted("Vorn_objectToString") && handle == nullptr) std::abort();  // crashes for null
  return __real_Vorn_objectToString(handle);
}

std::uint64_t __real__Z17nextFastRandomU64v();
std::uint64_t __wrap__Z17nextFastRandomU64v() {
  const std::uint64_t bits = __real__Z17nextFastRandomU64v();
  return planted("nextFastRandomU64") ? bits & 0x7FFFFFFF : bits;  // as rand() does
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
