// The embedding API: Strings and bare texts.
#include <vorn/runtime.h>

#include <cstring>
#include <string_view>

#include "collections/core/port/values.h"
#include "runtime/embedding/made_or_null.h"
#include "runtime/text/text.h"

using vorn::runtime::madeOrNull;

extern "C" {

void* vorn_string_new(const char* text, size_t length) {
  if (text == nullptr) return nullptr;
  return madeOrNull([&] { return Vorn_allocString({text, length == SIZE_MAX ? std::strlen(text) : length}); });
}

void* vorn_text_new(const char* text) {
  if (text == nullptr) return nullptr;
  return madeOrNull([&] { return vorn::runtime::newText(text); });
}

const char* vorn_string_text(void* handle) {
  std::string_view text;
  return vorn::runtime::readText(handle, text) ? text.data() : nullptr;
}
}
