// A program on the minimal runtime: counts words with a sorted map, as compiled programs would.
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>

#include <cstdio>

#include "minimal_runtime.h"

int main() {
  void* counts = Vorn_allocObject("SortedMap<String,Int>");
  for (const char* word : {"the", "natives", "run", "on", "the", "minimal", "runtime", "on", "the", "arena"}) {
    const long long before = Vorn_getField_i64(vorn_collections_Map__get(counts, Vorn_allocString(word)), "_value");
    vorn_collections_Map_put(counts, Vorn_allocString(word), boxIntegerLikeLocal({}, before + 1));
  }
  std::puts(Vorn_objectToString(counts));
  vorn_collections_ArrayList_getInt(Vorn_allocObject("ArrayList<Int>"), 7);
  for (const std::string& error : minimal::takeErrors()) std::puts(error.c_str());
}
