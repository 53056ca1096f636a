// text.h: the language's texts, and random bits.
#include "collections/core/port/text.h"

#include <cmath>
#include <limits>
#include <set>

#include "collections/core/port/pending_errors.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

void* hookText(void*) { return Vorn_allocString("text of a hook"); }
void* noText(void*) { return nullptr; }

}  // namespace

Checks textChecks() {
  return {
      {"Vorn_objectToString", "gives texts themselves, numbers in decimal, Booleans, characters, and null for null",
       [] {
         expect("a String", Vorn_objectToString(string(R"(a "text")")), R"(a "text")");
         expect("a bare text", Vorn_objectToString(bare("text")), "text");
         expect("an Int", Vorn_objectToString(integer(-5)), "-5");
         expect("a ULong", Vorn_objectToString(box("ULong", -1)), "18446744073709551615");
         expect("a Double", Vorn_objectToString(box("Double", 2.0)), "2.0");
         expect("true", Vorn_objectToString(Vorn_boxBool(true)), "true");
         expect("a Char", Vorn_objectToString(box("Char", 0x20AC)), "\xE2\x82\xAC");
         expectTrue("null", Vorn_objectToString(nullptr) == nullptr);
       }},
      {"Vorn_objectToString", "gives a collection its display",
       [] {
         expect("a list", Vorn_objectToString(listOf("ArrayList", {integer(1), string("a")})), R"([1, "a"])");
         expect("a tuple", Vorn_objectToString(tupleOf({integer(1)})), "(1,)");
       }},
      {"Vorn_objectToString", "asks the toString of a user class, and gives null when that gives none",
       [] {
         adapter().defineClass({.name = "conformance.Shown", .toString = hookText});
         adapter().defineClass({.name = "conformance.Hidden", .toString = noText});
         expect("an instance with a text", Vorn_objectToString(object("conformance.Shown")), "text of a hook");
         expectTrue("an instance without", Vorn_objectToString(object("conformance.Hidden")) == nullptr);
       },
       Needs::Hooks},
      {"integerLikeToDisplayString", "gives the decimal number, unsigned for ULong",
       [] {
         expect("-1 as Int", integerLikeToDisplayString("Int", -1), "-1");
         expect("the smallest Long", integerLikeToDisplayString("Long", std::numeric_limits<long long>::min()),
                "-9223372036854775808");
         expect("-1 as ULong", integerLikeToDisplayString("ULong", -1), "18446744073709551615");
       }},
      {"formatVornFloat", "gives the shortest text that reads back, with a point or an exponent",
       [] {
         expect("1", formatVornFloat(1.0), "1.0");
         expect("-0", formatVornFloat(-0.0), "-0.0");
         expect("0.1", formatVornFloat(0.1), "0.1");
         for (const double value : {1.0 / 3, 1e23, 5e-324, 1e300, 123456789.125, 0x1p63}) {
           const std::string text = formatVornFloat(value);
           expect("what " + text + " reads back as",
                  std::stod(text.find("324") != std::string::npos ? "0x1p-1074" : text), value);
           expectTrue(text + " has a point or an exponent", text.find_first_of(".e") != std::string::npos);
           expectTrue(text + " is no longer than needed", text.size() <= 23);
         }
         expect("NaN", formatVornFloat(std::numeric_limits<double>::quiet_NaN()), "NaN");
         expect("infinity", formatVornFloat(std::numeric_limits<double>::infinity()), "Infinity");
         expect("minus infinity", formatVornFloat(-std::numeric_limits<double>::infinity()), "-Infinity");
       }},
      {"escapeDisplayString", "escapes quotes, backslashes and control characters as JSON does, and nothing else",
       [] {
         expect("quotes", escapeDisplayString(R"(say "a\b")"), R"(say \"a\\b\")");
         expect("controls", escapeDisplayString("\b\f\n\r\t"), R"(\b\f\n\r\t)");
         expect("other controls", escapeDisplayString(std::string_view("\0\x1F", 2)), R"(\u0000\u001f)");
         expect("the rest", escapeDisplayString("a/\x7F\xC3\xA9"), "a/\x7F\xC3\xA9");
       }},
      {"formatObjectDefault", "gives a character itself, and begins any other object's text with the class name",
       [] {
         expect("a Char", formatObjectDefault(box("Char", 65), "Char"), "A");
         expect("a CodeUnit that is no scalar", formatObjectDefault(box("CodeUnit", 0xD800), "CodeUnit"),
                "\xEF\xBF\xBD");
         adapter().defineClass({"conformance.Plain"});
         expectTrue("an instance's text begins with its class name",
                    formatObjectDefault(object("conformance.Plain"), "Shown").starts_with("Shown"));
       }},
      {"nextFastRandomU64", "gives other bits at every call, each of them as often set as not",
       [] {
         constexpr int kCalls = 1000;
         int set[64] = {};
         std::set<std::uint64_t> seen;
         for (int i = 0; i < kCalls; ++i) {
           const std::uint64_t bits = nextFastRandomU64();
           seen.insert(bits);
           for (int bit = 0; bit < 64; ++bit) set[bit] += static_cast<int>(bits >> bit & 1);
         }
         expect("how many of 1000 numbers differ", seen.size(), std::size_t{kCalls});
         for (const int count : set)
           expectTrue("a bit is set in about half of 1000 numbers", count > 380 && count < 620);
       }},
  };
}

}  // namespace vorn::conformance
