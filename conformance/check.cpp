#include "conformance/check.h"

#include <charconv>
#include <cmath>

namespace vorn::conformance {

const Adapter& adapter() {
  static const Adapter theAdapter = adapterOfRuntime();
  return theAdapter;
}

std::string shown(bool value) { return value ? "true" : "false"; }

std::string shown(long long value) { return std::to_string(value); }

std::string shown(double value) {
  if (std::isnan(value)) return "NaN";
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

std::string printable(std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string printed;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F) {
      printed += c;
    } else {
      printed += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return printed;
}

std::string shown(std::string_view value) { return "'" + printable(value) + "'"; }

std::string shown(const void* value) {
  if (value == nullptr) return "null";
  char digits[32];
  return "handle 0x" +
         std::string(digits,
                     std::to_chars(digits, digits + sizeof(digits), reinterpret_cast<std::uintptr_t>(value), 16).ptr);
}

std::string shown(const std::vector<std::string>& values) {
  std::string text;
  for (const std::string& value : values) text += (text.empty() ? "" : ", ") + shown(value);
  return "[" + text + "]";
}

void expectTrue(std::string_view what, bool value) { expect(what, value, true); }

}  // namespace vorn::conformance
