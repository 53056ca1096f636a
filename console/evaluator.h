// From expressions to values.
#pragma once

#include <string_view>

#include "console/session.h"
#include "console/syntax.h"
#include "console/values.h"

namespace vorn::console {

// Throws a Refusal or a RaisedError.
Value evaluate(Session& session, const Expression& expression);

// Stores into x[i], x[i:j] or x.field.
void store(Session& session, const Expression& target, const Value& value);

// Gives a variable a value; refuses names that mean a class or function.
void assign(Session& session, std::string_view name, const Value& value);

}  // namespace vorn::console
