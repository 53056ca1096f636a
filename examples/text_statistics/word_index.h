// What is known about each distinct word, in maps and sets.
#pragma once

#include <vorn/runtime.hpp>

#include "word_lists.h"

namespace text_statistics {

struct WordIndex {
  vorn::Handle counts;       // Map<String, Int>: how often each word occurs
  vorn::Handle firsts;       // SortedMap<String, Int>: where each word stands first, in alphabetical order
  vorn::Handle once;         // HashSet<String>: the words that occur once
  vorn::Handle frequencies;  // ImmutableList of (count, word) tuples, the most frequent words first

  // Makes the empty collections. Throws std::bad_alloc when there is no memory for them.
  WordIndex();
};

// Fills all of it from the words.
void indexWords(const WordLists& lists, WordIndex& index);

}  // namespace text_statistics
