#include "collections/core/elements/element_types.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "collections/core/kinds.h"
#include "collections/core/port/type_names.h"

namespace vorn::collections {

namespace {

constexpr std::string_view kLanguageModule = "vorn.";

using ElementTypes = std::remove_const_t<decltype(elementTypes)>;

consteval ElementTypes makeElementTypes() {
  ElementTypes types{};
  types[0] = {PrimitiveKind::None, "Object"};
  for (std::size_t i = 1; i < kPrimitiveTypes; ++i)
    types[i] = {kPrimitiveTypeInfos[i].kind, kPrimitiveTypeInfos[i].name};
  return types;
}

constexpr ElementTypes kElementTypes = makeElementTypes();

constexpr std::size_t kShortestName = 3;
constexpr std::size_t kLongestName = 8;

// A slot index from a name's length, first and third byte: all that tells these names apart, so that a lookup
// is one multiplication and one comparison. It stands on the path of every boxed store.
constexpr std::size_t kSlots = 64;
constexpr std::size_t slotOf(std::string_view name, std::uint32_t multiplier) {
  const std::uint32_t mixed = static_cast<std::uint32_t>(name.size()) | static_cast<std::uint32_t>(name[0]) << 8 |
                              static_cast<std::uint32_t>(name[2]) << 16;
  return (mixed * multiplier) >> 26;
}

struct NameTable {
  std::uint32_t multiplier = 0;
  std::array<ElementType, kSlots> slots{};
};

// Finds a multiplier that gives every name a slot of its own; failing to find one fails to compile.
consteval NameTable makeNameTable() {
  for (std::uint32_t multiplier = 0x9E3779B1U;; multiplier += 2) {
    NameTable table{multiplier, {}};
    bool distinct = true;
    for (const ElementType& row : kElementTypes) {
      ElementType& slot = table.slots[slotOf(row.name, multiplier)];
      distinct = distinct && slot.name.empty();
      slot = row;
    }
    if (distinct) return table;
  }
}

constexpr NameTable kNameTable = makeNameTable();

const ElementType* findElementType(std::string_view name) {
  if (name.size() < kShortestName || name.size() > kLongestName) return nullptr;
  const ElementType& slot = kNameTable.slots[slotOf(name, kNameTable.multiplier)];
  return sameName(slot.name, name) ? &slot : nullptr;
}

bool skipModule(std::string_view& name) {
  if (!name.starts_with(kLanguageModule)) return false;
  name.remove_prefix(kLanguageModule.size());
  return true;
}

bool isOneOf(const char* name, std::initializer_list<std::string_view> names) {
  if (name == nullptr) return false;
  std::string_view view(name);
  skipModule(view);
  for (const std::string_view candidate : names) {
    if (view == candidate) return true;
  }
  return false;
}

}  // namespace

constinit const ElementTypes elementTypes = kElementTypes;

ElementType normalizedElementType(std::string_view typeName) {
  std::string_view shortName = typeName;
  const ElementType* row = findElementType(shortName);
  if (row == nullptr && skipModule(shortName)) row = findElementType(shortName);
  if (row != nullptr) return *row;
  const std::string_view normalized = normalizePrimitiveTypeName(typeName);
  return {primitiveKindForType(normalized), normalized};
}

ElementType declaredElementType(const ListData& list) {
  if (list.elementType.text == nullptr) return {PrimitiveKind::None, "Object"};
  return normalizedElementType(*list.elementType.text);
}

}  // namespace vorn::collections

using namespace vorn::collections;

PrimitiveKind primitiveKindForType(std::string_view name) {
  const ElementType* row = findElementType(name);
  return row != nullptr ? row->kind : PrimitiveKind::None;
}

std::string_view normalizePrimitiveTypeName(std::string_view name) {
  const std::string_view shortName = shortTypeNameLocal(name);
  if (shortName == "vorn.Int") return "Int";
  return shortName.empty() ? std::string_view("Object") : shortName;
}

bool isIntLikeListType(const char* name) {
  return isOneOf(name, {"Boolean", "Int", "UInt", "Long", "ULong", "Short", "UShort", "Byte", "SByte"});
}

bool isFloatLikeListType(const char* name) { return isOneOf(name, {"Double", "Float"}); }
