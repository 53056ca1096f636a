// What is known about each distinct word, in maps and sets.
#pragma once

#include "rooted.h"
#include "word_lists.h"

namespace text_statistics {

struct WordIndex {
  Rooted counts;       // Map<String, Int>: how often each word occurs
  Rooted firsts;       // SortedMap<String, Int>: where each word stands first, in alphabetical order
  Rooted once;         // HashSet<String>: the words that occur once
  Rooted frequencies;  // ImmutableList of (count, word) tuples, the most frequent words first

  // Makes the empty collections. Throws std::bad_alloc when there is no memory for them.
  WordIndex();
};

// Fills all of it from the words.
void indexWords(const WordLists& lists, WordIndex& index);

}  // namespace text_statistics
