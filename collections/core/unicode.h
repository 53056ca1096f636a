// Scalars, code units and their UTF-8, as the library and the runtime share them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorn::collections {

constexpr bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Whether a number is a Unicode scalar: at most U+10FFFF and no surrogate.
constexpr bool isUnicodeScalar(long long value) {
  const auto bits = static_cast<unsigned long long>(value);
  return bits <= 0x10FFFF && (bits < 0xD800 || bits > 0xDFFF);
}

// Whether a number is a UTF-16 code unit, surrogates included.
constexpr bool isCodeUnit(long long value) { return static_cast<unsigned long long>(value) <= 0xFFFF; }

inline constexpr std::size_t kLongestUtf8 = 4;

// Writes a scalar as UTF-8 to where there is room for the longest form, and gives the end of what it wrote. A surrogate,
// which is no scalar, comes out in three bytes as its neighbours do.
constexpr char* encodeUtf8(std::uint32_t scalar, char* at) {
  const auto put = [&at](std::uint32_t byte) { *at++ = static_cast<char>(byte); };
  if (scalar <= 0x7F) {
    put(scalar);
  } else if (scalar <= 0x7FF) {
    put(0xC0 | scalar >> 6);
    put(0x80 | (scalar & 0x3F));
  } else if (scalar <= 0xFFFF) {
    put(0xE0 | scalar >> 12);
    put(0x80 | (scalar >> 6 & 0x3F));
    put(0x80 | (scalar & 0x3F));
  } else {
    put(0xF0 | (scalar >> 18 & 0x07));
    put(0x80 | (scalar >> 12 & 0x3F));
    put(0x80 | (scalar >> 6 & 0x3F));
    put(0x80 | (scalar & 0x3F));
  }
  return at;
}

}  // namespace vorn::collections
