#include "console/operators.h"

#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "console/arguments.h"
#include "console/buffers.h"
#include "console/construction.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

std::string described(const Value& value) {
  if (value.kind() == Value::Kind::Nothing) return "nothing";
  return value.isObject() ? "a value of type " + typeText(value.handle()) : displayText(value);
}

// The native that an operator is on a collection; refuses where there is none.
const NativeRow& operatorOf(const Value& collection, std::string_view native, const char* operation) {
  const Family family = collection.isObject() ? familyOf(collection.handle()) : Family::None;
  if (const NativeRow* row = findMethod(family, native)) return *row;
  if (collection.isNull()) {
    throw Refusal("null alone does not say of which class it is; name the native, as in ArrayList." +
                  std::string(native) + "(null, ...)");
  }
  throw Refusal(described(collection) + " has no " + operation);
}

// The seven or six arguments of the slice natives. An omitted bound has a null flag.
std::vector<Value> sliceArguments(const Value& collection, const SliceBounds& bounds) {
  const auto given = [](const Value& bound) { return bound.isObject() && !bound.isNull(); };
  const auto number = [&](const Value& bound, std::int64_t otherwise) {
    return given(bound) ? bound : newObject(vorn_box_long(otherwise));
  };
  const auto flag = [&](const Value& bound) { return Value::object(given(bound) ? vorn_box_boolean(true) : nullptr); };
  return {collection,         number(bounds.start, 0), number(bounds.stop, 0), number(bounds.step, 1),
          flag(bounds.start), flag(bounds.stop)};
}

std::vector<std::string_view> fieldNames(const Value& object) {
  const UserClass* type = findUserClass(className(object.handle()));
  if (type == nullptr) return {};
  return {type->fields.begin(), type->fields.end()};
}

[[noreturn]] void refuseField(const Value& object, const std::string& field) {
  throw Refusal(described(object) + " has no field " + field + suggestion(field, fieldNames(object)));
}

}  // namespace

Value readIndex(Session& session, const Value& collection, const Value& index) {
  if (collection.kind() == Value::Kind::Buffer) return readBuffer(session, collection, index);
  const NativeRow& row = operatorOf(collection, "operator_index", "elements to read by index");
  return session.call(row, std::array<Value, 2>{collection, index});
}

void storeIndex(Session& session, const Value& collection, const Value& index, const Value& value) {
  if (collection.kind() == Value::Kind::Buffer) return writeBuffer(session, collection, index, value);
  const NativeRow& row = operatorOf(collection, "operator_index_eq", "elements to store by index");
  session.call(row, std::array<Value, 3>{collection, index, value});
}

Value readSlice(Session& session, const Value& collection, const SliceBounds& bounds) {
  const NativeRow& row = operatorOf(collection, "slice", "slices");
  return session.call(row, sliceArguments(collection, bounds));
}

void storeSlice(Session& session, const Value& collection, const SliceBounds& bounds, const Value& source) {
  const NativeRow& row = operatorOf(collection, "sliceAssign", "slices to assign");
  std::vector<Value> arguments = sliceArguments(collection, bounds);
  arguments.push_back(source);
  session.call(row, arguments);
}

Value contains(Session& session, const Value& collection, const Value& value) {
  const NativeRow& row = operatorOf(collection, "operator_in", "operator 'in'");
  return session.call(row, std::array<Value, 2>{collection, value});
}

Value equal(Session& session, const Value& left, const Value& right, bool negated) {
  requireObjects(std::array<Value, 2>{left, right});
  if (const NativeRow* row = findMethod(familyOf(left.handle()), negated ? "operator_ne" : "operator_eq")) {
    return session.call(*row, std::array<Value, 2>{left, right});
  }
  const bool same = vorn_equals(left.handle(), right.handle()) != 0;
  throwPendingErrors();
  return newObject(vorn_box_boolean(same != negated));
}

Value concatenated(Session& session, const Value& left, const Value& right) {
  return session.call(operatorOf(left, "concat", "operator '+'"), std::array<Value, 2>{left, right});
}

Value repeated(Session& session, const Value& left, const Value& right) {
  return session.call(operatorOf(left, "repeat", "operator '*'"), std::array<Value, 2>{left, right});
}

Value readField(const Value& object, const std::string& field) {
  if (object.kind() == Value::Kind::Buffer || object.kind() == Value::Kind::Record) {
    if (field == "list") return Value::object(object.handle());
    throw Refusal(displayText(object) + " has only the field list");
  }
  if (!object.isObject() || object.isNull()) throw Refusal(described(object) + " has no fields");
  void* handle = nullptr;
  if (vorn_field_get_handle(object.handle(), field.c_str(), &handle) != 0) return Value::object(handle);
  std::int64_t integer = 0;
  if (isCollection(object.handle()) && vorn_field_get_integer(object.handle(), field.c_str(), &integer) != 0) {
    return newObject(boxCount(integer));
  }
  refuseField(object, field);
}

void storeField(const Value& object, const std::string& field, const Value& value) {
  requireObjects(std::array<Value, 1>{value});
  const bool userObject = object.isObject() && !object.isNull() && findUserClass(className(object.handle())) != nullptr;
  if (!userObject) throw Refusal(described(object) + " has no fields to store");
  if (vorn_field_set_handle(object.handle(), field.c_str(), value.handle()) == 0) refuseField(object, field);
}

}  // namespace vorn::console
