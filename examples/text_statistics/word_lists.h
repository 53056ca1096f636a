// The lists that a text is read into.
#pragma once

#include <vorn/runtime.hpp>

#include <string_view>

namespace text_statistics {

// Everything the program keeps about the words of a text, each element in a vorn list.
struct WordLists {
  static constexpr long long kRecent = 5;

  vorn::Handle words;    // ArrayList<String>: every word, in order
  vorn::Handle lengths;  // ArrayList<Int>: their lengths in characters
  vorn::Handle ratios;   // ArrayList<Double>: their lengths in relation to the mean length
  vorn::Handle recent;   // LinkedList<String>: the last words, at most kRecent of them

  // Makes the empty lists. Throws std::bad_alloc when there is no memory for them.
  WordLists();
};

// Reads the words of the text into `words`, `lengths` and `recent`.
void readWords(std::string_view text, WordLists& lists);

// Fills `ratios` from `lengths` and their mean.
void computeRatios(WordLists& lists, double meanLength);

// A new object of the class. Throws std::bad_alloc when there is no memory for it; the caller roots it.
void* newObject(const char* className);

// A String object with the given text. Throws std::bad_alloc when there is no memory for it; the caller roots it.
void* newString(std::string_view text);

// A boxed Int, likewise.
void* newInt(long long value);

}  // namespace text_statistics
