// The display text of any value, and of each collection, appended to a buffer.
//
// The collection functions append the cycle marker for a collection that this thread is displaying already. Their last
// argument, when it is given, receives a new String with the buffer's whole text, made while the collection is still
// locked and marked as displayed. All of them may run user code, raise and allocate; an exception that passes through
// leaves no lock and no mark behind.
#pragma once

#include <vorn/collections/runtime_helpers.hpp>

#include <string>

// The body of the display of an array.
std::string arrayToDisplayStringInternal(void* array);

namespace vorn::collections {

class DisplayBuffer;

void appendValueDisplay(DisplayBuffer& text, void* value);

void appendListDisplay(DisplayBuffer& text, void* list, void** string = nullptr);
void appendImmutableListDisplay(DisplayBuffer& text, void* list, void** string = nullptr);
void appendTupleDisplay(DisplayBuffer& text, void* tuple, void** string = nullptr);
void appendMapDisplay(DisplayBuffer& text, void* map, void** string = nullptr);
void appendSetDisplay(DisplayBuffer& text, void* set, void** string = nullptr);
void appendArrayDisplay(DisplayBuffer& text, void* array, void** string = nullptr);

// The language's toString of a value, as join and sets have it: "null" for null, and where toString gives none.
void appendLanguageText(DisplayBuffer& text, void* value);

// The frame of the toString natives: a new String with what one of the functions above appends for the collection.
void* displayAsString(void (*append)(DisplayBuffer& text, void* collection, void** string), void* collection);

// The end of a display: makes the String when one is wanted.
void finishDisplay(const DisplayBuffer& text, void** string);

}  // namespace vorn::collections
