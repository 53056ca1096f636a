// What a word that is being typed can become.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "console/session.h"

namespace vorn::console {

struct Completion {
  std::size_t start = 0;                // where the word begins
  std::vector<std::string> candidates;  // whole words in alphabetical order, each once
  std::string_view suffix;              // what follows a word that is the only candidate
};

// Completes the text before the cursor.
Completion complete(const Session& session, std::string_view text);

// The letters that all candidates begin with.
std::string commonBeginning(const std::vector<std::string>& candidates);

}  // namespace vorn::console
