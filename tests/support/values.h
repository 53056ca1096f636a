// Values of every kind for tests: the type names that select a kind, boxes, readable forms and palettes.
#pragma once

#include <string>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// The thirteen type names that select a primitive kind, written out here once more, apart from the table that the
// library is built from.
const std::vector<std::string>& primitiveNames();

bool isFloatingName(const std::string& type);

// A box of any primitive type that holds a small whole number; Boolean is true unless the number is 0.
Handle box(const std::string& type, long long value);

// ---- Readable values ------------------------------------------------------------------------------------------------

std::string describeNumber(double value);

// Type and value of a handle, such as "Int 5", "Double 0.5", "Boolean 1", "String abc", "text abc", "Item 3" or "null".
std::string describe(void* handle);

using Elements = std::vector<std::string>;

// ---- Palettes -------------------------------------------------------------------------------------------------------

// A value that a list may hold, with what the two unboxed reads make of it.
struct PaletteEntry {
  Handle value;
  long long asInteger;
  double asDouble;
};
using Palette = std::vector<PaletteEntry>;

// Pairwise unequal values of one element type: a primitive name, "app.Item", or "" for a mixture. The ends of each
// range are among them. Only the mixture holds null, as its last value.
Palette paletteOf(const std::string& element);

}  // namespace vorn::tests
