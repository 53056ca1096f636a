// A text that elements are searched for. What listValuesEqual says of it and a String object is told here without its
// calls, since a search asks once for every element; everything else is left to listValuesEqual.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "collections/core/port/object_layout.h"

namespace vorn::collections {

class TextNeedle {
 public:
  // Of a String object or a bare text; for any other value nothing is known of any element.
  explicit TextNeedle(const void* value) {
    if (value == nullptr) return;
    if (!isObjectPointer(value)) {
      text_ = static_cast<const char*>(value);
    } else if (isStringObject(value)) {
      text_ = static_cast<const StringObject*>(value)->text;
    } else {
      return;
    }
    // Texts are equal up to their first NUL, which is compared as well: what is longer has another byte there.
    bytes_ = std::strlen(text_) + 1;
    unsigned char start[kStart] = {};
    unsigned char compared[kStart] = {};
    const std::size_t count = bytes_ < kStart ? bytes_ : kStart;
    std::memcpy(start, text_, count);
    std::memset(compared, 0xFF, count);
    start_ = wordsAt(start);
    compared_ = wordsAt(compared);
  }

  [[nodiscard]] bool isText() const { return text_ != nullptr; }

  // Whether the needle, a text, equals a String object. Runs no user code.
  [[nodiscard]] bool equals(const void* string) const {
    const auto& other = *static_cast<const StringObject*>(string);
    const Words words = wordsAt(other.text);
    const std::uint64_t differences =
        ((words.first ^ start_.first) & compared_.first) | ((words.second ^ start_.second) & compared_.second);
    if (differences != 0) return false;
    return bytes_ <= kStart || (other.length + 1 >= bytes_ && std::memcmp(other.text, text_, bytes_) == 0);
  }

  // Whether an element is null or a String object with another text. Of all others only listValuesEqual knows.
  [[nodiscard]] bool differsFrom(const void* element) const {
    if (!isText()) return false;
    return isStringObject(element) ? !equals(element) : element == nullptr;
  }

  // The first position in [from, end) whose handle does not surely differ; `end`, or what is beyond it, when there is
  // none.
  std::uint64_t firstCandidate(void* const* handles, std::uint64_t from, std::uint64_t end) const {
    if (!isText()) return from;
    while (from < end && differsFrom(handles[from])) ++from;
    return from;
  }

  // The end of what is left in [0, end) after all handles at its end that surely differ.
  std::uint64_t candidatesEnd(void* const* handles, std::uint64_t end) const {
    if (!isText()) return end;
    while (end > 0 && differsFrom(handles[end - 1])) --end;
    return end;
  }

 private:
  // As much of every String's text as may be read.
  static constexpr std::size_t kStart = 16;
  struct Words {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
  };
  static Words wordsAt(const void* bytes) {
    Words words;
    static_assert(sizeof(words) == kStart);
    std::memcpy(&words, bytes, sizeof(words));
    return words;
  }

  const char* text_ = nullptr;
  std::size_t bytes_ = 0;  // of the text and its NUL
  Words start_;            // its first bytes
  Words compared_;         // all bits of those that belong to it
};

}  // namespace vorn::collections
