// The language's texts, and random bits.
#include <vorn/collections/runtime_helpers.hpp>

#include <charconv>

#include "collections/core/unicode.h"
#include "minimal_runtime.h"

using namespace minimal;

const char* Vorn_objectToString(void* handle) {
  if (handle == nullptr) return nullptr;
  const RuntimeClass& type = *classOf(handle);
  if (type.kind == ObjectKind::String) return stringTextFromPtr(handle).data();
  // Numbers, Booleans and collections look alike wherever they are shown.
  const bool isShown = type.kind <= ObjectKind::BooleanBox || type.kind >= ObjectKind::Tuple;
  const auto text = isShown ? valueToDisplayString(handle) : formatObjectDefault(handle, shortTypeName(type.name));
  return stringTextFromPtr(Vorn_allocString(text)).data();
}
std::string integerLikeToDisplayString(std::string_view shortName, long long value) {
  return shortName == "ULong" ? std::to_string(static_cast<unsigned long long>(value)) : std::to_string(value);
}
std::string formatVornFloat(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  char digits[32];
  const std::string text(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}
std::string escapeDisplayString(std::string_view text) {
  constexpr std::string_view kPlain = "\"\\\b\f\n\r\t";
  constexpr std::string_view kEscaped = R"("\bfnrt)";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (const std::size_t at = kPlain.find(c); at != std::string_view::npos) {
      (escaped += '\\') += kEscaped[at];
    } else if (byte < 0x20) {
      (escaped += byte < 0x10 ? R"(\u000)" : R"(\u001)") += "0123456789abcdef"[byte % 16];
    } else {
      escaped += c;
    }
  }
  return escaped;
}
std::string formatObjectDefault(void* object, std::string_view className) {
  const RegisteredObject& box = *getRegisteredObjectUnsafe(object);
  if (box.kind() != ObjectKind::CharacterBox) return std::string(className);
  char bytes[vc::kLongestUtf8];
  const bool isScalar = vc::isUnicodeScalar(box.integer);
  const auto scalar = isScalar ? static_cast<std::uint32_t>(box.integer) : 0xFFFD;
  return {bytes, vc::encodeUtf8(scalar, bytes)};
}
std::uint64_t nextFastRandomU64() {
  static thread_local std::mt19937_64 generator(std::random_device{}());
  return generator();
}
