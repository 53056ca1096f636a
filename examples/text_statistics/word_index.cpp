#include "word_index.h"

#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/runtime.hpp>

namespace text_statistics {

namespace {

long long unboxed(void* box) {
  std::int64_t value = 0;
  vorn_unbox_integer(box, &value);
  return value;
}

// Counts every word, and remembers where each stands first.
void countWords(void* words, void* counts, void* firsts) {
  vorn::Handle word;
  vorn::Handle number;
  for (long long i = 0, size = vorn_collections_ArrayList_size(words); i < size; ++i) {
    word = vorn_collections_ArrayList_operator_index(words, i);
    void* found = nullptr;
    const bool known = vorn_collections_Map_tryGet(counts, word, &found);
    number = newInt(known ? unboxed(found) + 1 : 1);
    vorn_collections_Map_put(counts, word, number);
    if (known) continue;
    number = newInt(i);
    vorn_collections_Map_put(firsts, word, number);
  }
}

// A new tuple of two values, made the way a compiled tuple literal is: from a packed list.
void* newPair(void* first, void* second) {
  const vorn::Handle packed(vorn_collections_ArrayList_literal(2, first, second));
  const vorn::Handle pair(newObject("Tuple<Int,String>"));
  vorn_collections_Tuple_ctor(pair, packed);
  return pair;
}

}  // namespace

WordIndex::WordIndex()
    : counts(newObject("Map<String,Int>")),
      firsts(newObject("SortedMap<String,Int>")),
      once(newObject("HashSet<String>")),
      frequencies(newObject("ImmutableList")) {}

void indexWords(const WordLists& lists, WordIndex& index) {
  countWords(lists.words, index.counts, index.firsts);

  // Tuples sort by their first items, then by the next. With the negative count in front the most frequent word comes
  // first, and equally frequent ones in alphabetical order.
  const vorn::Handle items(vorn_collections_Map_items(index.counts));
  const vorn::Handle pairs(newObject("ArrayList"));
  vorn::Handle word;
  vorn::Handle count;
  vorn::Handle pair;
  for (long long i = 0, size = vorn_collections_ImmutableList_size(items); i < size; ++i) {
    pair = vorn_collections_ImmutableList_operator_index(items, i);
    word = vorn_collections_Tuple_operator_index(pair, 0);
    const long long occurrences = unboxed(vorn_collections_Tuple_operator_index(pair, 1));
    if (occurrences == 1) vorn_collections_HashSet_add(index.once, word);
    count = newInt(-occurrences);
    pair = newPair(count, word);
    vorn_collections_ArrayList_add(pairs, pair);
  }
  vorn_collections_ArrayList_sort(pairs);
  vorn_collections_ImmutableList_ctor(index.frequencies, pairs);
}

}  // namespace text_statistics
