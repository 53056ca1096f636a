#include <vorn/collections/array_list.h>
#include <vorn/collections/version.h>
#include <vorn/runtime.h>
#include <stdio.h>

int main(void) {
  if (!vorn_runtime_start(NULL)) return 1;
  void* list = vorn_object_new("ArrayList<Int>");
  if (list == NULL) return 1;
  vorn_collections_ArrayList_addInt(list, 20);
  vorn_collections_ArrayList_addInt(list, 22);
  printf("%lld with %s, collections %s, runtime %s\n",
         vorn_collections_ArrayList_getInt(list, 0) + vorn_collections_ArrayList_getInt(list, 1),
         VORN_COLLECTIONS_VERSION, vorn_collections_version(), vorn_runtime_version());
  vorn_runtime_stop();
  return 0;
}
