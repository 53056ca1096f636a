#include "console/buffers.h"

#include <vorn/runtime.h>

#include <cstring>
#include <optional>
#include <string>

#include "console/arguments.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"

namespace vorn::console {

namespace {

template <class T>
T load(const unsigned char* address) {
  T value;
  std::memcpy(&value, address, sizeof value);
  return value;
}

template <class T>
void store(unsigned char* address, T value) {
  std::memcpy(address, &value, sizeof value);
}

unsigned char* elementAt(const Session& session, const Value& buffer, const Value& index) {
  const Value::Raw& raw = buffer.raw();
  if (raw.callsBefore != session.calls()) {
    throw Refusal("this buffer is no longer good: raw elements may only be touched before the next native is called");
  }
  const long long at = integerOf(index, "a buffer's index");
  if (at < 0 || at >= raw.count) {
    throw Refusal("the buffer has room for " + grouped(static_cast<std::uint64_t>(raw.count)) + ", and no element " +
                  std::to_string(at));
  }
  return static_cast<unsigned char*>(raw.data) + static_cast<std::size_t>(at) * raw.type->width;
}

WideInteger loadInteger(const ScalarType& type, const unsigned char* address) {
  const bool isSigned = type.lowest < 0;
  switch (type.width) {
    case 1:
      return isSigned ? WideInteger{load<std::int8_t>(address)} : WideInteger{load<std::uint8_t>(address)};
    case 2:
      return isSigned ? WideInteger{load<std::int16_t>(address)} : WideInteger{load<std::uint16_t>(address)};
    case 4:
      return isSigned ? WideInteger{load<std::int32_t>(address)} : WideInteger{load<std::uint32_t>(address)};
    default:
      return isSigned ? WideInteger{load<std::int64_t>(address)} : WideInteger{load<std::uint64_t>(address)};
  }
}

}  // namespace

Value readBuffer(const Session& session, const Value& buffer, const Value& index) {
  const unsigned char* address = elementAt(session, buffer, index);
  const ScalarType& type = *buffer.raw().type;
  if (type.family != ScalarFamily::Floating) return newObject(boxInteger(type, loadInteger(type, address)));
  const double value = type.width == sizeof(float) ? double{load<float>(address)} : load<double>(address);
  return newObject(vorn_box_floating(type.name.data(), value));
}

void writeBuffer(const Session& session, const Value& buffer, const Value& index, const Value& value) {
  unsigned char* address = elementAt(session, buffer, index);
  const ScalarType& type = *buffer.raw().type;
  const std::optional<Number> number = value.isObject() ? readNumber(value.handle()) : std::nullopt;
  if (!number) throw Refusal("a buffer of " + std::string(type.name) + " holds numbers alone");
  if (type.family == ScalarFamily::Floating) {
    if (type.width == sizeof(float)) {
      store(address, static_cast<float>(number->floating));
    } else {
      store(address, number->floating);
    }
    return;
  }
  // Boxed once for its checks of range, which are those of Byte(3).
  const Handle checked = boxNumber(type, *number);
  const auto bits = static_cast<std::uint64_t>(number->integer);
  switch (type.width) {
    case 1:
      return store(address, static_cast<std::uint8_t>(bits));
    case 2:
      return store(address, static_cast<std::uint16_t>(bits));
    case 4:
      return store(address, static_cast<std::uint32_t>(bits));
    default:
      return store(address, bits);
  }
}

}  // namespace vorn::console
