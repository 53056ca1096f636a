#include "console/functions.h"

#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include "console/arguments.h"
#include "console/problems.h"
#include "console/text.h"

namespace vorn::console {

namespace {

// The most that a list made here has: a gigabyte of Int, and no slip of the finger takes the machine.
constexpr long long kMost = 1LL << 28;

long long countArgument(Session& session, std::span<const Value> arguments, std::string_view function) {
  if (arguments.size() != 1) {
    throw Refusal(std::string(function) + " takes (count), not " + counted(arguments.size(), "argument"));
  }
  const long long count = integerOf(arguments[0], std::string(function) + "'s count");
  const long long most =
      std::min(kMost, static_cast<long long>(std::min<std::uint64_t>(session.limits().mostElements, kMost)));
  if (count < 0 || count > most) {
    throw Refusal(std::string(function) + "'s count must be 0 to " + grouped(static_cast<std::uint64_t>(most)));
  }
  return count;
}

// A list of Int that is filled as compiled loops fill one.
Value ascending(long long count) {
  Handle list;
  void* elements = nullptr;
  try {
    elements = vorn_collections_ArrayList_newPrimitiveData(count, "Int", list.out());
  } catch (const std::bad_alloc&) {
    throw Refusal("there is no memory for so long a list");
  }
  if (elements == nullptr) throw Refusal("there is no memory for so long a list");
  auto* ints = static_cast<std::int32_t*>(elements);
  for (long long i = 0; i < count; ++i) ints[i] = static_cast<std::int32_t>(i);
  return Value::object(list);
}

Value range(Session& session, std::span<const Value> arguments) {
  return ascending(countArgument(session, arguments, "range"));
}

Value shuffled(Session& session, std::span<const Value> arguments) {
  Value list = ascending(countArgument(session, arguments, "shuffled"));
  vorn_collections_ArrayList_shuffle(list.handle());
  return list;
}

Value texts(Session& session, std::span<const Value> arguments) {
  const long long count = countArgument(session, arguments, "texts");
  Value list = newObject(vorn_object_new("ArrayList<String>"));
  Handle text;
  for (long long i = 0; i < count; ++i) {
    text = newObject(vorn_string_new(("text " + std::to_string(i)).c_str(), SIZE_MAX)).handle();
    vorn_collections_ArrayList_add(list.handle(), text);
  }
  return list;
}

Value same(Session&, std::span<const Value> arguments) {
  if (arguments.size() != 2) throw Refusal("same takes (a, b), not " + counted(arguments.size(), "argument"));
  return newObject(vorn_box_boolean(arguments[0].handle() == arguments[1].handle()));
}

constexpr ConsoleFunction kFunctions[] = {
    {"range", "range(n)", "a list of Int from 0 to n - 1", range},
    {"shuffled", "shuffled(n)", "the same in random order, always the same one after a fresh start", shuffled},
    {"texts", "texts(n)", R"(a list of the Strings "text 0" to "text n-1")", texts},
    {"same", "same(a, b)", "whether both are one object", same},
};

}  // namespace

std::span<const ConsoleFunction> consoleFunctions() { return kFunctions; }

const ConsoleFunction* findFunction(std::string_view name) {
  const auto* found = std::ranges::find(kFunctions, name, &ConsoleFunction::name);
  return found != std::end(kFunctions) ? found : nullptr;
}

}  // namespace vorn::console
