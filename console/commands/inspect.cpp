// Commands that look at values, classes and the heap.
#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <string>

#include "console/commands/commands.h"
#include "console/evaluator.h"
#include "console/natives.h"
#include "console/parser.h"
#include "console/problems.h"
#include "console/storage_view.h"
#include "console/text.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

// The value of a command's expression, which must be there.
Value argument(Console& console, std::string_view text, const char* command) {
  if (text.empty()) throw Refusal(std::string(command) + " takes an expression, such as a variable's name");
  // Syntax errors point into the command's own text, not into the whole line.
  try {
    return evaluate(console.session(), *parseExpression(text));
  } catch (const SyntaxError& error) {
    throw Refusal(std::string(error.what()) + "\n" + markedLine(text, error.offset()));
  }
}

std::string padded(std::string_view text, std::size_t width) {
  return std::string(text) + std::string(width - std::min(width, characterCount(text)), ' ');
}

std::string field(std::string_view name, const std::string& value) { return "  " + padded(name, 10) + value; }

// "[####------]", as full as the storage is.
std::string bar(std::uint64_t size, std::uint64_t capacity) {
  constexpr std::uint64_t kWidth = 32;
  std::uint64_t filled =
      capacity == 0 ? 0
                    : static_cast<std::uint64_t>(static_cast<double>(size) / static_cast<double>(capacity) * kWidth);
  if (size > 0) filled = std::clamp<std::uint64_t>(filled, 1, kWidth);
  return "[" + std::string(filled, '#') + std::string(kWidth - filled, '-') + "]";
}

void showStorage(Console& console, std::string_view text, Output& output) {
  const Value value = argument(console, text, ":storage");
  if (!value.isObject()) throw Refusal(displayText(value) + " has no storage of its own");
  StorageView view;
  const std::string type = typeText(value.handle());
  if (!viewStorage(value.handle(), view)) {
    if (familyOf(value.handle()) == Family::Tuple) {
      output.line(type + ", " + counted(sizeOf(value.handle()), "item"), Style::Heading);
      output.line(field("live", "fields of the object"));
      return;
    }
    throw Refusal("a value of type " + type + " has no storage to draw; lists, arrays, maps and sets have");
  }
  output.line(type + ", " + counted(view.size, "element"), Style::Heading);
  output.line(field("live", view.live));
  if (!view.declared.empty()) output.line(field("declared", view.declared));
  if (view.capacity != 0) {
    output.line(
        field("size", bar(view.size, view.capacity) + " " + grouped(view.size) + " of " + grouped(view.capacity)));
    const bool elsewhere = !view.isInline;
    if (!view.hashed) output.line(field("place", elsewhere ? "a block of the heap" : "inline, in the object itself"));
  } else {
    output.line(field("size", grouped(view.size)));
  }
  if (view.hashed) {
    output.line(field("buckets", view.buckets == 0 ? "none yet: tags alone" : grouped(view.buckets)));
  }
  output.line(field("bytes", std::to_string(view.bytesPerElement) + " an element, " +
                                 grouped(std::max(view.size, view.capacity) * view.bytesPerElement) + " in all"));
  output.line(field("lock", view.synchronised ? "one mutex, held by each native" : "none"));
}

void watch(Console& console, std::string_view text, Output& output) {
  if (text.empty()) {
    const std::vector<std::string> names = console.watches().names();
    if (names.empty()) output.line("nothing is watched; :watch x begins to");
    for (const std::string& name : names) output.line(name);
    return;
  }
  const std::string name(text);
  console.watches().add(console.session(), name);
  output.line("watching " + name + ": " + storageForm(console.session().find(name)->handle()), Style::Faint);
}

void unwatch(Console& console, std::string_view text, Output&) {
  if (!console.watches().remove(std::string(text))) throw Refusal("'" + std::string(text) + "' is not watched");
}

void showNativesOf(std::string_view className, Output& output) {
  output.line(className, Style::Heading);
  for (const NativeRow* row : allNatives()) {
    if (row->className != className) continue;
    const std::string call = (row->hasReceiver() ? "." : std::string(className) + ".") + std::string(row->method) +
                             "(" + signatureText(*row) + ")";
    output.line("  " + padded(call, 46) + " " + std::string(row->description));
  }
}

void showNatives(Console&, std::string_view text, Output& output) {
  if (text.empty()) {
    for (const std::string_view name : nativeClasses()) showNativesOf(name, output);
    return;
  }
  // Classes that share the natives of another are asked for by their own names as well.
  constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kServed = {{{"LinkedList", "ArrayList"},
                                                                                     {"LinkedListSync", "ArrayList"},
                                                                                     {"ArraySync", "Array"},
                                                                                     {"HashMapSync", "Map"},
                                                                                     {"SortedMap", "Map"},
                                                                                     {"SortedMapSync", "Map"},
                                                                                     {"HashSetSync", "HashSet"}}};
  const auto* served = std::ranges::find(kServed, text, &std::pair<std::string_view, std::string_view>::first);
  const std::string_view name = served != kServed.end() ? served->second : text;
  if (!isNativeClass(name)) throw Refusal("there is no class " + std::string(text) + suggestion(text, nativeClasses()));
  showNativesOf(name, output);
}

void showType(Console& console, std::string_view text, Output& output) {
  const Value value = argument(console, text, ":type");
  if (value.kind() == Value::Kind::Nothing) {
    output.line("no value");
  } else if (!value.isObject()) {
    output.line(displayText(value));
  } else {
    const char* name = vorn_type_name(value.handle());
    output.line(name != nullptr ? name : "null");
  }
}

void showVariables(Console& console, std::string_view, Output& output) {
  constexpr std::size_t kShown = 50;
  for (const auto& [name, value] : console.session().variables()) {
    const std::string type = value.isObject() ? typeText(value.handle()) : "raw";
    output.line(padded(name, 12) + " " + padded(type, 20) + " " + shortDisplay(value, kShown));
  }
}

void showClasses(Console&, std::string_view, Output& output) {
  for (const UserClass* type : userClasses()) {
    output.line(declarationText(*type));
    std::string calls;
    for (std::size_t i = 0; i < kHookCount; ++i) {
      if (type->calls[i] == 0) continue;
      calls += (calls.empty() ? "" : ", ") + std::string(kHookNames[i]) + " " + grouped(type->calls[i]);
    }
    if (!calls.empty()) output.line("  hooks called: " + calls);
  }
}

void showHeap(Console&, std::string_view, Output& output) {
  vorn_heap_statistics statistics = {};
  vorn_heap_get_statistics(&statistics);
  output.line(field("live", counted(statistics.bytes_live, "byte")));
  output.line(field("allocated",
                    counted(statistics.bytes_allocated, "byte") + " in " + counted(statistics.allocations, "block")));
  output.line(field("collected", grouped(statistics.collections) + (statistics.collections == 1 ? " time" : " times")));
}

void collect(Console&, std::string_view, Output& output) {
  vorn_heap_statistics before = {};
  vorn_heap_statistics after = {};
  vorn_heap_get_statistics(&before);
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  output.line(grouped(before.bytes_live) + " bytes live before, " + grouped(after.bytes_live) + " after");
}

constexpr Command kInspectCommands[] = {
    {"storage", "EXPR", "draws what stands behind a collection: storage, size and capacity, lock", showStorage},
    {"watch", "[x]", "prints a line whenever the storage of x changes its form", watch},
    {"unwatch", "x", "ends that", unwatch},
    {"natives", "[CLASS]", "all natives, or those of a class, with what they do", showNatives},
    {"type", "EXPR", "the full type name of a value", showType},
    {"vars", "", "the variables", showVariables},
    {"classes", "", "the user classes, and how often their hooks were called", showClasses},
    {"heap", "", "what the heap holds", showHeap},
    {"collect", "", "runs a full collection", collect},
};

}  // namespace

std::span<const Command> inspectCommands() { return kInspectCommands; }

}  // namespace vorn::console
