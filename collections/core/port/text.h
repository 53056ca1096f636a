// Display texts, and the numbers that shuffle lists.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

// The language's toString of an object: NUL-terminated text, or null. The text of a String object or a bare text is
// its own; that of a collection is its display; otherwise user code may run, and the text is a new collected block. The
// texts of numbers and Booleans are those of the two functions below, "true" and "false". Allocates.
extern "C" const char* Vorn_objectToString(void* handle);

// The decimal text of an integer boxed as the named type: unsigned for "ULong", whose values are passed by their bits,
// signed for every other name.
std::string integerLikeToDisplayString(std::string_view shortName, long long value);

// The text of a floating number: the shortest that reads back, always with a point or an exponent; "NaN", "Infinity",
// "-Infinity".
std::string formatVornFloat(double value);

// A text as it stands between double quotes: quotes, backslashes and control characters (below U+0020) escaped as in
// JSON, and all else as it is.
std::string escapeDisplayString(std::string_view text);

// The default text of an object that is no number, text or collection, under the given class name: a character's own
// text, what the toString of a user class gives, else the class name with the fields. May run user code, raise and
// allocate.
std::string formatObjectDefault(void* object, std::string_view className);

// Pseudo-random bits for shuffling. Thread-safe.
std::uint64_t nextFastRandomU64();

#pragma GCC visibility pop
