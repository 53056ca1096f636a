// Turns values into texts and the texts back: numbers, characters, texts with any bytes, options of the runtime and names
// of types. What comes back must be what went in, and the texts what another way to write them gives.
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "collections/core/port/keys.h"
#include "collections/core/port/text.h"
#include "collections/core/port/values.h"
#include "fuzz/values.h"

namespace vorn::fuzz {
namespace {

std::string utf8(std::uint64_t scalar) {
  if (scalar > 0x10FFFF || (scalar >= 0xD800 && scalar <= 0xDFFF)) scalar = 0xFFFD;
  std::string text;
  const auto add = [&](std::uint64_t byte) { text += static_cast<char>(byte); };
  if (scalar < 0x80) {
    add(scalar);
  } else if (scalar < 0x800) {
    add(0xC0 | scalar >> 6);
    add(0x80 | (scalar & 63));
  } else if (scalar < 0x10000) {
    add(0xE0 | scalar >> 12);
    add(0x80 | (scalar >> 6 & 63));
    add(0x80 | (scalar & 63));
  } else {
    add(0xF0 | scalar >> 18);
    add(0x80 | (scalar >> 12 & 63));
    add(0x80 | (scalar >> 6 & 63));
    add(0x80 | (scalar & 63));
  }
  return text;
}

// Reads what stands between quotes in a display, by the rules of JSON.
std::string unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) < 0x20 || text[i] == '"')
      diverge("an escape", text, "no bare control or quote");
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    const char kind = ++i < text.size() ? text[i] : '\0';
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeant = "\"\\/\b\f\n\r\t";
    if (const std::size_t at = kLetters.find(kind); at != std::string_view::npos && kind != '\0') {
      plain += kMeant[at];
    } else if (kind == 'u' && i + 4 < text.size()) {
      unsigned code = 0;
      std::from_chars(text.data() + i + 1, text.data() + i + 5, code, 16);
      plain += utf8(code);
      i += 4;
    } else {
      diverge("an escape", text, "one of JSON");
    }
  }
  return plain;
}

class Texts {
 public:
  explicit Texts(Input& input) : input_(input) { roots().clear(); }

  // ---- Numbers ----

  void floating() {
    const double value =
        input_.flag() ? std::bit_cast<double>(input_.word()) : chooseValue(input_, Type::Double).floating;
    const std::string text = formatVornFloat(value);
    requireReadsBack(text, value);
    root() = vorn_box_double(value);
    requireSame("the text of a Double", Vorn_objectToString(root()), text);
    requireSame("the display of a Double", valueToDisplayString(root()), text);
    requireSame("the text of a key", mapKeyString(root()), text);
  }

  void single() {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(input_.word()));
    root() = vorn_box_float(value);
    const std::string text = Vorn_objectToString(root());
    requireReadsBack(text, static_cast<double>(value));
    float back = 0;
    requireEqual("unboxing a Float", vorn_unbox_float(root(), &back), 1);
    requireEqualFloating("a Float", static_cast<double>(back), static_cast<double>(value));
  }

  void integer() {
    const Type type = static_cast<Type>(1 + input_.below(11));
    const auto value = static_cast<std::int64_t>(input_.flag() ? input_.word() : input_.byte());
    if (isCharacter(type) || isFloating(type)) return;
    root() = vorn_box_integer(nameOf(type), value);
    const std::string text = Vorn_objectToString(root());
    requireSame("the display of an integer", valueToDisplayString(root()), text);
    requireSame("the text of an integer", integerLikeToDisplayString(nameOf(type), value), text);
    const char* const end = text.data() + text.size();
    std::int64_t back = 0;
    if (type == Type::ULong) {
      std::uint64_t bits = 0;
      requireEqual("reading an integer", std::from_chars(text.data(), end, bits).ptr == end ? 1 : 0, 1);
      back = static_cast<std::int64_t>(bits);
    } else {
      requireEqual("reading an integer", std::from_chars(text.data(), end, back).ptr == end ? 1 : 0, 1);
    }
    requireEqual("an integer", back, value);
  }

  // Many at once, between separators.
  void joined() {
    const bool integers = input_.flag();
    root() = vorn_object_new(integers ? "ArrayList<Long>" : "ArrayList<Double>");
    std::vector<std::uint64_t> bits(input_.below(20));
    for (std::uint64_t& word : bits) {
      word = input_.word();
      if (integers) {
        vorn_collections_ArrayList_addPrimitiveI64(root(), static_cast<long long>(word), "Long");
      } else {
        vorn_collections_ArrayList_addPrimitiveDouble(root(), std::bit_cast<double>(word), nullptr);
      }
    }
    const std::string text(stringTextFromPtr(vorn_collections_ArrayList_join(root(), ";")));
    std::size_t from = 0;
    for (const std::uint64_t word : bits) {
      const std::size_t end = std::min(text.find(';', from), text.size());
      const std::string part = text.substr(from, end - from);
      from = end + 1;
      if (integers) {
        requireSame("a joined integer", part, std::to_string(static_cast<std::int64_t>(word)));
      } else {
        requireReadsBack(part, std::bit_cast<double>(word));
      }
    }
    requireEqual("the end of a join", static_cast<std::int64_t>(from),
                 bits.empty() ? 0 : static_cast<std::int64_t>(text.size() + 1));
  }

  // ---- Characters and texts ----

  void character() {
    const bool isUnit = input_.flag();
    const auto value = static_cast<std::int64_t>(input_.flag() ? input_.word() : input_.word() % 0x120000);
    const bool isScalar = static_cast<std::uint64_t>(value) <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    const bool isGood = isUnit ? static_cast<std::uint64_t>(value) <= 0xFFFF : isScalar;
    requireEqual("a conversion", isUnit ? Vorn_intToCodeUnit(value) : Vorn_intToChar(value), isGood ? value : 0);
    if (!isGood) {
      const ExpectedError error =
          isUnit ? ExpectedError{"TypeError", "CodeUnit code unit out of range (0..0xFFFF)"}
                 : ExpectedError{"ValueException",
                                 "Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)"};
      requireErrors("a conversion", {&error, 1});
    }
    requireNoError("a conversion");
    root() = vorn_box_integer(isUnit ? "CodeUnit" : "Char", value);
    std::string text = utf8(static_cast<std::uint64_t>(value));
    requireSame("the text of a character", Vorn_objectToString(root()), text.c_str());
    if (isGood && isScalar && value <= 0xFFFF) {
      requireSame("the text of a unit", Vorn_codeUnitToString(value), text.c_str());
    }
    if (static_cast<std::uint64_t>(value) > 0xFFFF && Vorn_codeUnitToString(value) != nullptr) {
      diverge("the text of a unit", "a text", "null");
    }
  }

  void text() {
    const std::string text = anyText();
    requireSame("an escape", unescaped(escapeDisplayString(text)), text);
    root() = vorn_string_new(text.data(), text.size());
    requireSame("a String", stringTextFromPtr(root()), text);
    requireSame("a String as a C string", vorn_string_text(root()), text.c_str());
    const std::string display = valueToDisplayString(root());
    requireSame("the display of a String", display, "\"" + escapeDisplayString(text) + "\"");
    void* const bare = roots()[1] = vorn_text_new(text.c_str());
    requireSame("a bare text", vorn_string_text(bare), text.c_str());
    requireEqual("being an object", vorn_is_object(bare), 0);
    const bool same = text.find('\0') == std::string::npos;
    requireEqual("equality of texts", vorn_equals(root(), bare), same ? 1 : 0);
    // A map finds a text under either form.
    void* const map = roots()[2] = vorn_object_new("Map");
    vorn_collections_Map_put(map, root(), bare);
    requireEqual("a text as a key", vorn_collections_Map_operator_in(map, bare) ? 1 : 0, same ? 1 : 0);
    void* found = nullptr;
    requireEqual("a text as a key", tryMapLookupValue(map, text, &found) ? 1 : 0, 1);
  }

  // ---- Names and options ----

  void typeName() {
    std::string name = anyName(0);
    root() = vorn_object_new(name.c_str());
    if (root() == nullptr) return;
    const std::string full = vorn_type_name(root());
    requireEqual("being an instance of the name given", vorn_is_instance(root(), name.c_str()), 1);
    requireEqual("being an instance of the full name", vorn_is_instance(root(), full.c_str()), 1);
    requireEqual("being an Object", vorn_is_instance(root(), "Object"), 1);
    void* const again = roots()[1] = vorn_object_new(full.c_str());
    if (again == nullptr) diverge("an object by its full name", "null", full);
    requireSame("a full name", vorn_type_name(again), full);
  }

  void options() {
    constexpr std::string_view kParts[] = {
        "heap=",   "stress", "collected", "plain", ",", "one-in=", "seed=", "room=", "divisor=",
        "recent=", "huge=",  "stacks=",   "0",     "1", "3",       "64",    "-1",    "99999999999999999999",
        "=",       " ",      "recent",    ""};
    std::string text;
    const std::size_t count = input_.below(12);
    for (std::size_t i = 0; i < count; ++i) text += kParts[input_.below(std::size(kParts))];
    vorn_runtime_options before;
    std::memset(&before, 0x5A, sizeof(before));
    vorn_runtime_options options = before;
    const int parsed = vorn_runtime_parse_options(text.c_str(), &options);
    if (parsed == 0) {
      requireEqual("options that are refused being unchanged", std::memcmp(&options, &before, sizeof(options)), 0);
    } else {
      requireEqual("the size of options", static_cast<std::int64_t>(options.struct_size), sizeof(options));
    }
  }

 private:
  static RootedSlots<3>& roots() {
    static RootedSlots<3> made;
    return made;
  }
  static void*& root() { return roots()[0]; }

  // The shortest text that reads back, with a point or an exponent.
  static void requireReadsBack(const std::string& text, double value) {
    if (std::isnan(value)) return requireSame("the text of a NaN", text, "NaN");
    if (std::isinf(value)) return requireSame("the text of an infinity", text, value < 0 ? "-Infinity" : "Infinity");
    char* end = nullptr;
    requireEqualFloating("a number read back", std::strtod(text.c_str(), &end), value);
    requireEqual("the end of a number", *end, '\0');
    if (text.find_first_of(".e") == std::string::npos) diverge("a floating number", text, "a point or an exponent");
    char shortest[40];
    for (int digits = 0; digits < 18; ++digits) {
      std::snprintf(shortest, sizeof(shortest), "%.*e", digits, value);
      if (std::strtod(shortest, nullptr) == value) break;
    }
    // A whole number has ".0" behind it.
    if (text.size() > std::strlen(shortest) + 2) diverge("a floating number", text, shortest);
  }

  std::string anyText() {
    std::string text;
    const std::size_t size = input_.below(40);
    const std::uint8_t alphabet = input_.byte();
    for (std::size_t i = 0; i < size; ++i) {
      const std::uint8_t byte = input_.byte();
      if (alphabet % 4 == 0) {
        text += static_cast<char>(byte);
      } else if (alphabet % 4 == 1) {
        text += utf8(byte * 257);
      } else {
        text += "abc\"\\\n\x01\x7F"[byte % 8];
      }
    }
    return text;
  }

  // From few words, since every name that is known stays so.
  std::string anyName(int depth) {
    constexpr const char* kWords[] = {"ArrayList", "Map",      "Tuple", "vorn.Int", "Int", "vorn.collections.HashSet",
                                      "Array",     "String",   "vorn",  ".",        "",    "Nothing",
                                      "fuzz.Item", "SortedMap"};
    std::string name = kWords[input_.below(std::size(kWords))];
    const std::size_t arguments = depth < 2 ? input_.below(5) : 0;
    if (arguments == 0 || arguments > 2) return name;
    name += '<';
    for (std::size_t i = 0; i < arguments; ++i) {
      if (i != 0) name += input_.flag() ? ", " : ",";
      name += anyName(depth + 1);
    }
    return input_.byte() % 8 != 0 ? name + ">" : name;
  }

  Input& input_;
};

constexpr Operation<Texts> kOperations[] = {
    {"floating number", &Texts::floating}, {"single precision", &Texts::single},
    {"integer", &Texts::integer},          {"join", &Texts::joined},
    {"character", &Texts::character},      {"text", &Texts::text},
    {"type name", &Texts::typeName},       {"options", &Texts::options},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
