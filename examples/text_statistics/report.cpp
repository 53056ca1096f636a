#include "report.h"

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "statistics.h"
#include "utf8.h"

namespace text_statistics {

namespace {

void heading(const char* title) { std::printf("\n%s\n", title); }

// The text at a position of a list of strings; "" when the element is no text.
std::string wordAt(void* words, long long index) {
  const char* text = vorn_string_text(vorn_collections_ArrayList_operator_index(words, index));
  return text != nullptr ? printable(text) : std::string();
}

// The words of a list on one line.
void reportList(const char* name, void* words) {
  std::printf("  %-22s", name);
  for (long long i = 0; i < vorn_collections_ArrayList_size(words); ++i) std::printf(" %s", wordAt(words, i).c_str());
  std::printf("\n");
}

void reportChange(const std::string& what, long long before, long long after, const std::string& result) {
  std::printf("  %-32s %9lld -> %-9lld %s\n", what.c_str(), before, after, result.c_str());
}

// Prints the pending errors after what was tried, and clears them.
void reportRaised(const char* tried) {
  if (vorn_error_count() == 0) std::printf("  %-32s raised nothing\n", tried);
  for (std::size_t i = 0; i < vorn_error_count(); ++i)
    std::printf("  %-32s %s: %s\n", tried, vorn_error_class(i), vorn_error_message(i));
  vorn_errors_clear();
}

void reportStorageOf(const char* name, void* list) {
  vorn_list_storage_info info;
  if (vorn_list_get_storage(list, &info) == 0) return;
  std::string storage = "boxed";
  if (info.storage == VORN_LIST_LINKED) storage = "linked";
  if (info.storage == VORN_LIST_PRIMITIVE) storage = std::string("unboxed ") + info.primitive_type;
  std::printf("  %-8s %-36s %-15s %8" PRIu64 " %9" PRIu64 " %11" PRIu64 "\n", name, vorn_type_name(list),
              storage.c_str(), info.size, info.capacity, info.bytes_per_element);
}

}  // namespace

void reportFigures(const std::string& path, std::string_view text, const WordLists& lists) {
  const LengthFigures figures = lengthFigures(lists.lengths);
  std::printf("%s\n", printable(path).c_str());
  std::printf("  %-16s %9zu\n", "bytes", text.size());
  std::printf("  %-16s %9lld\n", "characters", countCharacters(text));
  const long long words = vorn_collections_ArrayList_size(lists.words);
  std::printf("  %-16s %9lld\n", "words", words);
  if (words == 0) return;

  const vorn::Handle longest(newInt(figures.longest));
  const long long position = vorn_collections_ArrayList_indexOf(lists.lengths, longest, 0);
  std::printf("  %-16s %9lld characters: %s (position %lld, %lld of that length)\n", "longest word", figures.longest,
              wordAt(lists.words, position).c_str(), position,
              vorn_collections_ArrayList_count(lists.lengths, longest));
  std::printf("  %-16s %9lld characters\n", "all words", figures.total);
  std::printf("  %-16s %12.2f\n", "mean length", figures.mean);
  std::printf("  %-16s %12.2f\n", "median length", figures.median);
  std::printf("  %-16s %12.2f times the mean length (all together %.2f)\n", "longest word is",
              greatestDouble(lists.ratios), meanOfDoubles(lists.ratios));
}

void reportLengths(const WordLists& lists) {
  const long long words = vorn_collections_ArrayList_size(lists.lengths);
  if (words == 0) return;
  heading("Lengths");
  const vorn::Handle sorted(vorn_collections_ArrayList_sortNew(lists.lengths));
  const vorn::Handle percents(vorn_collections_ArrayList_intLiteral5(25, 50, 75, 90, 99));
  for (long long i = 0; i < vorn_collections_ArrayList_size(percents); ++i) {
    const auto percent = static_cast<int>(vorn_collections_ArrayList_getInt(percents, i));
    std::printf("  %3d%% of the words have at most   %3lld characters\n", percent, percentile(sorted, percent));
  }
  const vorn::Handle bounds(vorn_collections_ArrayList_intLiteral(4, 3LL, 6LL, 9LL, 12LL));
  for (long long i = 0; i < vorn_collections_ArrayList_size(bounds); ++i) {
    const long long bound = vorn_collections_ArrayList_getInt(bounds, i);
    std::printf("  %9lld words have at most      %3lld characters\n", countUpTo(sorted, bound), bound);
  }
}

void reportParts(const WordLists& lists) {
  heading("Parts of the list of words");
  const vorn::Handle given(vorn_box_boolean(true));
  const vorn::Handle first(vorn_collections_ArrayList_slice(lists.words, 0, 5, 1, nullptr, given));
  reportList("words[:5]", first);
  const vorn::Handle last(vorn_collections_ArrayList_slice(lists.words, -1, -6, -1, given, given));
  reportList("words[-1:-6:-1]", last);
  const vorn::Handle everyThousandth(vorn_collections_ArrayList_slice(lists.words, 0, 0, 1000, nullptr, nullptr));
  reportList("words[::1000]", everyThousandth);

  vorn::Handle copy(vorn_collections_ArrayList_slice(lists.words, 0, 10, 1, nullptr, given));
  vorn_collections_ArrayList_shuffle(copy);
  reportList("words[:10] shuffled", copy);
  vorn_collections_ArrayList_sort(copy);
  reportList("and sorted", copy);
  const vorn::Handle a(newString("first"));
  const vorn::Handle b(newString("second"));
  const vorn::Handle c(newString("third"));
  const vorn::Handle replacement(vorn_collections_ArrayList_literal(3, a.get(), b.get(), c.get()));
  vorn_collections_ArrayList_sliceAssign(copy, 1, 1, 1, given, given, replacement);
  reportList("with three at [1:1]", copy);
  const vorn::Handle both(vorn_collections_ArrayList_concat(first, last));
  vorn_collections_ArrayList_addAll(both, lists.recent);
  const vorn::Handle repeated(vorn_collections_ArrayList_repeat(both, 3));
  std::printf("  %-22s %lld words\n", "(a + b + recent) * 3", vorn_collections_ArrayList_size(repeated));
}

void reportSearchHeading() {
  heading("Occurrences (positions count from 0, -1 is nowhere)");
  std::printf("  %-16s %9s %9s %9s\n", "word", "count", "first", "last");
}

void reportSearch(const WordLists& lists, const std::string& word) {
  const vorn::Handle value(newString(word));
  std::printf("  %-16s %9lld %9lld %9lld\n", printable(word).c_str(),
              vorn_collections_ArrayList_count(lists.words, value),
              vorn_collections_ArrayList_indexOf(lists.words, value, 0),
              vorn_collections_ArrayList_lastIndexOf(lists.words, value, -1));
}

void reportLastWords(const WordLists& lists) {
  heading("Last words");
  const long long shown = std::min(vorn_collections_ArrayList_size(lists.words), WordLists::kRecent);
  if (shown == 0) std::printf("  none\n");
  for (long long index = -1; index >= -shown; --index) {
    std::printf("  words[%lld] = %-20s recent[%lld] = %s\n", index, wordAt(lists.words, index).c_str(), index,
                wordAt(lists.recent, index).c_str());
  }
}

void reportChanges(WordLists& lists, const std::string& word) {
  heading("Changes to the list of words");
  const auto size = [&lists] { return vorn_collections_ArrayList_size(lists.words); };

  const vorn::Handle inserted(newString("inserted"));
  long long before = size();
  const long long position = std::min<long long>(before, 1);
  vorn_collections_ArrayList_addAt(lists.words, position, inserted);
  reportChange("insert \"inserted\" at " + std::to_string(position), before, size(),
               "words[" + std::to_string(position) + "] = " + wordAt(lists.words, position));

  before = size();
  vorn_collections_ArrayList_removeAt(lists.words, position);
  reportChange("remove at " + std::to_string(position), before, size(),
               vorn_collections_ArrayList_operator_in(lists.words, inserted) ? "the text itself holds it" : "gone");

  const vorn::Handle value(newString(word));
  before = size();
  const bool removed = vorn_collections_ArrayList_remove(lists.words, value);
  reportChange("remove the first \"" + printable(word) + "\"", before, size(), removed ? "removed" : "not in the list");
}

void reportErrors(WordLists& lists) {
  heading("Errors");
  vorn_collections_ArrayList_operator_index(lists.words, vorn_collections_ArrayList_size(lists.words));
  reportRaised("read words[size]");
  const vorn::Handle number(newInt(42));
  vorn_collections_ArrayList_add(lists.words, number);
  reportRaised("add the number 42 to words");
  const vorn::Handle text(newString("42"));
  vorn_collections_ArrayList_add(lists.lengths, text);
  reportRaised("add the text \"42\" to lengths");
  vorn_collections_ArrayList_add(nullptr, text);
  reportRaised("add to null");
}

void reportStorage(const WordLists& lists) {
  heading("Storage");
  std::printf("  %-8s %-36s %-15s %8s %9s %11s\n", "list", "class", "elements", "size", "capacity", "bytes each");
  reportStorageOf("words", lists.words);
  reportStorageOf("lengths", lists.lengths);
  reportStorageOf("ratios", lists.ratios);
  reportStorageOf("recent", lists.recent);
}

}  // namespace text_statistics
