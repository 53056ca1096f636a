// The parts of the report that come from maps, sets, tuples and arrays.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/runtime.hpp>

#include <algorithm>
#include <cstdio>

#include "report.h"
#include "utf8.h"

namespace text_statistics {

namespace {

std::string textOf(void* handle) {
  const char* text = vorn_string_text(handle);
  return text != nullptr ? printable(text) : std::string();
}

long long integerOf(void* box) {
  std::int64_t value = 0;
  vorn_unbox_integer(box, &value);
  return value;
}

// The distinct words from `begin` to `end` in alphabetical order, with their first positions.
void reportEntries(void* words, void* positions, long long begin, long long end) {
  for (long long i = begin; i < end; ++i) {
    const vorn::Handle word(vorn_collections_ImmutableList_operator_index(words, i));
    const vorn::Handle position(vorn_collections_ImmutableList_operator_index(positions, i));
    std::printf("  %-20s first at %lld\n", textOf(word).c_str(), integerOf(position));
  }
}

// A line of two columns, joined from its cells.
void* newRow(long long number, const std::string& text) {
  char digits[24];
  std::snprintf(digits, sizeof(digits), "%9lld", number);
  const vorn::Handle left(newString(digits));
  const vorn::Handle right(newString(text));
  const vorn::Handle cells(vorn_collections_ArrayList_literal(2, left.get(), right.get()));
  return vorn_collections_ArrayList_join(cells, " ");
}

// A list of lines about the most frequent words.
void* mostFrequent(const WordIndex& index, long long most) {
  const vorn::Handle rows(newObject("ArrayList<String>"));
  const long long shown = std::min(vorn_collections_ImmutableList_size(index.frequencies), most);
  vorn::Handle row;
  for (long long i = 0; i < shown; ++i) {
    const vorn::Handle pair(vorn_collections_ImmutableList_operator_index(index.frequencies, i));
    const vorn::Handle word(vorn_collections_Tuple_operator_index(pair, 1));
    // The map is asked again: what the tuple holds is the negative count.
    const vorn::Handle count(vorn_collections_Map_operator_index(index.counts, word));
    row = newRow(integerOf(count), textOf(word));
    vorn_collections_ArrayList_add(rows, row);
  }
  return rows;
}

void printRows(void* rows) {
  if (vorn_collections_ArrayList_size(rows) == 0) return;
  const vorn::Handle kept(rows);
  const vorn::Handle table(vorn_collections_ArrayList_join(kept, "\n  "));
  std::printf("  %s\n", vorn_string_text(table));
}

}  // namespace

void reportIndex(const WordIndex& index) {
  constexpr long long kMostFrequent = 20;
  constexpr long long kAtEachEnd = 3;
  std::printf("\nDistinct words\n");
  const long long distinct = vorn_collections_Map_size(index.counts);
  std::printf("  %9lld distinct words\n", distinct);
  std::printf("  %9lld occur once\n", vorn_collections_HashSet_size(index.once));
  printRows(mostFrequent(index, kMostFrequent));
  if (distinct == 0) return;
  std::printf("In alphabetical order\n");
  const vorn::Handle words(vorn_collections_Map_keys(index.firsts));
  const vorn::Handle positions(vorn_collections_Map_values(index.firsts));
  reportEntries(words, positions, 0, std::min(distinct, kAtEachEnd));
  if (distinct > 2 * kAtEachEnd) std::printf("  ...\n");
  reportEntries(words, positions, std::max(distinct - kAtEachEnd, std::min(distinct, kAtEachEnd)), distinct);
}

void reportArrays(const CharacterArrays& arrays) {
  std::printf("\nThe text as arrays\n");
  std::printf("  %9lld bytes\n", vorn_collections_Array_size(arrays.bytes));
  std::printf("  %9lld characters\n", vorn_collections_Array_size(arrays.characters));
  std::printf("  %9lld code units\n", vorn_collections_Array_size(arrays.codeUnits));
  std::printf("  %9lld bytes as a String\n", lengthAsString(arrays));
  std::printf("  %9lld letters from a to z:", vorn_collections_Array_sumI64Fast(arrays.letters));
  for (long long i = 0; i < vorn_collections_Array_size(arrays.letters); ++i) {
    const long long count = vorn_collections_Array_getInt(arrays.letters, i);
    if (count > 0) std::printf(" %c %lld", static_cast<char>('a' + i), count);
  }
  std::printf("\n");
}

}  // namespace text_statistics
