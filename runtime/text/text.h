// Texts as the runtime keeps them.
//
// A String object owns one text block: pointer-free, NUL-terminated, never changed. A bare text is such a block, or any
// other NUL-terminated text, used as a handle itself. A String may hold NUL bytes: its length counts them, comparisons
// between Strings see all of them, and whoever takes the text as a C string sees it up to the first one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// A new text block with a copy of the text, as a String's record asks for it. The caller keeps whatever owns the text alive. Allocates; std::bad_alloc.
char* newText(std::string_view text);

// Whether the handle is a String object or a bare text, and its text if so. Valid while the handle is alive.
bool readText(const void* handle, std::string_view& text);

// Appends the decimal text of a number: the shortest that reads back, always with a point or an exponent when floating;
// "NaN", "Infinity", "-Infinity".
void appendFloating(std::string& text, double value);

// Appends one Unicode scalar as UTF-8; anything else as the replacement character.
void appendScalarValue(std::string& text, std::uint64_t scalar);

}  // namespace vorn::runtime
