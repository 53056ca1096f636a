// Boxes, Strings, characters, and the slots of arrays.
#include "collections/core/errors.h"
#include "collections/core/unicode.h"
#include "minimal_runtime.h"

using namespace minimal;
using vc::PrimitiveType;

namespace {
RegisteredObject* newBox(PrimitiveType type, std::int64_t bits) {
  auto* box = make<RegisteredObject>(findClass(vc::infoOf(type).name));
  box->integer = bits;
  return box;
}

// The library reads whole words of a text, so sixteen bytes are there, zero behind the text.
char* newText(std::string_view text) {
  auto* copy = static_cast<char*>(take(text.size() + 16));
  if (copy == nullptr) throw std::bad_alloc();
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  return copy;
}

template <class Value>
bool readBox(void* handle, ObjectKind kind, Value& value) {
  const auto* box = as<RegisteredObject>(handle, kind);
  if (box != nullptr) value = static_cast<Value>(box->integer);
  return box != nullptr;
}
}  // namespace

void* Vorn_boxBool(bool value) {
  static RegisteredObject* const boxes[] = {newBox(PrimitiveType::Boolean, 0), newBox(PrimitiveType::Boolean, 1)};
  return boxes[value ? 1 : 0];
}
int Vorn_strEquals(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return left == right ? 1 : 0;
  return std::strcmp(left, right) == 0 ? 1 : 0;
}
void* boxIntegerLikeLocal(RuntimeTypeName typeName, long long value) {
  PrimitiveType type = vc::languageTypeNamed(typeName.get());
  if (type == PrimitiveType::Boolean) return Vorn_boxBool(value != 0);
  const bool fits = value == static_cast<std::int32_t>(value);
  if (!vc::isIntegerType(type)) type = fits ? PrimitiveType::Int : PrimitiveType::Long;
  return newBox(type, value);
}
void* boxFloatingLikeLocal(RuntimeTypeName typeName, double value) {
  const bool isFloat = vc::languageTypeNamed(typeName.get()) == PrimitiveType::Float;
  if (isFloat) value = static_cast<float>(value);
  return newBox(isFloat ? PrimitiveType::Float : PrimitiveType::Double, std::bit_cast<std::int64_t>(value));
}
void* Vorn_allocString(std::string_view text) {
  auto* string = make<StringObject>(findClass("String"));
  string->text = newText(text);
  string->length = text.size();
  return string;
}
std::string_view stringTextFromPtr(void* handle) {
  if (handle == nullptr) return {};
  if (!isObjectPointer(handle)) return static_cast<const char*>(handle);
  const auto* string = as<StringObject>(handle, ObjectKind::String);
  return string != nullptr ? std::string_view(string->text, string->length) : std::string_view();
}
ArraySlotKind slotKindForArrayElementType(std::string_view typeName) {
  return vc::slotKindOf(vc::kindOf(vc::languageTypeNamed(typeName)));
}
bool extractArrayElementInteger(void* value, long long& integer) {
  return readBox(value, ObjectKind::IntegerBox, integer);
}
bool extractArrayElementBool(void* value, bool& truth) { return readBox(value, ObjectKind::BooleanBox, truth); }
bool extractArrayElementDouble(void* value, double& floating) {
  NativeNumericValue number{};
  const bool isNumber = tryReadNativeNumericValue(value, number);
  if (isNumber) floating = Vorn_getField_double(value, "_value");
  return isNumber;
}
long long Vorn_intToChar(long long value) {
  if (!vc::isUnicodeScalar(value)) vc::errors::raiseCharNotScalar();
  return vc::isUnicodeScalar(value) ? value : 0;
}
long long Vorn_intToCodeUnit(long long value) {
  if (!vc::isCodeUnit(value)) vc::errors::raiseCodeUnitOutOfRange();
  return vc::isCodeUnit(value) ? value : 0;
}
const char* Vorn_codeUnitToString(long long unit) {
  if (!vc::isCodeUnit(unit)) return nullptr;
  char* text = newText("");
  vc::encodeUtf8(static_cast<std::uint32_t>(unit), text);
  return text;
}
