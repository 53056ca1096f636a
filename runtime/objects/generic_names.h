// The shape of generic type names: "Base<Argument, ...>".
#pragma once

#include <string_view>
#include <vector>

namespace vorn::runtime {

// The name without blanks at its ends.
std::string_view trimBlanks(std::string_view text);

// Splits a generic type name at its outermost brackets and commas; the pieces are views into the name, without blanks
// at their ends. False, with nothing changed, for a name without arguments or with unbalanced brackets, an empty
// argument, an empty base or anything behind the closing bracket.
bool splitGenericName(std::string_view name, std::string_view& base, std::vector<std::string_view>& arguments);

// Whether two spellings name the same type: short and full names of built-in classes are the same at every depth, and
// so are the short name and the full name of a user class; blanks around arguments do not count.
bool namesSameType(std::string_view left, std::string_view right);

}  // namespace vorn::runtime
