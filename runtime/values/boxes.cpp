#include "runtime/values/boxes.h"

#include <limits>
#include <string_view>

#include "collections/core/port/values.h"
#include "runtime/objects/builtin_classes.h"

namespace {

using vorn::collections::isFloatingType;
using vorn::collections::isIntegerType;
using vorn::collections::PrimitiveType;

// The two Boolean boxes stand outside the collected heap, where no collector can take them. Their headers depend on
// their addresses, which are known only once the program runs.
struct BooleanBoxes {
  alignas(kObjectAlignment) RegisteredObject no;
  alignas(kObjectAlignment) RegisteredObject yes;

  BooleanBoxes() : no(boxAt(&no, 0)), yes(boxAt(&yes, 1)) {}

  static RegisteredObject boxAt(const void* address, std::int64_t value) {
    RegisteredObject box;
    box.header = objectHeaderFor(address, ObjectKind::BooleanBox);
    box.runtimeClass = &vorn::runtime::boxClass(PrimitiveType::Boolean);
    box.nativeRecord = nullptr;
    box.integer = value;
    return box;
  }
};

// The type behind a name that is no short name of a primitive type: the full name of one, else what fits.
[[gnu::noinline, gnu::cold]] PrimitiveType unusualIntegerType(std::string_view typeName, long long value) {
  const PrimitiveType type = vorn::collections::languageTypeNamed(typeName);
  if (type != PrimitiveType::None && !isFloatingType(type)) return type;
  const bool fitsInt =
      value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
  return fitsInt ? PrimitiveType::Int : PrimitiveType::Long;
}

}  // namespace

extern "C" void* Vorn_boxBool(bool value) {
  static BooleanBoxes boxes;
  return value ? &boxes.yes : &boxes.no;
}

void* boxIntegerLikeLocal(RuntimeTypeName typeName, long long value) {
  PrimitiveType type = typeName.primitiveType();
  if (!isIntegerType(type)) [[unlikely]] {
    if (type != PrimitiveType::Boolean) type = unusualIntegerType(typeName.get(), value);
    if (type == PrimitiveType::Boolean) return Vorn_boxBool(value != 0);
  }
  return vorn::runtime::newBox(vorn::runtime::boxClass(type), value);
}

void* boxFloatingLikeLocal(RuntimeTypeName typeName, double value) {
  PrimitiveType type = typeName.primitiveType();
  if (type == PrimitiveType::None) [[unlikely]]
    type = vorn::collections::languageTypeNamed(typeName.get());
  return vorn::runtime::newFloatingBox(isFloatingType(type) ? type : PrimitiveType::Double, value);
}
