// Files, and the words in them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace text_statistics {

// The whole contents of a file, or nothing, with the reason in `problem`.
std::optional<std::string> readFile(const std::string& path, std::string& problem);

// The text with its ASCII letters in lower case.
std::string lowerCased(std::string_view text);

// Walks over the words of a text. A word is a maximal run of ASCII letters, ASCII digits and bytes from 0x80 on (every
// character outside ASCII counts as a letter), together with the apostrophes that stand between two of those: "isn't"
// is one word, 'quoted' is a word without its quotation marks.
class WordReader {
 public:
  explicit WordReader(std::string_view text) : rest_(text) {}

  // The next word with its ASCII letters in lower case, or nothing at the end. Valid until the next call.
  std::optional<std::string_view> next();

 private:
  std::string_view rest_;
  std::string word_;
};

}  // namespace text_statistics
