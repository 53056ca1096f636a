#include "collections/core/elements/primitive_elements.h"

#include <algorithm>
#include <cstring>

#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kernels/reverse_kernels.h"
#include "collections/core/kinds.h"
#include "collections/core/unicode.h"

namespace vc = vorn::collections;

namespace vorn::collections {

bool checkCharacterRangeOrRaise(RuntimeTypeName typeName, long long integer) {
  if (storableValues(typeName).contains(integer)) [[likely]]
    return true;
  if (typeName.primitiveType() == PrimitiveType::CodeUnit) {
    errors::raiseCodeUnitOutOfRange();
  } else {
    errors::raiseCharNotScalar();
  }
  return false;
}

}  // namespace vorn::collections

namespace {

// The check goes by the name the elements are kept under, not by the kind: a buffer of doubles may be named "Char".
bool checkStoredValueOrRaise(const ListData& list, long long integer) {
  return vc::checkCharacterRangeOrRaise(list.primitiveType, integer);
}

}  // namespace

long long primitiveListReadI64(const ListData& list, std::uint64_t index) {
  return vc::visitKind(
      list.primitiveKind, [&](auto tag) { return vc::readElementI64(tag, list.primitive.data, index); }, 0LL);
}

double primitiveListReadF64(const ListData& list, std::uint64_t index) {
  return vc::visitKind(
      list.primitiveKind, [&](auto tag) { return vc::readElementF64(tag, list.primitive.data, index); }, 0.0);
}

void primitiveListWrite(ListData& list, std::uint64_t index, long long integer, double floating) {
  if (!checkStoredValueOrRaise(list, integer)) return;
  configurePrimitiveStorage(list, list.primitiveKind);
  vc::visitKind(list.primitiveKind,
                [&](auto tag) { vc::storeElement(tag, list.primitive.data, index, integer, floating); });
}

void primitiveListAppend(ListData& list, long long integer, double floating) {
  if (!checkStoredValueOrRaise(list, integer)) return;
  configurePrimitiveStorage(list, list.primitiveKind);
  list.primitive.reserve(list.primitive.size + 1);
  vc::visitKind(list.primitiveKind,
                [&](auto tag) { vc::storeElement(tag, list.primitive.data, list.primitive.size, integer, floating); });
  ++list.primitive.size;
}

void primitiveListInsertAt(ListData& list, std::uint64_t index, long long integer, double floating) {
  if (!checkStoredValueOrRaise(list, integer)) return;
  configurePrimitiveStorage(list, list.primitiveKind);
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (index > buffer.size) return;
  buffer.reserve(buffer.size + 1);
  unsigned char* at = buffer.data + index * buffer.elementSize;
  std::memmove(at + buffer.elementSize, at, (buffer.size - index) * buffer.elementSize);
  vc::visitKind(list.primitiveKind, [&](auto tag) { vc::storeElement(tag, buffer.data, index, integer, floating); });
  ++buffer.size;
}

void primitiveListEraseAt(ListData& list, std::uint64_t index) {
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (buffer.elementSize != vorn::collections::primitiveWidth(list.primitiveKind)) {
    configurePrimitiveStorage(list, list.primitiveKind);
    return;
  }
  if (index >= buffer.size) return;
  unsigned char* at = buffer.data + index * buffer.elementSize;
  std::memmove(at, at + buffer.elementSize, (buffer.size - index - 1) * buffer.elementSize);
  --buffer.size;
}

void primitiveListReverse(ListData& list) {
  vc::reverseElements(list.primitive.data, list.primitive.size, list.primitive.elementSize);
}
