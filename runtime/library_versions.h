// The versions of the two libraries, which must be the same: the runtime embeds the library's records in its objects and
// reads them inline, so that a pair of two versions would corrupt memory.
#pragma once

namespace vorn::runtime {

// The version that the runtime was compiled as.
[[nodiscard]] const char* runtimeVersion();

// Whether the collections library that is loaded is of that version. When it is not, one line on stderr names both.
[[nodiscard]] bool collectionsAreOfThisVersion();

}  // namespace vorn::runtime
