#include "collections/arraylist/result_lists.h"

#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void* allocateListOfClass(const char* className, ListData** out) {
  *out = nullptr;
  void* list = Vorn_allocObject(className);
  if (list != nullptr) *out = getListData(list);
  return list;
}

}  // namespace vorn::collections

void* allocateMutableListResultLike(void* list, ListData** out) {
  *out = nullptr;
  const char* className = Vorn_objectTypeName(list);
  if (className != nullptr && isLinkedListLike(className)) {
    return vc::allocateListOfClass(className, out);
  }
  const bool synchronised = className != nullptr && isSyncArrayListLike(className);
  return Vorn_allocArrayListObjectFast(synchronised, out, true);
}
