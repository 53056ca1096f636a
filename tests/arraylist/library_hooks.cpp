#include "tests/arraylist/library_hooks.h"

#include <algorithm>

#include "collections/core/storage/linked_handles.h"
#include "collections/core/storage/list_data.h"

namespace vorn::tests {

thread_local bool noObjects = false;
thread_local std::function<void(pthread_mutex_t*)>* afterUnlock = nullptr;
thread_local std::uint64_t linkedSteps = 0;
thread_local std::uint64_t setReads = 0;
thread_local std::uint64_t tupleReads = 0;
thread_local std::uint64_t textQuestions = 0;
thread_local std::function<void(long long)>* beforeTupleRead = nullptr;
thread_local std::vector<RootSlot>* rootSlots = nullptr;
thread_local std::vector<std::vector<void*>>* rootRanges = nullptr;

}  // namespace vorn::tests

using namespace vorn::tests;

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_Vorn_allocObject(const char* className);
void* __real_Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
void __real_Vorn_gcRegisterRootSlot(void** slot);
void __real_Vorn_gcRegisterRootRange(void* start, std::size_t bytes);
void __real_Vorn_gcUnregisterRootSlot(void** slot);
LinkedHandles::Node* __real__ZN13LinkedHandles6nodeAtEm(LinkedHandles* nodes, std::uint64_t index);
void* __real_vorn_collections_HashSet_operator_index(void* set, long long index);
void* __real_vorn_collections_Tuple_operator_index(void* tuple, long long index);
const char* __real_Vorn_objectToString(void* handle);
int __real_Vorn_strEquals(const char* left, const char* right);

void* __wrap_Vorn_allocObject(const char* className) {
  return noObjects ? nullptr : __real_Vorn_allocObject(className);
}
void* __wrap_Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles) {
  if (!noObjects) return __real_Vorn_allocArrayListObjectFast(synchronised, listData, elementsAreHandles);
  // A runtime promises nothing of the record of a list that there is not.
  static ListData nobodys;
  *listData = &nobodys;
  return nullptr;
}
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_unlock(mutex);
  if (afterUnlock != nullptr) (*afterUnlock)(mutex);
  return result;
}
void __wrap_Vorn_gcRegisterRootSlot(void** slot) {
  __real_Vorn_gcRegisterRootSlot(slot);
  if (rootSlots != nullptr) rootSlots->push_back({slot, *slot, true});
}
void __wrap_Vorn_gcUnregisterRootSlot(void** slot) {
  __real_Vorn_gcUnregisterRootSlot(slot);
  if (rootSlots == nullptr) return;
  const auto newest = std::find_if(rootSlots->rbegin(), rootSlots->rend(),
                                   [&](const RootSlot& root) { return root.slot == slot && root.registered; });
  if (newest != rootSlots->rend()) newest->registered = false;
}
void __wrap_Vorn_gcRegisterRootRange(void* start, std::size_t bytes) {
  __real_Vorn_gcRegisterRootRange(start, bytes);
  if (rootRanges == nullptr) return;
  auto* const words = static_cast<void**>(start);
  rootRanges->emplace_back(words, words + bytes / sizeof(void*));
}
LinkedHandles::Node* __wrap__ZN13LinkedHandles6nodeAtEm(LinkedHandles* nodes, std::uint64_t index) {
  linkedSteps += std::min(index, nodes->count - index);
  return __real__ZN13LinkedHandles6nodeAtEm(nodes, index);
}
void* __wrap_vorn_collections_HashSet_operator_index(void* set, long long index) {
  ++setReads;
  return __real_vorn_collections_HashSet_operator_index(set, index);
}
void* __wrap_vorn_collections_Tuple_operator_index(void* tuple, long long index) {
  ++tupleReads;
  if (beforeTupleRead != nullptr) (*beforeTupleRead)(index);
  return __real_vorn_collections_Tuple_operator_index(tuple, index);
}
const char* __wrap_Vorn_objectToString(void* handle) {
  ++textQuestions;
  return __real_Vorn_objectToString(handle);
}
int __wrap_Vorn_strEquals(const char* left, const char* right) {
  ++textQuestions;
  return __real_Vorn_strEquals(left, right);
}
}
// NOLINTEND(bugprone-reserved-identifier)
