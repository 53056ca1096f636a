// Whole-record check of a list, for tests, fuzzers and debuggers.
#pragma once

#include <string>

struct ListData;

namespace vorn::collections {

// The first broken invariant of the record as a sentence, or the empty string. Expects no concurrent change. Neither
// allocates collected memory nor locks nor runs user code.
std::string validateListData(const ListData& list);

}  // namespace vorn::collections
