// Making objects: by type name, as ArrayList<Int>() and Byte(3), and by the console's own functions.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "console/session.h"
#include "console/syntax.h"
#include "console/values.h"

namespace vorn::console {

// What a call without a receiver gives.
Value construct(Session& session, const Expression& call, std::span<const Value> arguments);

// Names that mean a class or function wherever they stand, so that no variable can have them.
bool isReservedName(std::string_view name);
std::vector<std::string_view> reservedNames();

// Lists, maps, sets and tuples from the elements of a literal, by the natives that compiled code calls for it.
// `allInts` tells that every element is a literal of Int.
Value listLiteral(Session& session, std::span<const Value> elements, bool allInts);
Value mapLiteral(Session& session, std::span<const Value> keysAndValues);
Value setLiteral(Session& session, std::span<const Value> elements);
Value tupleLiteral(Session& session, std::span<const Value> items);

// Refuses what is no value of the language: nothing, and addresses of raw elements.
void requireObjects(std::span<const Value> values);

}  // namespace vorn::console
