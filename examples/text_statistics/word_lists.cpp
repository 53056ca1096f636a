#include "word_lists.h"

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <cstdint>
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

void* newObject(const char* className) { return orBadAlloc(vorn_object_new(className)); }

void* newString(std::string_view text) { return orBadAlloc(vorn_string_new(text.data(), text.size())); }

void* newInt(long long value) { return orBadAlloc(vorn_box_int(static_cast<std::int32_t>(value))); }

WordLists::WordLists()
    : words(newObject("ArrayList<String>")),
      lengths(newObject("ArrayList<Int>")),
      ratios(newObject("ArrayList<Double>")),
      recent(newObject("LinkedList<String>")) {}

void readWords(std::string_view text, WordLists& lists) {
  WordReader reader(text);
  vorn::Handle word;
  while (const auto next = reader.next()) {
    word = newString(*next);
    vorn_collections_ArrayList_add(lists.words, word);
    vorn_collections_ArrayList_addInt(lists.lengths, countCharacters(*next));
    vorn_collections_ArrayList_add(lists.recent, word);
    if (vorn_collections_ArrayList_sizeFast(lists.recent) > WordLists::kRecent)
      vorn_collections_ArrayList_removeAt(lists.recent, 0);
  }
}

// The ratios are written straight into the list's buffer, as a compiled loop over a typed list is.
void computeRatios(WordLists& lists, double meanLength) {
  const long long size = vorn_collections_ArrayList_sizeFast(lists.lengths);
  const long long* const lengths = vorn_collections_ArrayList_i64DataPtr(lists.lengths);
  double* const ratios = vorn_collections_ArrayList_prepareDoubleData(lists.ratios, size, "Double");
  if (lengths == nullptr || ratios == nullptr) return;
  for (long long i = 0; i < size; ++i) ratios[i] = static_cast<double>(lengths[i]) / meanLength;
  vorn_collections_ArrayList_commitDoubleDataSizeFast(lists.ratios, size);
}

}  // namespace text_statistics
