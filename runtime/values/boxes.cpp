#include "runtime/values/boxes.h"

#include <limits>
#include <string_view>

#include "collections/core/port/values.h"
#include "runtime/objects/builtin_classes.h"

namespace {

using vorn::runtime::boxedTypeOf;
using vorn::runtime::builtinClass;
using vorn::runtime::BuiltinClass;

// The two Boolean boxes stand outside the collected heap, where no collector can take them. Their headers depend on
// their addresses, which are known only once the program runs.
struct BooleanBoxes {
  alignas(kObjectAlignment) RegisteredObject no;
  alignas(kObjectAlignment) RegisteredObject yes;

  BooleanBoxes() : no(boxAt(&no, 0)), yes(boxAt(&yes, 1)) {}

  static RegisteredObject boxAt(const void* address, std::int64_t value) {
    RegisteredObject box;
    box.header = objectHeaderFor(address, ObjectKind::BooleanBox);
    box.runtimeClass = &builtinClass(BuiltinClass::Boolean);
    box.nativeRecord = nullptr;
    box.integer = value;
    return box;
  }
};

// The type behind a name that is no short name of an integer-like type: the full name of one, else what fits.
[[gnu::noinline, gnu::cold]] BuiltinClass unusualIntegerType(std::string_view typeName, long long value) {
  constexpr std::string_view kModule = "vorn.";
  if (typeName.starts_with(kModule)) {
    const BuiltinClass type = boxedTypeOf(typeName.substr(kModule.size()));
    if (vorn::runtime::isIntegerLikeBox(type) || type == BuiltinClass::Boolean) return type;
  }
  const bool fitsInt =
      value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
  return fitsInt ? BuiltinClass::Int : BuiltinClass::Long;
}

}  // namespace

extern "C" void* Vorn_boxBool(bool value) {
  static BooleanBoxes boxes;
  return value ? &boxes.yes : &boxes.no;
}

void* boxIntegerLikeLocal(std::string_view typeName, long long value) {
  BuiltinClass type = boxedTypeOf(typeName);
  if (!vorn::runtime::isIntegerLikeBox(type)) [[unlikely]] {
    if (type != BuiltinClass::Boolean) type = unusualIntegerType(typeName, value);
    if (type == BuiltinClass::Boolean) return Vorn_boxBool(value != 0);
  }
  return vorn::runtime::newBox(builtinClass(type), value);
}

void* boxFloatingLikeLocal(std::string_view typeName, double value) {
  const bool isFloat = typeName == "Float" || typeName == "vorn.Float";
  return vorn::runtime::newFloatingBox(isFloat ? BuiltinClass::Float : BuiltinClass::Double, value);
}
