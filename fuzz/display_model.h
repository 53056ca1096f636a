// What a display must look like: values and collections in plain C++, and a printer of them that knows nothing of the
// library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "collections/core/port/text.h"
#include "fuzz/fuzzer.h"

namespace vorn::fuzz {

enum class Family { List, Immutable, Tuple, Set, Map, Array };

struct Kind {
  const char* type;
  Family family;
  bool synchronised;
  bool linked;
  const char* opening;
  const char* emptyOpening;
  const char* cycle;
  const char* closing;
};

inline constexpr std::array<Kind, 14> kKinds{{
    {"ArrayList", Family::List, false, false, "[", "[", "[...]", "]"},
    {"ArrayListSync", Family::List, true, false, "s:[", "[", "[...]", "]"},
    {"LinkedList", Family::List, false, true, "l:[", "l:[", "[...]", "]"},
    {"LinkedListSync", Family::List, true, true, "ls:[", "ls:[", "[...]", "]"},
    {"ImmutableList", Family::Immutable, false, false, "i:[", "i:[", "i:[...]", "]"},
    {"Tuple", Family::Tuple, false, false, "(", "(", "(...)", ")"},
    {"HashSet", Family::Set, false, false, "{", "{", "{...}", "}"},
    {"HashSetSync", Family::Set, true, false, "s:{", "s:{", "{...}", "}"},
    {"Map", Family::Map, false, false, "{", "{", "{...}", "}"},
    {"HashMapSync", Family::Map, true, false, "s:{", "s:{", "s:{...}", "}"},
    {"SortedMap", Family::Map, false, false, "t:{", "t:{", "t:{...}", "}"},
    {"SortedMapSync", Family::Map, true, false, "ts:{", "ts:{", "ts:{...}", "}"},
    {"Array", Family::Array, false, false, "f:[", "f:[", "f:[...]", "]"},
    {"ArraySync", Family::Array, true, false, "fs:[", "fs:[", "f:[...]", "]"},
}};

enum class What { Null, Int, Long, ULong, Double, Float, Boolean, Char, CodeUnit, String, Text, Object, Shower, Node };

constexpr const char* typeOf(What what) {
  constexpr const char* kTypes[] = {"", "Int", "Long", "ULong", "Double", "Float", "Boolean", "Char", "CodeUnit"};
  return what >= What::Int && what <= What::CodeUnit ? kTypes[static_cast<int>(what)] : "";
}
constexpr bool isPrimitive(What what) { return *typeOf(what) != '\0'; }

// A value; a Shower is an object whose toString is the display of a node.
struct Value {
  What what = What::Null;
  std::int64_t integer = 0;  // or the number of a node
  double floating = 0;
  std::string text;
};

struct Node {
  const Kind* kind = nullptr;
  What declared = What::Null;  // the type argument, when it is primitive
  What unboxed = What::Null;   // the type that an untyped list has adopted
  std::vector<Value> keys;     // of a map
  std::vector<Value> elements;
  Handle handle;
};

struct TooLong {};

// The model's own display. Nodes that refer to each other may have texts of exponential length, which nobody waits for.
class Printer {
 public:
  explicit Printer(const std::vector<Node>& nodes) : nodes_(nodes) {}

  std::string display(std::size_t number) {
    const Node& node = nodes_[number];
    const Kind& kind = *node.kind;
    if (!shown_.insert(number).second) return kind.cycle;
    std::string text = node.elements.empty() ? kind.emptyOpening : kind.opening;
    for (std::size_t i = 0; i < node.elements.size(); ++i) {
      if (i != 0) text += ", ";
      if (kind.family == Family::Map) text += display(node.keys[i]) + ": ";
      text += kind.family == Family::Set ? inSet(node.elements[i]) : display(asRead(node, node.elements[i]));
      if (text.size() > kLongest || ++steps_ > kSteps) throw TooLong();
    }
    if (kind.family == Family::Tuple && node.elements.size() == 1) text += ",";
    shown_.erase(number);
    return text + kind.closing;
  }

  std::string join(const Node& node, const std::string& separator) {
    std::string text;
    for (std::size_t i = 0; i < node.elements.size(); ++i) {
      if (i != 0) text += separator;
      text += language(asRead(node, node.elements[i]));
    }
    return text;
  }

 private:
  static constexpr std::size_t kLongest = 20000;
  static constexpr int kSteps = 3000;

  // What an unboxed list of no declared type gives back when it is shown.
  static Value asRead(const Node& node, Value value) {
    const bool showsAsInt = node.unboxed == What::Char || node.unboxed == What::CodeUnit || node.unboxed == What::ULong;
    if (showsAsInt) value.what = What::Int;
    return value;
  }

  static std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
      if (c == '"' || c == '\\') result += '\\';
      if (c == '\n') {
        result += "\\n";
      } else if (c == '\x01') {
        result += "\\u0001";
      } else {
        result += c;
      }
    }
    return result + "\"";
  }

  std::string display(const Value& value) {
    if (value.what == What::String || value.what == What::Text) return quoted(value.text);
    return plain(value);
  }

  std::string inSet(const Value& value) { return value.what == What::Text ? quoted(value.text) : language(value); }

  // What passes as a C string ends at a NUL, which the characters of a new array are.
  static std::string asCString(const std::string& text) { return text.c_str(); }

  std::string language(const Value& value) { return asCString(plain(value)); }

  std::string plain(const Value& value) {
    switch (value.what) {
      case What::Null:
        return "null";
      case What::Int:
      case What::Long:
        return std::to_string(value.integer);
      case What::ULong:
        return std::to_string(static_cast<std::uint64_t>(value.integer));
      case What::Double:
      case What::Float:
        return formatVornFloat(value.floating);
      case What::Boolean:
        return value.integer != 0 ? "true" : "false";
      case What::Char:
      case What::CodeUnit:
        return std::string(1, static_cast<char>(value.integer));
      case What::String:
      case What::Text:
        return value.text;
      case What::Object:
        return "Object";
      case What::Shower:
        return asCString(display(static_cast<std::size_t>(value.integer)));
      case What::Node:
        return display(static_cast<std::size_t>(value.integer));
    }
    return {};
  }

  const std::vector<Node>& nodes_;
  std::set<std::size_t> shown_;
  int steps_ = 0;
};

}  // namespace vorn::fuzz
