#include <algorithm>
#include <cstring>

#include "collections/core/port/collection_key.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "collections/core/port/values.h"
#include "runtime/heap/heap.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/text/text.h"

namespace vorn::runtime {

char* newText(std::string_view text) {
  constexpr std::size_t kPadded = NativeCollectionKey::kShortText;
  auto* block = static_cast<char*>(allocateAtomic(std::max(text.size() + 1, kPadded)));
  std::memset(block, 0, kPadded);
  if (!text.empty()) std::memcpy(block, text.data(), text.size());
  block[text.size()] = '\0';
  return block;
}

bool readText(const void* handle, std::string_view& text) {
  if (handle == nullptr) return false;
  if (!hasObjectMagic(handle)) {
    text = static_cast<const char*>(handle);
    return true;
  }
  const auto* object = static_cast<const ObjectRecord*>(handle);
  if (object->kind() != ObjectKind::String) return false;
  const auto* string = static_cast<const StringObject*>(object);
  text = {string->text, string->length};
  return true;
}

}  // namespace vorn::runtime

void* Vorn_allocString(std::string_view text) {
  using namespace vorn::runtime;
  char* const block = newText(text);
  const vorn::collections::RootedHandle rooted(block);
  auto* string = static_cast<StringObject*>(allocateScanned(sizeof(StringObject)));
  string->header = objectHeaderFor(string, ObjectKind::String);
  string->runtimeClass = &builtinClass(BuiltinClass::String);
  string->nativeRecord = nullptr;
  string->text = block;
  string->length = text.size();
  return string;
}

std::string stringValueFromPtr(void* handle) { return std::string(stringTextFromPtr(handle)); }

std::string_view stringTextFromPtr(void* handle) {
  std::string_view text;
  return vorn::runtime::readText(handle, text) ? text : std::string_view();
}

extern "C" int Vorn_strEquals(const char* left, const char* right) {
  if (left == right) return 1;
  if (left == nullptr || right == nullptr) return 0;
  return std::strcmp(left, right) == 0 ? 1 : 0;
}

std::string escapeDisplayString(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '"':
        escaped += "\\\"";
        break;
      case '\\':
        escaped += "\\\\";
        break;
      case '\b':
        escaped += "\\b";
        break;
      case '\f':
        escaped += "\\f";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\t':
        escaped += "\\t";
        break;
      default:
        if (byte >= 0x20) {
          escaped += c;
        } else {
          escaped += {'\\', 'u', '0', '0', kHex[byte >> 4], kHex[byte & 15]};
        }
    }
  }
  return escaped;
}
