// What operators mean, by the classes of their operands.
#pragma once

#include "console/session.h"
#include "console/values.h"

namespace vorn::console {

// A slice's bounds; a null value, or nothing at all, is an omitted one.
struct SliceBounds {
  Value start;
  Value stop;
  Value step;
};

Value readIndex(Session& session, const Value& collection, const Value& index);
void storeIndex(Session& session, const Value& collection, const Value& index, const Value& value);
Value readSlice(Session& session, const Value& collection, const SliceBounds& bounds);
void storeSlice(Session& session, const Value& collection, const SliceBounds& bounds, const Value& source);
Value contains(Session& session, const Value& collection, const Value& value);
Value equal(Session& session, const Value& left, const Value& right, bool negated);
Value concatenated(Session& session, const Value& left, const Value& right);
Value repeated(Session& session, const Value& left, const Value& right);

Value readField(const Value& object, const std::string& field);
void storeField(const Value& object, const std::string& field, const Value& value);

}  // namespace vorn::console
