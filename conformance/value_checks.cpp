// values.h: boxes, Strings, characters and slots.
#include <cmath>
#include <cstring>
#include <limits>

#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

constexpr long long kEnds[] = {
    0, -1, 255, 40'000, std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()};

const char* const kCharError =
    "ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)";
const char* const kCodeUnitError = "TypeError: CodeUnit code unit out of range (0..0xFFFF)";

}  // namespace

Checks valueChecks() {
  return {
      {"Vorn_boxBool", "gives one of two shared boxes",
       [] {
         for (const bool value : {false, true}) {
           void* const first = Vorn_boxBool(value);
           expectTrue("there is one box of " + shown(value), Vorn_boxBool(value) == first);
         }
         expect("the value of true", Vorn_getField_i1(Vorn_boxBool(true), "_value"), true);
         expect("the value of false", Vorn_getField_i1(Vorn_boxBool(false), "_value"), false);
       }},
      {"Vorn_strEquals", "compares bytes, and null with null alone",
       [] {
         char copy[] = "text";
         expectTrue("equal texts", Vorn_strEquals("text", copy) != 0);
         expect("different texts", Vorn_strEquals("text", "texts"), 0);
         expect("a text and null", Vorn_strEquals("", nullptr), 0);
         expect("null and a text", Vorn_strEquals(nullptr, ""), 0);
         expectTrue("null and null", Vorn_strEquals(nullptr, nullptr) != 0);
       }},
      {"boxIntegerLikeLocal", "makes a new box of the named type that keeps all 64 bits",
       [] {
         for (const char* type : kIntegerTypes) {
           for (const long long value : kEnds) {
             void* const made = box(type, value);
             expect("the type", Vorn_objectTypeName(made), std::string("vorn.") + type);
             expect(std::string("the value of a box of ") + type, Vorn_getField_i64(made, "_value"), value);
             expectTrue("another box is another object", box(type, value) != made);
           }
         }
       }},
      {"boxIntegerLikeLocal", "makes character boxes, and gives the shared box for Boolean",
       [] {
         expect("Char", Vorn_objectTypeName(box("Char", 65)), "vorn.Char");
         expect("CodeUnit", Vorn_objectTypeName(box("CodeUnit", 65)), "vorn.CodeUnit");
         expectTrue("Boolean", box("Boolean", 1) == Vorn_boxBool(true));
       }},
      {"boxIntegerLikeLocal",
       "knows names with the language's module, and boxes under any other as Int, or as Long beyond 32 bits",
       [] {
         expect("vorn.Short", Vorn_objectTypeName(box("vorn.Short", 1)), "vorn.Short");
         expect("a small number under another name", Vorn_objectTypeName(box("app.Money", -2'147'483'648LL)),
                "vorn.Int");
         expect("a large number under another name", Vorn_objectTypeName(box("app.Money", 2'147'483'648LL)),
                "vorn.Long");
       }},
      {"boxFloatingLikeLocal", "makes a new box of a Double that keeps every bit",
       [] {
         for (const double value : {0.1, -0.0, 1e308, std::numeric_limits<double>::quiet_NaN()}) {
           void* const made = box("Double", value);
           expect("the type", Vorn_objectTypeName(made), "vorn.Double");
           expect("the value", Vorn_getField_double(made, "_value"), value);
           expect("the sign", std::signbit(Vorn_getField_double(made, "_value")), std::signbit(value));
           expectTrue("another box is another object", box("Double", value) != made);
         }
         expect("another name", Vorn_objectTypeName(box("app.Money", 0.5)), "vorn.Double");
       }},
      {"boxFloatingLikeLocal", "makes a box of a Float that holds single precision",
       [] {
         expect("the type", Vorn_objectTypeName(box("Float", 0.1)), "vorn.Float");
         expect("the value of a Float box of 0.1", Vorn_getField_double(box("Float", 0.1), "_value"),
                static_cast<double>(0.1F));
       }},
      {"Vorn_allocString", "makes a new String with a copy of the text, NUL bytes included",
       [] {
         std::string text("before\0after, and longer than a key of a short text", 51);
         void* const made = string(text);
         const std::string expected = text;
         text.assign(text.size(), 'x');
         expect("the type", Vorn_objectTypeName(made), "vorn.String");
         expect("the text", stringTextFromPtr(made), expected);
         expectTrue("another String is another object", string(expected) != made);
         expect("an empty text", stringTextFromPtr(string({})), "");
       }},
      {"stringTextFromPtr", "gives the text of a String and of a bare text, and nothing for another object",
       [] {
         expect("a String", stringTextFromPtr(string("text")), "text");
         expect("a bare text", stringTextFromPtr(bare("text")), "text");
         expect("a list", stringTextFromPtr(object("ArrayList")), "");
       }},
      {"slotKindForArrayElementType",
       "gives every primitive type its slots, by short and full name, and handles to all others",
       [] {
         using collections::kPrimitiveTypeInfos;
         const auto slotOf = [](const std::string& name) {
           return static_cast<int>(slotKindForArrayElementType(name));
         };
         for (std::size_t i = 1; i < collections::kPrimitiveTypes; ++i) {
           const std::string name(kPrimitiveTypeInfos[i].name);
           const int expected = static_cast<int>(collections::slotKindOf(kPrimitiveTypeInfos[i].kind));
           expect(name, slotOf(name), expected);
           expect("vorn." + name, slotOf("vorn." + name), expected);
         }
         for (const char* name : {"Object", "String", "ArrayList<Int>", "", "int"}) {
           expect(name, slotOf(name), static_cast<int>(ArraySlotKind::Object));
         }
       }},
      {"extractArrayElementInteger", "unboxes the eight integer types, and nothing else",
       [] {
         for (const char* type : kIntegerTypes) {
           long long value = 0;
           expectTrue(type, extractArrayElementInteger(box(type, 42), value));
           expect(type, value, 42LL);
         }
         long long value = 7;
         for (void* other : {box("Double", 1.0), Vorn_boxBool(true), box("Char", 65), string("1"), bare("1"),
                             static_cast<void*>(nullptr)}) {
           expect("a value that is no integer", extractArrayElementInteger(other, value), false);
         }
         expect("what is not stored", value, 7LL);
       }},
      {"extractArrayElementDouble", "unboxes numbers of every type, and nothing else",
       [] {
         double value = 0;
         expectTrue("Double", extractArrayElementDouble(box("Double", 2.5), value));
         expect("Double", value, 2.5);
         expectTrue("Long", extractArrayElementDouble(box("Long", -3), value));
         expect("Long", value, -3.0);
         for (void* other : {Vorn_boxBool(true), box("Char", 65), string("1"), static_cast<void*>(nullptr)}) {
           expect("a value that is no number", extractArrayElementDouble(other, value), false);
         }
         expect("what is not stored", value, -3.0);
       }},
      {"extractArrayElementBool", "unboxes Booleans, and nothing else",
       [] {
         bool value = false;
         expectTrue("true", extractArrayElementBool(Vorn_boxBool(true), value));
         expect("true", value, true);
         for (void* other : {integer(0), box("Char", 65), string("true"), static_cast<void*>(nullptr)}) {
           expect("a value that is no Boolean", extractArrayElementBool(other, value), false);
         }
         expect("what is not stored", value, true);
       }},
      {"Vorn_intToChar", "gives a Unicode scalar back, and raises for any other number",
       [] {
         for (const long long scalar : {0, 65, 0xD7FF, 0xE000, 0x10FFFF})
           expect("a scalar", Vorn_intToChar(scalar), scalar);
         for (const long long other : {-1LL, 0xD800LL, 0xDFFFLL, 0x110000LL, 0x1'0000'0041LL}) {
           expect("no scalar", Vorn_intToChar(other), 0LL);
           expectRaised("Vorn_intToChar(" + std::to_string(other) + ")", kCharError);
         }
       }},
      {"Vorn_intToCodeUnit", "gives a 16-bit number back, and raises for any other",
       [] {
         for (const long long unit : {0, 65, 0xD800, 0xFFFF}) expect("a code unit", Vorn_intToCodeUnit(unit), unit);
         for (const long long other : {-1LL, 0x10000LL, 0x1'0000'0041LL}) {
           expect("no code unit", Vorn_intToCodeUnit(other), 0LL);
           expectRaised("Vorn_intToCodeUnit(" + std::to_string(other) + ")", kCodeUnitError);
         }
       }},
      {"Vorn_codeUnitToString", "gives the UTF-8 of a code unit, and null above 0xFFFF",
       [] {
         expect("U+0041", Vorn_codeUnitToString(0x41), "A");
         expect("U+00E9", Vorn_codeUnitToString(0xE9), "\xC3\xA9");
         expect("U+20AC", Vorn_codeUnitToString(0x20AC), "\xE2\x82\xAC");
         expect("U+FFFF", Vorn_codeUnitToString(0xFFFF), "\xEF\xBF\xBF");
         expectTrue("0x10000", Vorn_codeUnitToString(0x10000) == nullptr);
         expectTrue("-1", Vorn_codeUnitToString(-1) == nullptr);
       }},
  };
}

}  // namespace vorn::conformance
