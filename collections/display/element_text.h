// The texts of unboxed elements, made without their boxes where a box could not make a difference.
//
// An element shows as its box would. The box's class follows from the kind of storage and the type name under which it
// is boxed; of integers, floating numbers and Booleans the text follows from those. Characters need their object, as
// the runtime decides how they look.
#pragma once

#include <cstdint>
#include <string_view>

#include "collections/core/storage/list_data.h"
#include "collections/display/display_buffer.h"

namespace vorn::collections {

// How elements of a kind show when they are boxed under a type name (normalised, or empty).
enum class ElementText : std::uint8_t { Signed, Unsigned, Floating, Boolean, Boxed };
ElementText elementTextOf(ListData::PrimitiveKind kind, RuntimeTypeName typeName);

// Appends n packed elements with the separator between them; not for ElementText::Boxed.
void appendElements(DisplayBuffer& text, ElementText form, ListData::PrimitiveKind kind, const unsigned char* data,
                    std::uint64_t n, std::string_view separator);

// Appends a primitive list's elements with the separator between them. The caller holds the lock. Boxed characters may
// run the runtime's own text code, which allocates.
void appendUnboxedElements(DisplayBuffer& text, const ListData& list, std::string_view separator);

}  // namespace vorn::collections
