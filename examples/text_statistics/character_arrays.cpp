#include "character_arrays.h"

#include <vorn/collections/array.h>
#include <vorn/runtime.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "utf8.h"
#include "word_lists.h"

namespace text_statistics {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

std::vector<std::uint32_t> charactersOf(std::string_view text) {
  std::vector<std::uint32_t> characters;
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    const std::uint32_t scalar = length == 0 ? kReplacement : utf8Decoded(text.substr(0, length));
    characters.push_back(scalar == 0 ? kReplacement : scalar);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return characters;
}

std::vector<std::uint16_t> codeUnitsOf(const std::vector<std::uint32_t>& characters) {
  std::vector<std::uint16_t> units;
  for (const std::uint32_t scalar : characters) {
    if (scalar <= 0xFFFF) {
      units.push_back(static_cast<std::uint16_t>(scalar));
    } else {
      units.push_back(static_cast<std::uint16_t>(0xD800 + ((scalar - 0x10000) >> 10)));
      units.push_back(static_cast<std::uint16_t>(0xDC00 + (scalar & 0x3FF)));
    }
  }
  return units;
}

// Sizes an array and writes its elements through the raw pointer, as a compiled loop does.
template <class Elements>
void fillArray(void* array, const Elements& elements) {
  vorn_collections_Array_ctor(array, static_cast<long long>(elements.size()));
  if (elements.empty()) return;
  std::memcpy(vorn_collections_Array_rawDataPtr(array), elements.data(), elements.size() * sizeof(elements[0]));
}

// The place of an ASCII letter in the alphabet, or -1.
int letterIndex(std::uint32_t character) {
  if (character >= 'a' && character <= 'z') return static_cast<int>(character - 'a');
  if (character >= 'A' && character <= 'Z') return static_cast<int>(character - 'A');
  return -1;
}

}  // namespace

CharacterArrays::CharacterArrays()
    : bytes(newObject("Array<Byte>")),
      characters(newObject("Array<Char>")),
      codeUnits(newObject("Array<CodeUnit>")),
      letters(newObject("Array<Int>")) {}

void fillArrays(std::string_view text, CharacterArrays& arrays) {
  const std::vector<std::uint32_t> characters = charactersOf(text);
  fillArray(arrays.bytes, text);
  fillArray(arrays.characters, characters);
  fillArray(arrays.codeUnits, codeUnitsOf(characters));
  vorn_collections_Array_ctor(arrays.letters, 'z' - 'a' + 1);
  for (const std::uint32_t character : characters) {
    const int letter = letterIndex(character);
    if (letter < 0) continue;
    vorn_collections_Array_setInt(arrays.letters, letter, vorn_collections_Array_getInt(arrays.letters, letter) + 1);
  }
}

long long lengthAsString(const CharacterArrays& arrays) {
  const vorn::Handle fromCharacters(Vorn_stringFromCharArray(arrays.characters));
  const vorn::Handle fromUnits(Vorn_stringFromCodeUnitArray(arrays.codeUnits));
  if (vorn_equals(fromCharacters, fromUnits) == 0) return -1;
  return static_cast<long long>(std::strlen(vorn_string_text(fromCharacters)));
}

}  // namespace text_statistics
