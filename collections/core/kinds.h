// The primitive kinds, from their table: enumerations, widths, families, names and typed dispatch. The ground that
// records, kernels and the runtime's contract stand on; it includes nothing of theirs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorn::collections {

// How unboxed elements are kept. None stands for handles.
enum class PrimitiveKind : std::uint8_t {
  None = 0,
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) enumerator = value,
#include "collections/core/kinds.def"
};

// What a primitive value is: the kinds under their own numbers, then the character types, which share a kind with
// numbers and are no numbers. None stands for every other type.
enum class PrimitiveType : std::uint8_t {
  None = 0,
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) enumerator = value,
#define VORN_CHARACTER_TYPE(name, kind) name,
#include "collections/core/kinds.def"
};

enum class KindFamily : std::uint8_t { None, Integer, Floating, Boolean };

inline constexpr std::size_t kPrimitiveKinds = 1  // None
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) +1
#include "collections/core/kinds.def"
    ;
inline constexpr std::size_t kPrimitiveTypes = kPrimitiveKinds
#define VORN_CHARACTER_TYPE(name, kind) +1
#include "collections/core/kinds.def"
    ;

// What is known of a primitive type.
struct PrimitiveTypeInfo {
  PrimitiveKind kind = PrimitiveKind::None;
  KindFamily family = KindFamily::None;  // of the kind
  std::uint8_t width = 1;                // of an element in bytes
  bool isCharacter = false;
  std::string_view name;
};

// Indexed by PrimitiveType; since the kinds come first and under their own numbers, by PrimitiveKind as well.
inline constexpr std::array<PrimitiveTypeInfo, kPrimitiveTypes> kPrimitiveTypeInfos = [] {
  std::array<PrimitiveTypeInfo, kPrimitiveTypes> infos{};
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  static_assert(sizeof(type) == (width));                                 \
  infos[value] = {PrimitiveKind::enumerator, KindFamily::family, width, false, #enumerator};
#define VORN_CHARACTER_TYPE(typeName, keptAs)                                                                        \
  infos[static_cast<std::size_t>(PrimitiveType::typeName)] = infos[static_cast<std::size_t>(PrimitiveKind::keptAs)]; \
  infos[static_cast<std::size_t>(PrimitiveType::typeName)].isCharacter = true;                                       \
  infos[static_cast<std::size_t>(PrimitiveType::typeName)].name = #typeName;
#include "collections/core/kinds.def"
  return infos;
}();

constexpr const PrimitiveTypeInfo& infoOf(PrimitiveType type) {
  return kPrimitiveTypeInfos[static_cast<std::size_t>(type)];
}

// The information of None for a value that is no kind.
constexpr const PrimitiveTypeInfo& infoOf(PrimitiveKind kind) {
  const auto value = static_cast<std::size_t>(kind);
  return kPrimitiveTypeInfos[value < kPrimitiveKinds ? value : 0];
}

constexpr PrimitiveKind kindOf(PrimitiveType type) { return infoOf(type).kind; }

// The type whose elements a kind keeps when no character type is named.
constexpr PrimitiveType plainTypeOf(PrimitiveKind kind) { return static_cast<PrimitiveType>(kind); }

// Element width of a kind; 1 for None and unknown values.
constexpr std::uint64_t primitiveWidth(PrimitiveKind kind) { return infoOf(kind).width; }

constexpr bool isIntegerKind(PrimitiveKind kind) { return infoOf(kind).family == KindFamily::Integer; }
constexpr bool isFloatingKind(PrimitiveKind kind) { return infoOf(kind).family == KindFamily::Floating; }
// Whether the type's kind is one.
constexpr bool isIntegerType(PrimitiveType type) { return infoOf(type).family == KindFamily::Integer; }
constexpr bool isFloatingType(PrimitiveType type) { return infoOf(type).family == KindFamily::Floating; }
constexpr bool isCharacterType(PrimitiveType type) { return infoOf(type).isCharacter; }

// A name of at most eight bytes as one word. Leading NULs do not show in it.
constexpr std::uint64_t nameWord(std::string_view name) {
  std::uint64_t word = 0;
  for (const char byte : name) word = word << 8 | static_cast<unsigned char>(byte);
  return word;
}

// The names as words, indexed by PrimitiveType.
inline constexpr std::array<std::uint64_t, kPrimitiveTypes> kPrimitiveTypeWords = [] {
  std::array<std::uint64_t, kPrimitiveTypes> words{};
  for (std::size_t i = 1; i < kPrimitiveTypes; ++i) words[i] = nameWord(kPrimitiveTypeInfos[i].name);
  return words;
}();

// The type of a normalised name: exact and case-sensitive; None for every other name. For names that come as text; an
// interned one knows its type.
constexpr PrimitiveType primitiveTypeNamed(std::string_view name) {
  if (name.size() > sizeof(std::uint64_t)) return PrimitiveType::None;
  const std::uint64_t word = nameWord(name);
  for (std::size_t i = 1; i < kPrimitiveTypes; ++i) {
    if (kPrimitiveTypeWords[i] != word) continue;
    return kPrimitiveTypeInfos[i].name.size() == name.size() ? static_cast<PrimitiveType>(i) : PrimitiveType::None;
  }
  return PrimitiveType::None;
}

// The primitive type of a name with or without the language's module; None for every other name.
constexpr PrimitiveType languageTypeNamed(std::string_view name) {
  constexpr std::string_view kModule = "vorn.";
  return primitiveTypeNamed(name.starts_with(kModule) ? name.substr(kModule.size()) : name);
}

// What a visitor of visitKind receives: the kind and its element type.
template <PrimitiveKind kKind, class ElementType>
struct KindTag {
  static constexpr PrimitiveKind kind = kKind;
  using Element = ElementType;
};

// Calls visitor(KindTag<...>{}) for a kind other than None; gives `otherwise` for None or an unknown value. Visits are
// never nested: two kinds at once meet as raw value pairs or, when equal, as bytes.
template <class Visitor, class Result>
inline Result visitKind(PrimitiveKind kind, Visitor&& visitor, Result otherwise) {
  switch (kind) {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  case PrimitiveKind::enumerator:                                         \
    return static_cast<Result>(visitor(KindTag<PrimitiveKind::enumerator, type>{}));
#include "collections/core/kinds.def"
    case PrimitiveKind::None:
      break;
  }
  return otherwise;
}

// The same for visitors that return nothing.
template <class Visitor>
inline void visitKind(PrimitiveKind kind, Visitor&& visitor) {
  visitKind(
      kind,
      [&](auto tag) {
        visitor(tag);
        return true;
      },
      false);
}

// Calls visitor with an unsigned integer of the width (1, 2, 4 or 8), for work that only moves bits.
template <class Visitor>
inline void visitWidth(std::uint64_t width, Visitor&& visitor) {
  switch (width) {
    case 1:
      return visitor(std::uint8_t{});
    case 2:
      return visitor(std::uint16_t{});
    case 4:
      return visitor(std::uint32_t{});
    case 8:
      return visitor(std::uint64_t{});
    default:
      return;
  }
}

}  // namespace vorn::collections
