// The language's texts, and random bits.
#include "collections/core/port/text.h"

#include <vorn/collections/runtime_helpers.hpp>

#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <random>

#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/core/unicode.h"
#include "minimal_runtime.h"

const char* Vorn_objectToString(void* handle) {
  if (handle == nullptr) return nullptr;
  const RuntimeClass& type = *minimal::classOf(handle);
  if (type.kind == ObjectKind::String) return stringTextFromPtr(handle).data();
  // Numbers, Booleans and collections look alike wherever they are shown.
  const bool isShown = type.kind <= ObjectKind::BooleanBox || type.kind >= ObjectKind::Tuple;
  const std::string text =
      isShown ? valueToDisplayString(handle) : formatObjectDefault(handle, shortTypeName(type.name));
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
  constexpr std::string_view kEscaped = "\"\\bfnrt";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (const std::size_t at = kPlain.find(c); at != std::string_view::npos) {
      (escaped += '\\') += kEscaped[at];
    } else if (byte < 0x20) {
      (escaped += byte < 0x10 ? "\\u000" : "\\u001") += "0123456789abcdef"[byte % 16];
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string formatObjectDefault(void* object, std::string_view className) {
  const RegisteredObject& box = *getRegisteredObjectUnsafe(object);
  if (box.kind() != ObjectKind::CharacterBox) return std::string(className);
  char bytes[vorn::collections::kLongestUtf8];
  const bool isScalar = vorn::collections::isUnicodeScalar(box.integer);
  const auto scalar = isScalar ? static_cast<std::uint32_t>(box.integer) : 0xFFFD;
  return {bytes, vorn::collections::encodeUtf8(scalar, bytes)};
}

// splitmix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number generators", 2014), whose state only counts, so
// that threads share it without a lock.
std::uint64_t nextFastRandomU64() {
  static std::atomic<std::uint64_t> state = std::random_device()();
  std::uint64_t bits = state.fetch_add(0x9E3779B97F4A7C15, std::memory_order_relaxed);
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
  return bits ^ (bits >> 31);
}
