#include "word_lists.h"

#include <vorn/collections/array_list.h>

#include <new>

#include "text_reader.h"
#include "utf8.h"

namespace text_statistics {

namespace {

void* orBadAlloc(void* handle) {
  if (handle == nullptr) throw std::bad_alloc();
  return handle;
}

}  // namespace

void* newString(std::string_view text) { return orBadAlloc(vorn_string_new(text.data(), text.size())); }

void* newInt(long long value) { return orBadAlloc(vorn_box_integer("Int", value)); }

WordLists::WordLists()
    : words(orBadAlloc(vorn_object_new("ArrayList<String>"))),
      lengths(orBadAlloc(vorn_object_new("ArrayList<Int>"))),
      ratios(orBadAlloc(vorn_object_new("ArrayList<Double>"))),
      recent(orBadAlloc(vorn_object_new("LinkedList<String>"))) {}

void readWords(std::string_view text, WordLists& lists) {
  WordReader reader(text);
  Rooted word;
  while (const auto next = reader.next()) {
    word = newString(*next);
    vorn_collections_ArrayList_add(lists.words, word);
    vorn_collections_ArrayList_addInt(lists.lengths, countCharacters(*next));
    vorn_collections_ArrayList_add(lists.recent, word);
    if (vorn_collections_ArrayList_sizeFast(lists.recent) > WordLists::kRecent)
      vorn_collections_ArrayList_removeAt(lists.recent, 0);
  }
}

void computeRatios(WordLists& lists, double meanLength) {
  const long long size = vorn_collections_ArrayList_sizeFast(lists.lengths);
  for (long long i = 0; i < size; ++i) {
    const auto length = static_cast<double>(vorn_collections_ArrayList_getIntFast(lists.lengths, i));
    vorn_collections_ArrayList_addPrimitiveDouble(lists.ratios, length / meanLength, nullptr);
  }
}

}  // namespace text_statistics
