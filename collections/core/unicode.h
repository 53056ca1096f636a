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

// Writes a scalar as UTF-8 to where there is room for the longest form, and gives the number of bytes. A surrogate,
// which is no scalar, comes out in three bytes as its neighbours do.
constexpr std::size_t encodeUtf8(std::uint32_t scalar, char* bytes) {
  const auto following = [scalar](int shift) { return static_cast<char>(0x80 | (scalar >> shift & 0x3F)); };
  if (scalar <= 0x7F) {
    bytes[0] = static_cast<char>(scalar);
    return 1;
  }
  if (scalar <= 0x7FF) {
    bytes[0] = static_cast<char>(0xC0 | scalar >> 6);
    bytes[1] = following(0);
    return 2;
  }
  if (scalar <= 0xFFFF) {
    bytes[0] = static_cast<char>(0xE0 | scalar >> 12);
    bytes[1] = following(6);
    bytes[2] = following(0);
    return 3;
  }
  bytes[0] = static_cast<char>(0xF0 | (scalar >> 18 & 0x07));
  bytes[1] = following(12);
  bytes[2] = following(6);
  bytes[3] = following(0);
  return 4;
}

}  // namespace vorn::collections
