// One line for each family of collections: its display text.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/runtime.hpp>

#include <cstdio>

#include "report.h"
#include "utf8.h"

namespace text_statistics {

namespace {

// A text may hold bytes outside UTF-8, which a display shows as they are.
void printDisplay(const char* name, void* display) {
  const vorn::Handle kept(display);
  const char* text = vorn_string_text(kept);
  std::printf("  %-14s %s\n", name, text != nullptr ? printable(text).c_str() : "");
}

void showList(const char* className, void* words) {
  const vorn::Handle list(newObject(className));
  vorn_collections_ArrayList_addAll(list, words);
  printDisplay(className, vorn_collections_ArrayList_toString(list));
}

// The words with their lengths in bytes.
void showMap(const char* className, void* words) {
  const vorn::Handle map(newObject(className));
  for (long long i = 0; i < vorn_collections_ArrayList_size(words); ++i) {
    const vorn::Handle word(vorn_collections_ArrayList_operator_index(words, i));
    const vorn::Handle length(newInt(static_cast<long long>(std::string_view(vorn_string_text(word)).size())));
    vorn_collections_Map_put(map, word, length);
  }
  printDisplay(className, vorn_collections_Map_toString(map));
}

void showSet(const char* className, void* words) {
  const vorn::Handle set(newObject(className));
  for (long long i = 0; i < vorn_collections_ArrayList_size(words); ++i) {
    const vorn::Handle word(vorn_collections_ArrayList_operator_index(words, i));
    vorn_collections_HashSet_add(set, word);
  }
  printDisplay(className, vorn_collections_HashSet_toString(set));
}

}  // namespace

void reportDisplays(const WordLists& lists, const CharacterArrays& arrays) {
  std::printf("\nDisplays\n");
  const vorn::Handle given(vorn_box_boolean(true));
  const vorn::Handle words(vorn_collections_ArrayList_slice(lists.words, 0, 4, 1, nullptr, given));
  for (const char* className : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"})
    showList(className, words);
  const vorn::Handle lengths(vorn_collections_ArrayList_slice(lists.lengths, 0, 4, 1, nullptr, given));
  printDisplay("of Int", vorn_collections_ArrayList_toString(lengths));
  const vorn::Handle immutable(newObject("ImmutableList"));
  vorn_collections_ImmutableList_ctor(immutable, words);
  printDisplay("ImmutableList", vorn_collections_ImmutableList_toString(immutable));
  const vorn::Handle tuple(newObject("Tuple"));
  vorn_collections_Tuple_ctor(tuple, words);
  printDisplay("Tuple", vorn_collections_Tuple_toString(tuple));
  for (const char* className : {"Map", "HashMapSync", "SortedMap", "SortedMapSync"}) showMap(className, words);
  for (const char* className : {"HashSet", "HashSetSync"}) showSet(className, words);
  printDisplay("Array", vorn_collections_Array_toString(arrays.letters));

  vorn_collections_ArrayList_add(words, words);
  printDisplay("holding itself", vorn_collections_ArrayList_toString(words));
  printDisplay("joined", vorn_collections_ArrayList_join(lists.recent, " | "));
}

}  // namespace text_statistics
