// What fixed arrays ask about values: slot kinds, unboxing into slots, characters.
#include <array>
#include <string_view>

#include "collections/core/array_slot_kind.h"
#include "collections/core/errors.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "collections/core/unicode.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/values/scalars.h"

namespace {

// The box behind a value, when its kind is that one.
const RegisteredObject* boxOfKind(const void* value, ObjectKind kind) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(value);
  return box != nullptr && box->kind() == kind ? box : nullptr;
}

// The UTF-8 texts of all code units. They are to live as long as the process, so all 65,536 stand in one table, which
// is written when the first one is asked for.
class CodeUnitTexts {
 public:
  static constexpr std::size_t kUnits = 0x10000;

  CodeUnitTexts() {
    for (std::uint32_t unit = 0; unit < kUnits; ++unit) vorn::collections::encodeUtf8(unit, texts_[unit].data());
  }
  [[nodiscard]] const char* at(std::size_t unit) const { return texts_[unit].data(); }

 private:
  using Text = std::array<char, vorn::collections::kLongestUtf8>;  // up to three bytes and the NUL

  std::array<Text, kUnits> texts_{};
};

}  // namespace

ArraySlotKind slotKindForArrayElementType(std::string_view typeName) {
  return vorn::collections::slotKindOf(vorn::collections::kindOf(vorn::collections::languageTypeNamed(typeName)));
}

bool extractArrayElementInteger(void* value, long long& integer) {
  const RegisteredObject* box = boxOfKind(value, ObjectKind::IntegerBox);
  if (box == nullptr) return false;
  integer = box->integer;
  return true;
}

bool extractArrayElementDouble(void* value, double& floating) {
  NativeNumericValue number{};
  if (!tryReadNativeNumericValue(value, number)) return false;
  floating = Vorn_getField_double(value, "_value");
  return true;
}

bool extractArrayElementBool(void* value, bool& truth) {
  const RegisteredObject* box = boxOfKind(value, ObjectKind::BooleanBox);
  if (box == nullptr) return false;
  truth = box->integer != 0;
  return true;
}

extern "C" long long Vorn_intToChar(long long value) {
  if (vorn::collections::isUnicodeScalar(value)) return value;
  vorn::collections::errors::raiseCharNotScalar();
  return 0;
}

extern "C" long long Vorn_intToCodeUnit(long long value) {
  if (vorn::collections::isCodeUnit(value)) return value;
  vorn::collections::errors::raiseCodeUnitOutOfRange();
  return 0;
}

extern "C" const char* Vorn_codeUnitToString(long long unit) {
  static const CodeUnitTexts texts;
  if (!vorn::collections::isCodeUnit(unit)) return nullptr;
  return texts.at(static_cast<std::size_t>(unit));
}
