// Arrays of characters and code units as text.
#include <vorn/collections/array.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "collections/array/array_data.h"
#include "collections/array/slot_access.h"
#include "collections/core/errors.h"
#include "collections/core/runtime_interface.h"

namespace vc = vorn::collections;

namespace {

char byteOf(std::uint32_t bits) { return static_cast<char>(bits); }

void appendUtf8(std::string& text, std::uint32_t scalar) {
  char bytes[4];
  std::size_t count = 0;
  if (scalar <= 0x7F) {
    bytes[count++] = byteOf(scalar);
  } else if (scalar <= 0x7FF) {
    bytes[count++] = byteOf(0xC0 | scalar >> 6);
    bytes[count++] = byteOf(0x80 | (scalar & 0x3F));
  } else if (scalar <= 0xFFFF) {
    bytes[count++] = byteOf(0xE0 | scalar >> 12);
    bytes[count++] = byteOf(0x80 | (scalar >> 6 & 0x3F));
    bytes[count++] = byteOf(0x80 | (scalar & 0x3F));
  } else {
    bytes[count++] = byteOf(0xF0 | (scalar >> 18 & 0x07));
    bytes[count++] = byteOf(0x80 | (scalar >> 12 & 0x3F));
    bytes[count++] = byteOf(0x80 | (scalar >> 6 & 0x3F));
    bytes[count++] = byteOf(0x80 | (scalar & 0x3F));
  }
  text.append(bytes, count);
}

// Appends the ASCII characters from `at` on, whole blocks at a time, and gives the first position after them that is
// not such a block's. U+0000 does not count as one: it ends a conversion.
template <class Element>
std::uint64_t appendAsciiBlocks(const unsigned char* slots, std::uint64_t at, std::uint64_t size, std::string& text) {
  constexpr std::uint64_t kBlock = 16;
  for (; size - at >= kBlock; at += kBlock) {
    Element units[kBlock];
    std::memcpy(units, slots + at * sizeof(Element), sizeof(units));
    Element refused = 0;
    for (const Element unit : units) refused |= static_cast<Element>(static_cast<Element>(unit - 1) >= 0x7F);
    if (refused != 0) break;
    char bytes[kBlock];
    for (std::uint64_t i = 0; i < kBlock; ++i) bytes[i] = static_cast<char>(units[i]);
    text.append(bytes, kBlock);
  }
  return at;
}

// Blocks of ASCII in the slot kinds that characters and code units have.
std::uint64_t appendAscii(const ArrayData& array, std::uint64_t at, std::string& text) {
  const SmallPrimitiveBuffer& slots = array.primitive;
  if (array.slotKind == ArraySlotKind::UInt32) {
    return appendAsciiBlocks<std::uint32_t>(slots.data, at, slots.size, text);
  }
  if (array.slotKind == ArraySlotKind::UInt16) {
    return appendAsciiBlocks<std::uint16_t>(slots.data, at, slots.size, text);
  }
  return at;
}

// Appends the UTF-8 text of all characters; false after raising.
bool appendCharactersOrRaise(const ArrayData& array, std::string& text) {
  const std::uint64_t size = arrayLogicalSize(array);
  if (size != 0 && hasPendingError()) return false;
  for (std::uint64_t i = 0; i < size; ++i) {
    i = appendAscii(array, i, text);
    if (i == size) break;
    long long value = arrayReadI64(array, i);
    // What the runtime refuses, it shall also name; what is a scalar it gives back as it is.
    if (!vc::isUnicodeScalar(value)) {
      value = Vorn_intToChar(value);
      if (hasPendingError()) return false;
    }
    const auto scalar = static_cast<std::uint32_t>(value);
    if (scalar == 0) {
      vc::errors::raiseNulInString();
      return false;
    }
    appendUtf8(text, scalar);
  }
  return true;
}

constexpr bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::uint32_t unitAt(const ArrayData& array, std::uint64_t index) {
  return static_cast<std::uint32_t>(arrayReadI64(array, index));
}

// A unit that is no surrogate. Beyond 16 bits only the runtime knows whether it has a text.
void appendUnit(std::string& text, std::uint32_t unit) {
  if (unit <= 0xFFFF) return appendUtf8(text, unit);
  if (const char* unitText = Vorn_codeUnitToString(unit)) text += unitText;
}

// The order of the tests decides which error a text with several faults raises.
bool appendUnitsOrRaise(const ArrayData& array, std::string& text) {
  const std::uint64_t size = arrayLogicalSize(array);
  for (std::uint64_t i = 0; i < size; ++i) {
    i = appendAscii(array, i, text);
    if (i == size) break;
    const std::uint32_t unit = unitAt(array, i);
    if (unit == 0) {
      vc::errors::raiseNulInString();
      return false;
    }
    if (isHighSurrogate(unit)) {
      ++i;
      const std::uint32_t low = i < size ? unitAt(array, i) : 0;
      if (!isLowSurrogate(low)) {
        vc::errors::raiseUnpairedHighSurrogate();
        return false;
      }
      appendUtf8(text, (unit - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000);
    } else if (isLowSurrogate(unit)) {
      vc::errors::raiseUnpairedLowSurrogate();
      return false;
    } else {
      appendUnit(text, unit);
    }
  }
  return true;
}

// The frame of both natives: the empty string for null and after an error.
template <bool (*kAppendOrRaise)(const ArrayData&, std::string&)>
void* stringFrom(void* array) {
  if (array == nullptr) return Vorn_allocString({});
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  std::string text;
  text.reserve(arrayLogicalSize(data));
  if (!kAppendOrRaise(data, text)) text.clear();
  return Vorn_allocString(text);
}

}  // namespace

void* Vorn_stringFromCharArray(void* array) { return stringFrom<appendCharactersOrRaise>(array); }

void* Vorn_stringFromCodeUnitArray(void* array) { return stringFrom<appendUnitsOrRaise>(array); }
