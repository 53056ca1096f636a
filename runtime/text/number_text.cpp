#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "collections/core/port/text.h"
#include "runtime/text/text.h"

namespace vorn::runtime {

void appendFloating(std::string& text, double value) {
  if (std::isnan(value)) {
    text += "NaN";
    return;
  }
  if (std::isinf(value)) {
    text += value < 0 ? "-Infinity" : "Infinity";
    return;
  }
  char digits[32];  // the longest shortest form has 24 characters
  const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
  const std::string_view shortest(digits, static_cast<std::size_t>(end - digits));
  text += shortest;
  if (shortest.find_first_of(".e") == std::string_view::npos) text += ".0";
}

void appendScalarValue(std::string& text, std::uint64_t scalar) {
  const bool isScalar = scalar <= 0x10FFFF && (scalar < 0xD800 || scalar > 0xDFFF);
  const auto value = static_cast<std::uint32_t>(isScalar ? scalar : 0xFFFD);
  const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  const auto appendTail = [&](int shift) { append(0x80 | ((value >> shift) & 0x3F)); };
  if (value < 0x80) {
    append(value);
  } else if (value < 0x800) {
    append(0xC0 | (value >> 6));
    appendTail(0);
  } else if (value < 0x10000) {
    append(0xE0 | (value >> 12));
    appendTail(6);
    appendTail(0);
  } else {
    append(0xF0 | (value >> 18));
    appendTail(12);
    appendTail(6);
    appendTail(0);
  }
}

}  // namespace vorn::runtime

std::string formatVornFloat(double value) {
  std::string text;
  vorn::runtime::appendFloating(text, value);
  return text;
}

std::string integerLikeToDisplayString(std::string_view shortName, long long value) {
  return shortName == "ULong" ? std::to_string(static_cast<unsigned long long>(value)) : std::to_string(value);
}
