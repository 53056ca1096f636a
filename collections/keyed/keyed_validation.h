// Whole-record checks of maps and sets, for tests, fuzzers and debuggers.
#pragma once

#include <string>

struct MapData;
struct SetData;

namespace vorn::collections {

// The first broken invariant of the record as a sentence, or the empty string. Expects no concurrent change. Neither
// allocates collected memory nor locks nor runs user code.
std::string validateMapData(const MapData& map);
std::string validateSetData(const SetData& set);

}  // namespace vorn::collections
