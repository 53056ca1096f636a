// Boxes, strings, characters and the slots of arrays.
#pragma once

#include <string>
#include <string_view>

#include "collections/core/array_slot_kind.h"
#include "collections/core/port/type_name.h"

#pragma GCC visibility push(default)

extern "C" {

// One of the two shared Boolean boxes. Does not allocate.
void* Vorn_boxBool(bool value);

// Nonzero when both texts are equal; null equals only null.
int Vorn_strEquals(const char* left, const char* right);

}  // extern "C"

// A new box of the named integer-like type ("Int", "Byte", "Char", "CodeUnit", ..., also under the language's module);
// all 64 bits are kept. Another name boxes as "Int" when the value fits 32 bits, else as "Long". "Boolean" gives the
// shared box. Allocates. Every boxed read of unboxed storage comes here: the name tells its type without its text.
void* boxIntegerLikeLocal(RuntimeTypeName typeName, long long value);

// A new "Float" or "Double" box ("Double" for another name). Allocates.
void* boxFloatingLikeLocal(RuntimeTypeName typeName, double value);

// A new String object. Allocates.
void* Vorn_allocString(std::string_view text);

// The text of a String object or of a bare text; the view holds while the handle is alive.
std::string stringValueFromPtr(void* handle);
std::string_view stringTextFromPtr(void* handle);

// The slot kind of an element type name, short or full; Object for every name that is no primitive type. Char has the
// slots of UInt32, CodeUnit those of UInt16.
ArraySlotKind slotKindForArrayElementType(std::string_view typeName);

// Unboxes a value for a slot: integers of the eight types, numbers of those and the floating types, Booleans. False,
// with nothing stored, for any other value. None allocates or runs user code.
bool extractArrayElementInteger(void* value, long long& integer);
bool extractArrayElementDouble(void* value, double& floating);
bool extractArrayElementBool(void* value, bool& truth);

extern "C" {

// The value when it is a Unicode scalar or a 16-bit code unit; otherwise 0, after raising what storing it into a list
// of that type raises.
long long Vorn_intToChar(long long value);
long long Vorn_intToCodeUnit(long long value);

// The UTF-8 text of a code unit that is no surrogate; null above 0xFFFF. Lives as long as the process.
const char* Vorn_codeUnitToString(long long unit);

}  // extern "C"

#pragma GCC visibility pop
