// Whether the display of a value can be made at all: collections that hold each other several times over show as many
// elements as there are ways to them, which doubles with each level.
#pragma once

#include <cstdint>

namespace vorn::console {

enum class DisplayCost : std::uint8_t { Fine, TooLarge, TooDeep };

// Walks the elements as the display would, up to a bound. Allocates.
DisplayCost displayCost(void* handle);

}  // namespace vorn::console
