// What the test of the debugger's printers looks at: one list of each storage, and one value of each sort.
#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "runtime/objects/runtime_class.h"

namespace {

// The debugger stops here, with everything in place; its caller's frame is the one to look at.
[[gnu::noinline]] void stopHere() { asm volatile("" : : : "memory"); }

void* listOf(const char* className, void* first, void* second) {
  void* list = vorn_object_new(className);
  vorn_collections_ArrayList_add(list, first);
  vorn_collections_ArrayList_add(list, second);
  return list;
}

}  // namespace

int main() {
  // The plain heap frees nothing, so that no handle needs a slot, and starts no thread and no signal handler.
  vorn_runtime_options options;
  if (vorn_runtime_parse_options("heap=plain", &options) == 0 || vorn_runtime_start(&options) == 0) return 1;
  [[maybe_unused]] const RuntimeClass* withDebuggingInformation = nullptr;
  void* number = vorn_box_integer("Int", -42);
  void* real = vorn_box_floating("Double", 2.5);
  void* string = vorn_string_new("a string", 8);
  void* text = vorn_text_new("a bare text");
  void* lists[] = {
      listOf("ArrayList<Short>", vorn_box_integer("Short", -3), vorn_box_integer("Short", 300)),
      listOf("ArrayList<Byte>", vorn_box_integer("Byte", 200), vorn_box_integer("Byte", 7)),
      listOf("ArrayListSync<Double>", real, vorn_box_floating("Double", -0.125)),
      listOf("ArrayList<Char>", vorn_box_integer("Char", 0x1F600), vorn_box_integer("Char", 65)),
      listOf("ArrayList", string, nullptr),
      listOf("LinkedList<String>", text, string),
  };
  ListData* records[6];
  for (int i = 0; i < 6; ++i) records[i] = getListData(lists[i]);
  stopHere();
  return vorn_collections_ArrayList_size(lists[0]) == 2 && records[0] != nullptr && number != nullptr ? 0 : 1;
}
