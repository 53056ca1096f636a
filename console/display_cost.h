// Whether the display of a value can be made at all: collections that hold each other several times over show as many
// elements as there are ways to them, which doubles with each level.
#pragma once

#include <cstdint>

namespace vorn::console {

enum class DisplayCost : std::uint8_t { Fine, TooLarge, TooDeep };

// Whether the console can show it. Walks the elements as the display would, up to a bound. Allocates.
DisplayCost displayCost(void* handle);

// Whether a native that makes a text of it would end: of collections alone, so many that the text is for nobody are
// TooLarge, whatever the number of their elements. Allocates.
DisplayCost textCost(void* handle);

}  // namespace vorn::console
