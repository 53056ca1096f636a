#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "collections/core/port/text.h"
#include "collections/core/unicode.h"
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
  constexpr std::uint32_t kReplacement = 0xFFFD;
  const bool isScalar = collections::isUnicodeScalar(static_cast<long long>(scalar));
  char bytes[collections::kLongestUtf8];
  text.append(bytes, collections::encodeUtf8(isScalar ? static_cast<std::uint32_t>(scalar) : kReplacement, bytes));
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
