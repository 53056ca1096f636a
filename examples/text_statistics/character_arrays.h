// The text as arrays: of its bytes, its characters, its UTF-16 code units, and of the number of each letter.
#pragma once

#include <vorn/runtime.hpp>

#include <string_view>

namespace text_statistics {

struct CharacterArrays {
  vorn::Handle bytes;  // Array<Byte>
  vorn::Handle
      characters;          // Array<Char>; a byte outside UTF-8 is one U+FFFD, and so is a NUL, which no String may hold
  vorn::Handle codeUnits;  // Array<CodeUnit>
  vorn::Handle letters;    // Array<Int>: how often each letter from a to z occurs in either case

  // Makes the arrays without elements. Throws std::bad_alloc when there is no memory for them.
  CharacterArrays();
};

void fillArrays(std::string_view text, CharacterArrays& arrays);

// The characters as a String, made from the array of Char and again from the one of CodeUnit: the length in bytes, or
// -1 when the two are not the same.
long long lengthAsString(const CharacterArrays& arrays);

}  // namespace text_statistics
