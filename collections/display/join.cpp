// Joining the texts of a sequence's elements.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/arraylist/object_cursor.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"
#include "collections/display/display_buffer.h"
#include "collections/display/element_text.h"
#include "collections/display/value_display.h"

namespace vc = vorn::collections;
using vc::DisplayBuffer;

namespace {

// Most numbers and texts are short; what is longer makes the buffer grow.
constexpr std::size_t kExpectedNumber = 4;
constexpr std::size_t kExpectedText = 8;

// What stands between elements; a short one is written by two stores, where a copy of any length is a call.
class Separator {
 public:
  explicit Separator(const char* text) : text_(text != nullptr ? text : "") {
    if (isShort()) std::memcpy(start_, text_.data(), text_.size());
  }

  [[nodiscard]] std::string_view text() const { return text_; }

  void appendTo(DisplayBuffer& text) const {
    if (!isShort()) return text.append(text_);
    char* const at = text.room(sizeof(start_));
    std::memcpy(at, start_, sizeof(start_));
    text.writtenTo(at + text_.size());
  }

 private:
  [[nodiscard]] bool isShort() const { return text_.size() <= sizeof(start_); }

  std::string_view text_;  // never one of null, which memcpy must not see even for no bytes
  char start_[16] = {};
};

// Where the first byte of a word that is 0 stands; 8 where there is none. (Mycroft's test: what is above a zero byte
// may be marked falsely, the lowest mark never is.)
std::size_t zeroByteIn(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x0101010101010101U;
  return static_cast<std::size_t>(std::countr_zero((word - kOnes) & ~word & (kOnes << 7))) / 8;
}

// The text of a String ends at its first NUL, wherever that is. Sixteen bytes can be read of each, and most texts end
// among them.
void appendString(DisplayBuffer& text, const StringObject& string) {
  std::uint64_t start[2];
  std::memcpy(start, string.text, sizeof(start));
  const std::size_t first = zeroByteIn(start[0]);
  const std::size_t length = first < 8 ? first : 8 + zeroByteIn(start[1]);
  if (length == sizeof(start)) return text.append(string.text);
  char* const at = text.room(sizeof(start));
  std::memcpy(at, start, sizeof(start));
  text.writtenTo(at + length);
}

// A bare text is joined as it is, where the display form would quote it.
void appendHandle(DisplayBuffer& text, void* handle) {
  if (handle != nullptr && !isObjectPointer(handle)) return text.append(static_cast<const char*>(handle));
  vc::appendLanguageText(text, handle);
}

// Joins what `at(i)` gives for each i below `size()`: the toString of an element may change a collection that has no
// lock, so the size is read for each. A String needs no root, since nothing runs between its being found and copied.
template <class Size, class At, class Append>
void joinElements(DisplayBuffer& text, const Separator& separator, Size size, At at, Append append) {
  vc::RootedHandle element;
  for (std::uint64_t i = 0; i < size(); ++i) {
    if (i != 0) separator.appendTo(text);
    void* const handle = at(i);
    if (isStringObject(handle)) {
      appendString(text, *static_cast<const StringObject*>(handle));
    } else {
      element = handle;
      append(text, handle);
    }
  }
}

void joinHandles(DisplayBuffer& text, ListData& list, const Separator& separator) {
  text.reserve((kExpectedText + separator.text().size()) * list.objectCount());
  vc::ObjectCursor cursor(list);
  joinElements(
      text, separator, [&] { return list.objectCount(); }, [&](std::uint64_t i) { return cursor.at(i); }, appendHandle);
}

// Numbers and Booleans have one text, whichever form asks for it; everything else goes through its object.
void joinSlots(DisplayBuffer& text, const ArrayData& array, const Separator& separator) {
  const auto kind = vc::primitiveKindOf(array.slotKind);
  const vc::ElementText form = vc::elementTextOf(kind, array.elementType.shortForm());
  if (array.isUnboxed() && form != vc::ElementText::Boxed) {
    return vc::appendElements(text, form, kind, array.primitive.data, array.primitive.size, separator.text());
  }
  joinElements(
      text, separator, [&] { return arrayLogicalSize(array); },
      [&](std::uint64_t i) { return arraySlotToObject(array, i); }, vc::appendLanguageText);
}

}  // namespace

void* vorn_collections_ArrayList_join(void* list, const char* separator) {
  if (list == nullptr) return Vorn_allocString({});
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  DisplayBuffer text;
  if (data.isUnboxed()) {
    text.reserve(kExpectedNumber * data.primitive.size);
    vc::appendUnboxedElements(text, data, Separator(separator).text());
  } else {
    joinHandles(text, data, Separator(separator));
  }
  return Vorn_allocString(text.view());
}

void* vorn_collections_Array_join(void* array, const char* separator) {
  if (array == nullptr) return Vorn_allocString({});
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  DisplayBuffer text;
  joinSlots(text, data, Separator(separator));
  return Vorn_allocString(text.view());
}
