// Values that fuzzers put into collections, in plain C++: what they are, whether two are equal and in which order they
// come, written from what the language promises and knowing nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"

namespace vorn::fuzz {

// The type of a value, or a name that stands where a type is expected.
enum class Type : std::uint8_t {
  None,  // of a value: null; of a name: none
  SByte,
  Byte,
  Short,
  UShort,
  CodeUnit,
  Int,
  UInt,
  Char,
  Long,
  ULong,
  Float,
  Double,
  Boolean,
  String,   // an object
  Text,     // a bare one
  Item,     // an instance whose hooks go by its number
  Plain,    // an instance without hooks
  Pair,     // a tuple of two Ints
  Object,   // as a name only
  Nowhere,  // a name that no class has
};

// How unboxed elements are kept. The numbers are part of the records.
enum class Kind : std::uint8_t { None, SByte, Byte, Short, UShort, Int, UInt, Long, ULong, Float, Double, Boolean };

inline constexpr Type kFirstPrimitive = Type::SByte;
inline constexpr Type kLastPrimitive = Type::Boolean;

const char* nameOf(Type type);
Kind kindOf(Type type);
constexpr bool isPrimitive(Type type) { return type >= kFirstPrimitive && type <= kLastPrimitive; }
constexpr bool isFloating(Type type) { return type == Type::Float || type == Type::Double; }
constexpr bool isCharacter(Type type) { return type == Type::Char || type == Type::CodeUnit; }
constexpr bool isNumber(Type type) { return isPrimitive(type) && !isCharacter(type) && type != Type::Boolean; }
constexpr bool isText(Type type) { return type == Type::String || type == Type::Text; }
constexpr bool isFloating(Kind kind) { return kind == Kind::Float || kind == Kind::Double; }
constexpr bool isInteger(Kind kind) { return kind >= Kind::SByte && kind <= Kind::ULong; }
int widthOf(Kind kind);

// A value. Of a text, `integer` is its place among the texts there are, of an Item its number, of a Pair ten times the
// first item and the second. `handle` is null for null and for a box that nobody has looked at yet.
struct Value {
  Type type = Type::None;
  std::int64_t integer = 0;
  double floating = 0;
  void* handle = nullptr;
};

inline constexpr std::int64_t kTexts = 9;
std::string_view textOf(const Value& value);

// Lets the hooks of Items do what they promise for so many calls; the one behind them raises "HookException" "a hook
// raised", once. A negative number lets them all.
void armHooks(int calls);
[[nodiscard]] bool haveHooksRaised();

// Defines the classes of Items and Plains. Needs a running runtime.
void defineValueClasses();

// What a fuzzer of values does with an input: runs the operations that it asks for on a new scenario, and then lets the
// scenario require what it has to.
template <class Scenario, std::size_t kCount>
int runInput(const std::uint8_t* data, std::size_t size, const Operation<Scenario> (&operations)[kCount]) {
  startRuntime();
  defineValueClasses();
  beginInput();
  Input input(data, size);
  Scenario scenario(input);
  runOperations(scenario, input, operations);
  if constexpr (requires { scenario.requireAll(); }) scenario.requireAll();
  return 0;
}

// A value of the type, or of any for None, without a handle.
Value chooseValue(Input& input, Type type);
// Of any type there is.
Type chooseType(Input& input);
// Of any primitive type.
Type choosePrimitive(Input& input);

// A new object that is the value. Allocates.
void* make(const Value& value);

// Ends the process unless the handle is the value: the very object where the value has one, else a box of that type and
// bits, which becomes the value's object.
void requireValue(const char* what, void* handle, Value& value);
std::string describe(const Value& value);
std::string describe(void* handle);

// Toward zero; the minimum for what no 64-bit integer is.
std::int64_t truncated(double value);

// A box's value as the field "_value" gives it to those who want an integer or a double; 0 for what has no such field.
std::int64_t integerOf(const Value& value);
double floatingOf(const Value& value);

// The value of a number, exactly.
long double numberOf(const Value& value);

// How searches in lists, arrays and the values of maps compare elements, and how whole objects are.
bool areElementsEqual(const Value& left, const Value& right);
bool areDeepEqual(const Value& left, const Value& right);

// How sorts order values of one sort: of numbers, of Strings, of bare texts and nulls, of Items, of Pairs, of values
// that have no order. Other mixtures have none that a model could know.
bool haveOneOrder(const Value& left, const Value& right);
int compareElements(const Value& left, const Value& right);

// The order of keys in sorted maps; two keys are one key when it gives 0.
int compareKeys(const Value& left, const Value& right);

}  // namespace vorn::fuzz
