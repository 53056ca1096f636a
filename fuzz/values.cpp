#include "fuzz/values.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>

#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"

namespace vorn::fuzz {

namespace {

struct TypeRow {
  const char* name;
  Kind kind;
};

constexpr std::array<TypeRow, 21> kTypeRows{{
    {"", Kind::None},         {"SByte", Kind::SByte},     {"Byte", Kind::Byte},   {"Short", Kind::Short},
    {"UShort", Kind::UShort}, {"CodeUnit", Kind::UShort}, {"Int", Kind::Int},     {"UInt", Kind::UInt},
    {"Char", Kind::UInt},     {"Long", Kind::Long},       {"ULong", Kind::ULong}, {"Float", Kind::Float},
    {"Double", Kind::Double}, {"Boolean", Kind::Boolean}, {"String", Kind::None}, {"Text", Kind::None},
    {"Item", Kind::None},     {"Plain", Kind::None},      {"Pair", Kind::None},   {"Object", Kind::None},
    {"Nowhere", Kind::None},
}};

constexpr std::array<std::string_view, kTexts> kTextTable{"",
                                                          "a",
                                                          "b",
                                                          "ab",
                                                          "\xC3\xA9",
                                                          "a longer text than sixteen bytes",
                                                          "a longer text than sixteen bytez",
                                                          "\xF0\x9F\x98\x80",
                                                          "1"};

constexpr std::array<std::int64_t, 24> kIntegers{
    -1,         -128,          127,          128,          255,       256,       32767,
    -32768,     65535,         65536,        0xD800,       0xDFFF,    0x10FFFF,  0x110000,
    2147483647, -2147483648LL, 4294967295LL, 4294967296LL, INT64_MAX, INT64_MIN, 9007199254740993LL,
    -129,       300,           0xE000};

constexpr std::array<double, 16> kFloatings{std::numeric_limits<double>::quiet_NaN(),
                                            std::numeric_limits<double>::infinity(),
                                            -std::numeric_limits<double>::infinity(),
                                            -0.0,
                                            0.1,
                                            1e300,
                                            9007199254740992.0,
                                            9223372036854775808.0,
                                            -9223372036854775808.0,
                                            18446744073709551616.0,
                                            5e-324,
                                            -1.5,
                                            1e-40,
                                            3e9,
                                            65.0,
                                            -2.9};

std::int64_t numberField(void* handle) {
  std::int64_t number = 0;
  vorn_field_get_integer(handle, "n", &number);
  return number;
}

int callsBeforeRaise = -1;
bool hasRaised = false;

bool mustRaise() {
  if (callsBeforeRaise < 0 || callsBeforeRaise-- > 0) return false;
  hasRaised = true;
  noteFault();
  vorn_raise("HookException", "a hook raised");
  return true;
}

bool itemsEqual(void* self, void* other, void*) {
  if (mustRaise()) return false;
  return vorn_is_instance(other, "fuzz.Item") != 0 && numberField(self) == numberField(other);
}

int compareItems(void* self, void* other, bool* comparable, void*) {
  *comparable = !mustRaise() && vorn_is_instance(other, "fuzz.Item") != 0;
  if (!*comparable) return 0;
  const std::int64_t left = numberField(self);
  const std::int64_t right = numberField(other);
  return left < right ? -1 : left > right ? 1 : 0;
}

// Few hashes, so that different items collide.
std::uint64_t hashItem(void* self, void*) {
  return mustRaise() ? 0 : static_cast<std::uint64_t>(numberField(self)) % 3;
}

// The types by the library's own numbers, told apart by their names.
Type typeOfBox(const ObjectRecord& object) {
  static const std::array<Type, collections::kPrimitiveTypes> types = [] {
    std::array<Type, collections::kPrimitiveTypes> made{};
    for (std::size_t i = 1; i < made.size(); ++i) {
      for (int type = static_cast<int>(kFirstPrimitive); type <= static_cast<int>(kLastPrimitive); ++type) {
        if (collections::kPrimitiveTypeInfos[i].name == nameOf(static_cast<Type>(type)))
          made[i] = static_cast<Type>(type);
      }
    }
    return made;
  }();
  return types[static_cast<std::size_t>(boxedTypeOf(object))];
}

template <class Number>
int sign(Number left, Number right) {
  return left < right ? -1 : left > right ? 1 : 0;
}

// NaN after all others, and equal to itself.
int compareNumbers(const Value& left, const Value& right) {
  const long double x = numberOf(left);
  const long double y = numberOf(right);
  if (std::isnan(x) || std::isnan(y)) return sign(std::isnan(x), std::isnan(y));
  return sign(x, y);
}

bool isSame(const Value& left, const Value& right) {
  if (left.type == Type::None || right.type == Type::None) return left.type == right.type;
  return left.handle != nullptr && left.handle == right.handle;
}

// Types that some comparisons take for integers; Char and CodeUnit are none of them.
bool isIntegerLike(Type type) { return isPrimitive(type) && !isCharacter(type) && !isFloating(type); }

}  // namespace

const char* nameOf(Type type) { return kTypeRows[static_cast<std::size_t>(type)].name; }
Kind kindOf(Type type) { return kTypeRows[static_cast<std::size_t>(type)].kind; }

int widthOf(Kind kind) {
  constexpr int kWidths[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 1};
  return kWidths[static_cast<std::size_t>(kind)];
}

std::string_view textOf(const Value& value) { return kTextTable[static_cast<std::size_t>(value.integer)]; }

void armHooks(int calls) {
  callsBeforeRaise = calls;
  hasRaised = false;
}

bool haveHooksRaised() { return hasRaised; }

void defineValueClasses() {
  armHooks(-1);
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"n", VORN_FIELD_INTEGER}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = "fuzz.Plain";
    definition.fields = fields;
    definition.field_count = 1;
    if (vorn_class_define(&definition) == 0) return false;
    definition.name = "fuzz.Item";
    definition.equals = itemsEqual;
    definition.compare = compareItems;
    definition.hash = hashItem;
    return vorn_class_define(&definition) != 0;
  }();
  if (!defined) std::abort();
}

Type choosePrimitive(Input& input) { return static_cast<Type>(1 + input.below(13)); }
Type chooseType(Input& input) { return static_cast<Type>(input.below(19)); }

Value chooseValue(Input& input, Type type) {
  Value value;
  value.type = type != Type::None ? type : chooseType(input);
  if (value.type == Type::None) return value;
  const std::uint8_t chosen = input.byte();
  const bool isSmall = chosen < 200;
  if (isFloating(value.type)) {
    value.floating = isSmall ? chosen % 8 * 0.5 - 1 : kFloatings[chosen % kFloatings.size()];
    if (value.type == Type::Float) value.floating = static_cast<float>(value.floating);
    return value;
  }
  value.integer = isSmall ? chosen % 8 : kIntegers[chosen % kIntegers.size()];
  if (value.type == Type::Boolean) value.integer &= 1;
  if (isText(value.type)) value.integer = chosen % kTexts;
  if (value.type == Type::Pair) value.integer = chosen % 4 * 10 + chosen / 4 % 4;
  return value;
}

void* make(const Value& value) {
  switch (value.type) {
    case Type::None:
    case Type::Object:
    case Type::Nowhere:
      return nullptr;
    case Type::Boolean:
      return vorn_box_boolean(value.integer != 0);
    case Type::Float:
    case Type::Double:
      return vorn_box_floating(nameOf(value.type), value.floating);
    case Type::String:
      return vorn_string_new(textOf(value).data(), textOf(value).size());
    case Type::Text:
      return vorn_text_new(std::string(textOf(value)).c_str());
    case Type::Item:
    case Type::Plain: {
      void* const object = vorn_object_new(value.type == Type::Item ? "fuzz.Item" : "fuzz.Plain");
      vorn_field_set_integer(object, "n", value.integer);
      return object;
    }
    case Type::Pair: {
      static RootedSlots<2> items;
      items[0] = vorn_box_int(static_cast<std::int32_t>(value.integer / 10));
      items[1] = vorn_box_int(static_cast<std::int32_t>(value.integer % 10));
      void* const pair = vorn_tuple_new(nullptr, &items[0], 2);
      items.clear();
      return pair;
    }
    default:
      return vorn_box_integer(nameOf(value.type), value.integer);
  }
}

void requireValue(const char* what, void* handle, Value& value) {
  if (value.type == Type::None || value.handle != nullptr) {
    if (handle != value.handle) diverge(what, describe(handle), describe(value));
    // What stands behind the handle must still be there.
    if (isPrimitive(value.type) && typeOfBox(*getObject(handle)) != value.type) {
      diverge(what, describe(handle), describe(value));
    }
    return;
  }
  bool same = false;
  if (const RegisteredObject* const box = getRegisteredObjectUnsafe(handle);
      box != nullptr && isPrimitive(value.type)) {
    same = typeOfBox(*box) == value.type;
    if (same && isFloating(value.type)) {
      const double actual = std::bit_cast<double>(box->integer);
      same = std::bit_cast<std::int64_t>(value.floating) == box->integer ||
             (std::isnan(actual) && std::isnan(value.floating));
    } else if (same) {
      same = box->integer == value.integer;
    }
  }
  if (!same) diverge(what, describe(handle), describe(value));
  value.handle = handle;
}

std::string describe(const Value& value) {
  if (value.type == Type::None) return "null";
  std::string text = nameOf(value.type);
  if (isFloating(value.type)) {
    text += " " + std::to_string(value.floating);
  } else if (isText(value.type)) {
    text += " \"" + std::string(textOf(value)) + "\"";
  } else {
    text += " " + std::to_string(value.integer);
  }
  return text + (value.handle != nullptr ? " (the object given)" : "");
}

std::string describe(void* handle) {
  if (handle == nullptr) return "null";
  std::string text = vorn_type_name(handle);
  std::int64_t integer = 0;
  double floating = 0;
  if (vorn_unbox_integer(handle, &integer) != 0) text += " " + std::to_string(integer);
  if (vorn_unbox_floating(handle, &floating) != 0) text += " " + std::to_string(floating);
  if (const char* const characters = vorn_string_text(handle)) text += std::string(" \"") + characters + "\"";
  return text;
}

std::int64_t truncated(double value) {
  const bool fits = value >= -9223372036854775808.0 && value < 9223372036854775808.0;
  return fits ? static_cast<std::int64_t>(value) : INT64_MIN;
}

std::int64_t integerOf(const Value& value) {
  if (!isPrimitive(value.type)) return 0;
  return isFloating(value.type) ? truncated(value.floating) : value.integer;
}

double floatingOf(const Value& value) {
  if (!isPrimitive(value.type)) return 0;
  return isFloating(value.type) ? value.floating : static_cast<double>(value.integer);
}

// 64 bits of fraction hold every integer of 64 bits and every double.
long double numberOf(const Value& value) {
  static_assert(std::numeric_limits<long double>::digits >= 64);
  if (isFloating(value.type)) return value.floating;
  if (value.type == Type::ULong) return static_cast<long double>(static_cast<std::uint64_t>(value.integer));
  return static_cast<long double>(value.integer);
}

bool areElementsEqual(const Value& left, const Value& right) {
  if (isSame(left, right)) return true;
  if (isNumber(left.type) && isNumber(right.type)) return numberOf(left) == numberOf(right);
  if (isText(left.type) && isText(right.type)) return textOf(left) == textOf(right);
  const auto isNullOrText = [](const Value& value) { return value.type == Type::None || isText(value.type); };
  if (isNullOrText(left) || isNullOrText(right)) return false;
  // Beside a floating number everything counts as the integer in its field "_value", or as 0.
  if (isFloating(left.type)) return left.floating == static_cast<double>(integerOf(right));
  if (isFloating(right.type)) return static_cast<double>(integerOf(left)) == right.floating;
  if (isIntegerLike(left.type) && isIntegerLike(right.type)) return left.integer == right.integer;
  return areDeepEqual(left, right);
}

bool areDeepEqual(const Value& left, const Value& right) {
  if (isSame(left, right)) return true;
  if (isNumber(left.type) && isNumber(right.type)) return numberOf(left) == numberOf(right);
  if (isText(left.type) && isText(right.type)) return textOf(left) == textOf(right);
  if (left.type != right.type || left.type == Type::Plain) return false;
  return left.integer == right.integer;
}

bool haveOneOrder(const Value& left, const Value& right) {
  const auto sort = [](Type type) {
    if (isNumber(type)) return 1;
    switch (type) {
      case Type::String:
        return 2;
      case Type::None:
      case Type::Text:
        return 3;
      case Type::Item:
        return 4;
      case Type::Pair:
        return 5;
      case Type::Boolean:
        return 6;
      default:
        return 7;  // Char, CodeUnit and Plain: whatever the order, it is one
    }
  };
  return sort(left.type) == sort(right.type);
}

int compareElements(const Value& left, const Value& right) {
  if (isSame(left, right)) return 0;
  if (isNumber(left.type)) return compareNumbers(left, right);
  if (left.type == Type::None || right.type == Type::None)
    return sign(left.type != Type::None, right.type != Type::None);
  if (isText(left.type)) return sign(textOf(left), textOf(right));
  const bool hasNoOrder = isCharacter(left.type) || left.type == Type::Plain;
  return hasNoOrder ? 0 : sign(left.integer, right.integer);
}

int compareKeys(const Value& left, const Value& right) {
  const auto rank = [](Type type) {
    if (type == Type::None) return 0;
    if (isNumber(type)) return 1;
    switch (type) {
      case Type::Boolean:
        return 2;
      case Type::Char:
        return 3;
      case Type::CodeUnit:
        return 4;
      case Type::String:
      case Type::Text:
        return 5;
      case Type::Plain:
        return 6;
      case Type::Pair:
        return 7;
      default:
        return 8;
    }
  };
  if (const int byRank = sign(rank(left.type), rank(right.type)); byRank != 0) return byRank;
  switch (rank(left.type)) {
    case 0:
      return 0;
    case 1:
      return compareNumbers(left, right);
    case 5:
      return sign(textOf(left), textOf(right));
    case 6:
      return sign(reinterpret_cast<std::uintptr_t>(left.handle), reinterpret_cast<std::uintptr_t>(right.handle));
    default:
      return sign(left.integer, right.integer);
  }
}

}  // namespace vorn::fuzz
