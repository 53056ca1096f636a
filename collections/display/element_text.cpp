#include "collections/display/element_text.h"

#include <charconv>
#include <cstring>

#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "collections/display/value_display.h"

namespace vorn::collections {

namespace {

// Writes element after element, separated, into room for the longest that they can be.
template <class Write>
void appendSeparated(DisplayBuffer& text, std::uint64_t n, std::size_t longest, std::string_view separator,
                     Write write) {
  for (std::uint64_t i = 0; i < n; ++i) {
    char* at = text.room(longest + separator.size());
    if (i != 0) {
      std::memcpy(at, separator.data(), separator.size());
      at += separator.size();
    }
    text.writtenTo(write(at, i));
  }
}

char* writeText(char* at, std::string_view text) {
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
}

}  // namespace

ElementText elementTextOf(PrimitiveKind kind, RuntimeTypeName typeName) {
  const PrimitiveType type = typeName.primitiveType();
  if (isFloatingKind(kind)) {
    // Values that are declared as a narrower type lose precision in their boxes.
    const bool narrower = isFloatingType(type) && primitiveWidth(kindOf(type)) < primitiveWidth(kind);
    return narrower ? ElementText::Boxed : ElementText::Floating;
  }
  if (kind == PrimitiveKind::Boolean) return ElementText::Boolean;
  if (type == PrimitiveType::ULong) return ElementText::Unsigned;
  // An element without a name is boxed as "Int". Values of the narrower unsigned types are never negative.
  const bool number = isIntegerType(type) && !isCharacterType(type);
  return number || typeName.empty() ? ElementText::Signed : ElementText::Boxed;
}

void appendElements(DisplayBuffer& text, ElementText form, PrimitiveKind kind, const unsigned char* data,
                    std::uint64_t n, std::string_view separator) {
  constexpr std::size_t kInteger = DisplayBuffer::kIntegerText;
  visitKind(kind, [&](auto tag) {
    if constexpr (isFloatingKind(decltype(tag)::kind)) {
      for (std::uint64_t i = 0; i < n; ++i) {
        if (i != 0) text.append(separator);
        text.append(formatVornFloat(readElementF64(tag, data, i)));
      }
    } else if constexpr (decltype(tag)::kind == PrimitiveKind::Boolean) {
      appendSeparated(text, n, 5, separator, [&](char* at, std::uint64_t i) {
        return writeText(at, readElementI64(tag, data, i) != 0 ? "true" : "false");
      });
    } else if (form == ElementText::Unsigned) {
      appendSeparated(text, n, kInteger, separator, [&](char* at, std::uint64_t i) {
        return std::to_chars(at, at + kInteger, static_cast<std::uint64_t>(readElementI64(tag, data, i))).ptr;
      });
    } else {
      appendSeparated(text, n, kInteger, separator, [&](char* at, std::uint64_t i) {
        return std::to_chars(at, at + kInteger, readElementI64(tag, data, i)).ptr;
      });
    }
  });
}

void appendUnboxedElements(DisplayBuffer& text, const ListData& list, std::string_view separator) {
  const ElementText form = elementTextOf(list.primitiveKind, list.elementType);
  if (form != ElementText::Boxed) {
    return appendElements(text, form, list.primitiveKind, list.primitive.data, list.primitive.size, separator);
  }
  RootedHandle box;
  for (std::uint64_t i = 0; i < list.primitive.size; ++i) {
    if (i != 0) text.append(separator);
    box = boxPrimitiveListValue(list.primitiveKind, list.elementType, primitiveListReadI64(list, i),
                                primitiveListReadF64(list, i));
    appendValueDisplay(text, box.get());
  }
}

}  // namespace vorn::collections
