// The report on standard output.
#pragma once

#include <string>
#include <string_view>

#include "character_arrays.h"
#include "word_index.h"
#include "word_lists.h"

namespace text_statistics {

// Bytes, characters, words, longest word, mean and median length.
void reportFigures(const std::string& path, std::string_view text, const WordLists& lists);

// The lengths of the words in order: percentiles, and how many words are no longer than some bounds.
void reportLengths(const WordLists& lists);

// Parts of the list of words: slices of all kinds, a slice assignment on a copy, a shuffle, a list repeated.
void reportParts(const WordLists& lists);

// How many distinct words there are, the most frequent ones, and the ends of the alphabetical index.
void reportIndex(const WordIndex& index);

// The text's bytes, characters, code units and letters.
void reportArrays(const CharacterArrays& arrays);

// The display texts of collections of every family, filled with the first words.
void reportDisplays(const WordLists& lists, const CharacterArrays& arrays);

// How often a word occurs, and where first and last.
void reportSearchHeading();
void reportSearch(const WordLists& lists, const std::string& word);

// The last words, by negative indexes.
void reportLastWords(const WordLists& lists);

// Inserts and removes words, with the sizes before and after. `word` is the one removed by value; the list ends one
// word shorter when it holds it.
void reportChanges(WordLists& lists, const std::string& word);

// What a wrong index, a wrong element type and a null receiver raise.
void reportErrors(WordLists& lists);

// Class, storage, bytes per element and capacity of each list.
void reportStorage(const WordLists& lists);

}  // namespace text_statistics
