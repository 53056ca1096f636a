// Arrays of characters and code units as text.
#include <vorn/collections/array.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "collections/array/array_data.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/ascii_block.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/values.h"
#include "collections/core/scratch.h"
#include "collections/core/unicode.h"

namespace vc = vorn::collections;

namespace {

// What a step answers after raising instead of the next position.
constexpr std::uint64_t kRaised = ~std::uint64_t{0};

// Slots of one kind as numbers. Characters and code units have theirs in kinds whose ASCII is taken in blocks.
template <class Element>
struct TypedSlots {
  static constexpr bool kMayBeAscii = true;
  const unsigned char* data;

  [[nodiscard]] long long at(std::uint64_t index) const { return vc::loadElement<Element>(data, index); }

  // Writes the sixteen slots from `index` on as far as they are ASCII, and gives how many that are. U+0000 does not
  // count: it ends a conversion.
  std::uint64_t copyAscii(std::uint64_t index, char* bytes) const {
    return vc::copyAscii<Element>(data + index * sizeof(Element), bytes);
  }
};

struct AnySlots {
  static constexpr bool kMayBeAscii = false;
  const ArrayData& array;

  [[nodiscard]] long long at(std::uint64_t index) const { return arrayReadI64(array, index); }
};

// Gathers UTF-8 in room for the longest text that so many slots can have, so that no step looks for room, and nothing
// that was written moves.
class Utf8Writer {
 public:
  explicit Utf8Writer(std::uint64_t slots) : bytes_(slots * vc::kLongestUtf8), end_(bytes_.data()) {}
  Utf8Writer(const Utf8Writer&) = delete;
  Utf8Writer& operator=(const Utf8Writer&) = delete;

  void put(std::uint32_t scalar) { end_ = vc::encodeUtf8(scalar, end_); }

  // A text of any length, which does not count for the room: what is there goes out of its way.
  void put(const char* text) {
    flush();
    before_ += text;
  }

  // Takes over the ASCII with which a block begins, and gives how much that was.
  template <class Slots>
  std::uint64_t putAscii(const Slots& slots, std::uint64_t index) {
    const std::uint64_t taken = slots.copyAscii(index, end_);
    end_ += taken;
    return taken;
  }

  // All that was written.
  std::string_view text() {
    if (before_.empty()) return written();
    flush();
    return before_;
  }

 private:
  [[nodiscard]] std::string_view written() { return {bytes_.data(), static_cast<std::size_t>(end_ - bytes_.data())}; }
  void flush() {
    before_ += written();
    end_ = bytes_.data();
  }

  static constexpr std::size_t kFewBytes = 1024;

  std::string before_;  // what stands before the bytes
  vc::Scratch<char, kFewBytes> bytes_;
  char* end_;  // of what is used of them
};

// Calls put(position), which gives the position after what it took, or nothing after raising, for every slot that is
// not in a block of ASCII. False after raising.
template <class Slots, class Put>
bool writeSlots(const Slots& slots, std::uint64_t size, Utf8Writer& writer, Put put) {
  for (std::uint64_t at = 0; at < size;) {
    if constexpr (Slots::kMayBeAscii) {
      if (size - at >= vc::kAsciiBlock) {
        const std::uint64_t taken = writer.putAscii(slots, at);
        at += taken;
        if (taken == vc::kAsciiBlock) continue;
      }
    }
    // Other scripts come in runs, which no block is tried within.
    do {
      const std::uint64_t next = put(at);
      if (next == kRaised) return false;
      at = next;
    } while (at < size && slots.at(at) >= 0x80);
  }
  return true;
}

struct CharacterText {
  template <class Slots>
  static bool writeOrRaise(const Slots& slots, std::uint64_t size, Utf8Writer& writer) {
    if (size != 0 && hasPendingError()) return false;
    return writeSlots(slots, size, writer, [&](std::uint64_t at) {
      long long value = slots.at(at);
      // What the runtime refuses, it shall also name; what is a scalar it gives back as it is.
      if (!vc::isUnicodeScalar(value)) [[unlikely]] {
        value = Vorn_intToChar(value);
        if (hasPendingError()) return kRaised;
      }
      const auto scalar = static_cast<std::uint32_t>(value);
      if (scalar == 0) [[unlikely]] {
        vc::errors::raiseNulInString();
        return kRaised;
      }
      writer.put(scalar);
      return at + 1;
    });
  }
};

struct CodeUnitText {
  // The order of the tests decides which error a text with several faults raises.
  template <class Slots>
  static bool writeOrRaise(const Slots& slots, std::uint64_t size, Utf8Writer& writer) {
    const auto unitAt = [&](std::uint64_t at) { return static_cast<std::uint32_t>(slots.at(at)); };
    return writeSlots(slots, size, writer, [&](std::uint64_t at) {
      const std::uint32_t unit = unitAt(at);
      if (unit == 0) [[unlikely]] {
        vc::errors::raiseNulInString();
        return kRaised;
      }
      if (vc::isHighSurrogate(unit)) {
        const std::uint32_t low = at + 1 < size ? unitAt(at + 1) : 0;
        if (!vc::isLowSurrogate(low)) [[unlikely]] {
          vc::errors::raiseUnpairedHighSurrogate();
          return kRaised;
        }
        writer.put((unit - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000);
        return at + 2;
      }
      if (vc::isLowSurrogate(unit)) [[unlikely]] {
        vc::errors::raiseUnpairedLowSurrogate();
        return kRaised;
      }
      putUnit(unit, writer);
      return at + 1;
    });
  }

 private:
  // A unit that is no surrogate. Beyond 16 bits only the runtime knows whether it has a text.
  static void putUnit(std::uint32_t unit, Utf8Writer& writer) {
    if (vc::isCodeUnit(unit)) [[likely]]
      return writer.put(unit);
    if (const char* unitText = Vorn_codeUnitToString(unit)) writer.put(unitText);
  }
};

// Writes the text of all slots; false after raising.
template <class Text>
bool writeOrRaise(const ArrayData& array, std::uint64_t size, Utf8Writer& writer) {
  const unsigned char* slots = array.primitive.data;
  if (array.slotKind == ArraySlotKind::UInt32) {
    return Text::writeOrRaise(TypedSlots<std::uint32_t>{slots}, size, writer);
  }
  if (array.slotKind == ArraySlotKind::UInt16) {
    return Text::writeOrRaise(TypedSlots<std::uint16_t>{slots}, size, writer);
  }
  return Text::writeOrRaise(AnySlots{array}, size, writer);
}

// The frame of both natives: the empty string for null and after an error.
template <class Text>
void* stringFrom(void* array) {
  if (array == nullptr) return Vorn_allocString({});
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const std::uint64_t size = arrayLogicalSize(data);
  Utf8Writer writer(size);
  return Vorn_allocString(writeOrRaise<Text>(data, size, writer) ? writer.text() : std::string_view());
}

}  // namespace

void* Vorn_stringFromCharArray(void* array) { return stringFrom<CharacterText>(array); }

void* Vorn_stringFromCodeUnitArray(void* array) { return stringFrom<CodeUnitText>(array); }
