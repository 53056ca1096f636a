#include "console/session.h"

#include <chrono>
#include <exception>
#include <new>

#include "console/arguments.h"
#include "console/display_cost.h"
#include "console/problems.h"
#include "console/text.h"

namespace vorn::console {

namespace {

// Counts and collections of a call, against the session's limits.
void checkLimits(const Limits& limits, const NativeRow& row, const PassedArguments& passed,
                 std::span<const Value> arguments) {
  if (limits.mostElements == UINT64_MAX) return;
  const auto most = static_cast<long long>(limits.mostElements);
  const std::vector<ArgumentName> names = argumentNames(row);
  for (std::size_t i = 0; i < row.slots.size(); ++i) {
    const bool counts = names[i].name == "count" || names[i].name == "size";
    if (counts && passed.raw()[i].integer > most) throw Refusal("this session allows no such count");
  }
  for (const Value& value : arguments) {
    if (value.isObject() && sizeOf(value.handle()) > limits.mostElements) {
      throw Refusal("this session allows no such large collection");
    }
  }
}

// The texts of collections that hold each other over and over double with each level, and no signal ends a native.
void checkText(const NativeRow& row, std::span<const Value> arguments) {
  if (row.method != "toString" && row.method != "join") return;
  for (const Value& value : arguments) {
    if (value.isObject() && textCost(value.handle()) == DisplayCost::TooLarge) {
      throw Refusal(std::string(row.method) + ": the text would go on and on");
    }
  }
}

}  // namespace

const Value* Session::find(std::string_view name) const {
  const auto found = variables_.find(name);
  return found != variables_.end() ? &found->second : nullptr;
}

Value Session::call(const NativeRow& row, std::span<const Value> arguments) {
  const PassedArguments passed(row, arguments);
  checkLimits(limits_, row, passed, arguments);
  checkText(row, arguments);
  ++calls_;
  called_.insert(&row);
  RawResult raw;
  Value result;
  try {
    if (clocked_) {
      const auto start = std::chrono::steady_clock::now();
      row.invoke(passed.raw(), raw);
      lastNative_ = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
    } else {
      row.invoke(passed.raw(), raw);
    }
    result = resultValue(row, raw, passed, arguments, calls_);
  } catch (const std::bad_alloc&) {
    vorn_errors_clear();
    throw Refusal(std::string(row.method) + ": there is not enough memory (std::bad_alloc)");
  } catch (const Refusal&) {
    throw;
  } catch (const std::exception& exception) {
    vorn_errors_clear();
    throw Refusal(std::string(row.method) + ": a C++ exception of the native: " + exception.what());
  }
  if (observer_) observer_(row, arguments);
  throwPendingErrors();
  return result;
}

Value Session::call(std::string_view className, std::string_view method, std::span<const Value> arguments) {
  const NativeRow* row = findNative(className, method);
  if (row == nullptr) throw Refusal(std::string(className) + " has no native " + std::string(method));
  return call(*row, arguments);
}

}  // namespace vorn::console
