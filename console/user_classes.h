// Classes that a person declares. Their hooks take one of a few forms, so that what the library does with equality,
// order, hash and text of user code can be tried.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "console/syntax.h"
#include "console/values.h"

namespace vorn::console {

enum class Hook : std::uint8_t { Equals, Order, Hash, Text };
constexpr std::size_t kHookCount = 4;
constexpr std::array<std::string_view, kHookCount> kHookNames = {"equals", "order", "hash", "text"};

struct UserClass {
  std::string name;
  std::string fullName;
  const UserClass* base = nullptr;
  std::vector<std::string> ownFields;
  std::vector<std::string> fields;  // those of the base first
  HookForms forms;                  // of the class itself
  std::array<std::uint64_t, kHookCount> calls = {};
  std::uint64_t session = 0;  // the number of the session that sees it
};

// Begins a session of its own: the classes of earlier ones are out of sight. The runtime keeps them for the rest of the
// process, so that a class of the same name but other fields comes to stand in another module.
void forgetUserClasses();

// Declares a class for the rest of the session. Declared again with the same fields, base and set of hooks it may get
// hooks of other forms. Refuses anything else.
const UserClass& declareClass(const ClassDeclaration& declaration);

const UserClass* findUserClass(std::string_view name);
std::vector<const UserClass*> userClasses();

// A new object with a value for each field. Allocates.
Value newUserObject(const UserClass& type, std::span<const Value> fields);

// "class Point(x, y) equals fields": what would declare the class again.
std::string declarationText(const UserClass& type);

}  // namespace vorn::console
