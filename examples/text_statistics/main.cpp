// Statistics of a text file, by means of the natives of vorn.collections.
//
// Written the way compiled vorn programs call the library: handles in rooted slots, every element in a vorn collection,
// errors read from the pending ones. VORN_HEAP chooses the heap ("heap=stress"; see vorn_runtime_parse_options).
#include <vorn/runtime.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <span>
#include <string>
#include <string_view>

#include "report.h"
#include "statistics.h"
#include "text_reader.h"
#include "word_lists.h"

namespace {

using namespace text_statistics;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr const char* kDefaultFile = "/usr/share/common-licenses/GPL-3";
constexpr const char* kDefaultWords[] = {"the", "freedom", "zebra"};

int fail(const std::string& message) {
  std::fprintf(stderr, "text_statistics: %s\n", message.c_str());
  return 1;
}

// `words` are the ones to look for, at least one; the first of them is also the one removed by value.
int reportText(const std::string& path, const std::string& text, std::span<const char* const> words) {
  WordLists lists;
  readWords(text, lists);
  if (const double mean = lengthFigures(lists.lengths).mean; mean > 0) computeRatios(lists, mean);

  reportFigures(path, text, lists);
  reportLengths(lists);
  WordIndex index;
  indexWords(lists, index);
  reportIndex(index);
  CharacterArrays arrays;
  fillArrays(text, arrays);
  reportArrays(arrays);
  reportDisplays(lists, arrays);
  reportSearchHeading();
  for (const char* word : words) reportSearch(lists, lowerCased(word));
  reportLastWords(lists);
  reportParts(lists);
  reportChanges(lists, lowerCased(words.front()));
  // Nothing up to here was meant to raise.
  if (vorn_error_count() > 0) return fail(std::string(vorn_error_class(0)) + ": " + vorn_error_message(0));
  reportErrors(lists);
  reportStorage(lists);
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : fail("cannot write the report");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "--help") {
    std::printf("usage: text_statistics [FILE [WORD...]]\nStatistics of the words of a text file (default: %s).\n",
                kDefaultFile);
    return 0;
  }
  const std::string path = argc > 1 ? argv[1] : kDefaultFile;
  std::span<const char* const> words = kDefaultWords;
  if (argc > 2) words = std::span<const char* const>(argv + 2, static_cast<std::size_t>(argc - 2));

  std::string problem;
  const auto text = readFile(path, problem);
  if (!text) return fail("cannot read " + path + ": " + problem);
  // The seed of the shuffle is fixed by default, so that the report is the same every time.
  const vorn::RuntimeScope runtime(std::getenv("VORN_HEAP"));
  if (!runtime.running()) return fail("cannot start the runtime on the heap that VORN_HEAP names");
  try {
    return reportText(path, *text, words);
  } catch (const std::exception& exception) {
    return fail(exception.what());
  }
}
