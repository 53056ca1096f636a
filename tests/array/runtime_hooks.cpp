#include "tests/array/runtime_hooks.h"

#include <algorithm>

#include "collections/core/port/type_name.h"
#include "collections/core/storage/linked_handles.h"

namespace vorn::tests {

std::function<void(std::string_view)>* onRuntimeCall = nullptr;
const char* textOfWideUnits = nullptr;
bool noObjects = false;
thread_local std::function<void(pthread_mutex_t*)>* afterUnlock = nullptr;
thread_local std::uint64_t linkedSteps = 0;

namespace {
void notify(std::string_view operation) {
  if (onRuntimeCall != nullptr) (*onRuntimeCall)(operation);
}
}  // namespace

}  // namespace vorn::tests

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
LinkedHandles::Node* __real__ZN13LinkedHandles6nodeAtEm(LinkedHandles* nodes, std::uint64_t index);
void __real_Vorn_raise(const char* exceptionClass, const char* message);
const char* __real_Vorn_codeUnitToString(long long unit);
void* __real_Vorn_allocObject(const char* className);
void* __real__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view text);
void* __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName type, long long value);
void* __real__Z20boxFloatingLikeLocal15RuntimeTypeNamed(RuntimeTypeName type, double value);

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_unlock(mutex);
  if (vorn::tests::afterUnlock != nullptr) (*vorn::tests::afterUnlock)(mutex);
  return result;
}
LinkedHandles::Node* __wrap__ZN13LinkedHandles6nodeAtEm(LinkedHandles* nodes, std::uint64_t index) {
  vorn::tests::linkedSteps += std::min(index, nodes->count - index);
  return __real__ZN13LinkedHandles6nodeAtEm(nodes, index);
}
void __wrap_Vorn_raise(const char* exceptionClass, const char* message) {
  vorn::tests::notify("raise");
  __real_Vorn_raise(exceptionClass, message);
}
const char* __wrap_Vorn_codeUnitToString(long long unit) {
  const bool wide = unit < 0 || unit > 0xFFFF;
  return wide && vorn::tests::textOfWideUnits != nullptr ? vorn::tests::textOfWideUnits
                                                         : __real_Vorn_codeUnitToString(unit);
}
void* __wrap_Vorn_allocObject(const char* className) {
  vorn::tests::notify("object");
  return vorn::tests::noObjects ? nullptr : __real_Vorn_allocObject(className);
}
void* __wrap__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(std::string_view text) {
  vorn::tests::notify("string");
  return __real__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE(text);
}
void* __wrap__Z19boxIntegerLikeLocal15RuntimeTypeNamex(RuntimeTypeName type, long long value) {
  vorn::tests::notify("integer box");
  return __real__Z19boxIntegerLikeLocal15RuntimeTypeNamex(type, value);
}
void* __wrap__Z20boxFloatingLikeLocal15RuntimeTypeNamed(RuntimeTypeName type, double value) {
  vorn::tests::notify("floating box");
  return __real__Z20boxFloatingLikeLocal15RuntimeTypeNamed(type, value);
}
}
// NOLINTEND(bugprone-reserved-identifier)
