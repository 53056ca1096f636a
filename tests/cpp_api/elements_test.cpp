// Every C++ type that stands for a type of the language, through every collection and back.
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/cpp_api/cpp_api_test.h"

namespace vorn::tests {
namespace {

// The type's name in the language and three values of it in ascending order, its extremes among them.
template <class T>
struct Samples {
  static std::vector<T> values() { return {std::numeric_limits<T>::lowest(), T{1}, std::numeric_limits<T>::max()}; }
};
template <>
struct Samples<bool> {
  static std::vector<bool> values() { return {false, true}; }
};
template <>
struct Samples<char32_t> {
  static std::vector<char32_t> values() { return {U'\0', U'ß', 0x10FFFF}; }
};
template <>
struct Samples<char16_t> {
  static std::vector<char16_t> values() { return {u'a', 0xD800, 0xFFFF}; }
};
template <>
struct Samples<std::string> {
  static std::vector<std::string> values() { return {"", "a text that is longer than any small buffer", "größer"}; }
};

template <class T>
const char* languageName();
template <>
const char* languageName<std::int8_t>() {
  return "SByte";
}
template <>
const char* languageName<std::uint8_t>() {
  return "Byte";
}
template <>
const char* languageName<std::int16_t>() {
  return "Short";
}
template <>
const char* languageName<std::uint16_t>() {
  return "UShort";
}
template <>
const char* languageName<std::int32_t>() {
  return "Int";
}
template <>
const char* languageName<std::uint32_t>() {
  return "UInt";
}
template <>
const char* languageName<std::int64_t>() {
  return "Long";
}
template <>
const char* languageName<std::uint64_t>() {
  return "ULong";
}
template <>
const char* languageName<float>() {
  return "Float";
}
template <>
const char* languageName<double>() {
  return "Double";
}
template <>
const char* languageName<bool>() {
  return "Boolean";
}
template <>
const char* languageName<char32_t>() {
  return "Char";
}
template <>
const char* languageName<char16_t>() {
  return "CodeUnit";
}
template <>
const char* languageName<std::string>() {
  return "String";
}

// Values are compared without EXPECT_EQ, whose printers would be most of what there is to compile.
template <class T>
class CppElements : public CppApi {};
using ElementTypes =
    ::testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t, std::int64_t,
                     std::uint64_t, float, double, bool, char32_t, char16_t, std::string>;
TYPED_TEST_SUITE(CppElements, ElementTypes);

TYPED_TEST(CppElements, BearTheLanguagesName) {
  const list<TypeParam> xs;
  EXPECT_EQ(xs.type_name(), "vorn.collections.ArrayList<" + std::string(languageName<TypeParam>()) + ">");
  const value boxed(static_cast<TypeParam>(Samples<TypeParam>::values().front()));
  EXPECT_EQ(boxed.type_name(), "vorn." + std::string(languageName<TypeParam>()));
}

TYPED_TEST(CppElements, GoIntoListsInBulkAndOneByOneAndBack) {
  const std::vector<TypeParam> samples = Samples<TypeParam>::values();
  const list<TypeParam> bulk(samples);
  list<TypeParam> single;
  for (const auto& x : samples) single.push_back(x);
  EXPECT_TRUE(bulk.to_vector() == samples);
  EXPECT_TRUE(single.to_vector() == samples);
  EXPECT_TRUE(bulk == single);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    EXPECT_TRUE(bulk.at(static_cast<std::ptrdiff_t>(i)) == samples[i]) << i;
    EXPECT_EQ(single.index_of(samples[i]), static_cast<std::ptrdiff_t>(i));
    EXPECT_TRUE(bulk.contains(samples[i]));
  }
  single[0] = samples.back();
  single.insert(1, samples.front());
  EXPECT_TRUE(single.front() == samples.back());
  EXPECT_TRUE(single.at(1) == samples.front());
  EXPECT_EQ(single.count(samples.back()), 2U);
}

// The other classes are filled and read in the same ways (CppBulk).
TYPED_TEST(CppElements, GoThroughArraysAndBoxedStorage) {
  const std::vector<TypeParam> samples = Samples<TypeParam>::values();
  array<TypeParam> xs(samples);
  EXPECT_TRUE(xs.to_vector() == samples);
  xs[-1] = samples.front();
  EXPECT_TRUE(xs.back() == samples.front());
  EXPECT_EQ(xs.last_index_of(samples.front()), static_cast<std::ptrdiff_t>(samples.size()) - 1);
  linked_list<TypeParam> boxed;
  for (const auto& x : samples) boxed.push_back(x);
  EXPECT_TRUE(boxed.to_vector() == samples);
  EXPECT_TRUE(boxed.at(1) == samples[1]);
}

TYPED_TEST(CppElements, AreKeysAndValues) {
  const std::vector<TypeParam> samples = Samples<TypeParam>::values();
  sorted_map<TypeParam, TypeParam> entries;
  set<TypeParam> elements;
  for (std::size_t i = samples.size(); i > 0; --i) {
    entries.put(samples[i - 1], samples[samples.size() - i]);
    elements.insert(samples[i - 1]);
  }
  EXPECT_TRUE(entries.keys().to_vector() == samples);
  std::size_t walked = 0;
  for (const auto& [key, mapped] : entries) {
    EXPECT_TRUE(key == samples[walked] && mapped == samples[samples.size() - 1 - walked]) << walked;
    EXPECT_TRUE(entries.at(key) == mapped && elements.erase(key)) << walked;
    ++walked;
  }
  EXPECT_EQ(walked, samples.size());
  EXPECT_TRUE(elements.empty());
}

TYPED_TEST(CppElements, GoThroughUntypedValuesAndLists) {
  const std::vector<TypeParam> samples = Samples<TypeParam>::values();
  for (const auto& x : samples) {
    const value boxed(static_cast<TypeParam>(x));
    EXPECT_TRUE(boxed.is<TypeParam>());
    EXPECT_TRUE(boxed.as<TypeParam>() == x);
    EXPECT_FALSE(value().is<TypeParam>());
    EXPECT_FALSE(value(list<int>()).is<TypeParam>());
  }
  // An undeclared list, whose elements are looked at one by one.
  const value untyped = value::from_handle(vorn_object_new("ArrayList"));
  list<TypeParam> xs = list<TypeParam>::from_handle(untyped.handle());
  for (const auto& x : samples) xs.push_back(x);
  EXPECT_TRUE(xs.to_vector() == samples);
  for (std::size_t i = 0; i < samples.size(); ++i) EXPECT_TRUE(xs.at(static_cast<std::ptrdiff_t>(i)) == samples[i]);
  list<value>::from_handle(untyped.handle()).push_back(nullptr);
  EXPECT_THROW((void)xs.back(), type_error);
  EXPECT_THROW((void)xs.to_vector(), type_error);
}

class CppNumbers : public CppApi {};

TEST_F(CppNumbers, OfAnotherType_AreReadWhereTheyFitExactly) {
  EXPECT_EQ(value(std::int64_t{7}).as<std::int32_t>(), 7);
  EXPECT_EQ(value(std::int8_t{-7}).as<std::int64_t>(), -7);
  EXPECT_EQ(value(UINT64_MAX).as<std::uint64_t>(), UINT64_MAX);
  EXPECT_EQ(value(3).as<double>(), 3.0);
  EXPECT_EQ(value(1.5F).as<double>(), 1.5);
  EXPECT_EQ(value(1.5).as<float>(), 1.5F);
  EXPECT_TRUE(std::isnan(value(std::nan("")).as<float>()));
  EXPECT_EQ(value(std::uint64_t{1} << 63).as<double>(), 0x1p63);
  EXPECT_EQ(value(INT64_MIN).as<double>(), -0x1p63);
}

TEST_F(CppNumbers, OfAnotherType_AreRefusedWhereTheyDoNotFit) {
  EXPECT_FALSE(value(std::int64_t{1} << 32).is<std::int32_t>());
  EXPECT_FALSE(value(-1).is<std::uint64_t>());
  EXPECT_FALSE(value(UINT64_MAX).is<std::int64_t>());
  EXPECT_FALSE(value((std::int64_t{1} << 53) + 1).is<double>());
  EXPECT_FALSE(value(INT64_MAX).is<double>());
  EXPECT_FALSE(value(UINT64_MAX).is<double>());
  EXPECT_FALSE(value(0.1).is<float>());
  EXPECT_FALSE(value(1e300).is<float>());
  EXPECT_FALSE(value(2.0).is<int>());
  EXPECT_FALSE(value(true).is<int>());
  EXPECT_FALSE(value(U'a').is<int>());
  EXPECT_FALSE(value(u'a').is<char32_t>());
  EXPECT_FALSE(value(1).is<bool>());
  EXPECT_EQ(thrownBy([] { (void)value("x").as<int>(); }),
            "type_error|TypeError: Int was expected, but the value is vorn.String");
  EXPECT_EQ(thrownBy([] { (void)value().as<std::string>(); }),
            "type_error|TypeError: String was expected, but the value is null");
}

TEST_F(CppNumbers, OfTheUpperHalfOfULong_AreCopiedAndOtherwiseLeftToTheLanguage) {
  const std::vector<std::uint64_t> large{1, UINT64_MAX};
  const char* const refused = "type_error|TypeError: ArrayList<ULong> cannot accept vorn.ULong";
  list<std::uint64_t> xs(large);
  EXPECT_EQ(xs.clone().to_vector(), large);
  EXPECT_EQ((list<std::uint64_t, synchronized>(large).clone().to_vector()), large);
  EXPECT_EQ(immutable_list<std::uint64_t>(large).clone().to_vector(), large);
  EXPECT_EQ(thrownBy([&] { xs.append_range(large); }), refused);
  EXPECT_EQ(thrownBy([&] { xs.insert(0, UINT64_MAX); }), refused);
  EXPECT_EQ(thrownBy([&] { (void)linked_list<std::uint64_t>(large); }), refused);
}

// The native that reads a number from a box of any type would give 2 here.
TEST_F(CppNumbers, InUndeclaredLists_AreNotTruncated) {
  list<value> anything{1, 2.5};
  list<int> xs = list<int>::from_handle(anything.handle());
  EXPECT_EQ(xs.at(0), 1);
  EXPECT_EQ(thrownBy([&] { (void)xs.at(1); }), "type_error|TypeError: Int was expected, but the value is vorn.Double");
}

TEST_F(CppNumbers, LongLongIsLong) {
  const list<long long> xs{1LL << 40, -1};
  EXPECT_EQ(xs.to_vector(), (std::vector<long long>{1LL << 40, -1}));
  EXPECT_EQ(xs.type_name(), "vorn.collections.ArrayList<Long>");
  EXPECT_TRUE(list<long>::holds(xs.handle()));
  EXPECT_EQ((map<unsigned long long, long long>{{1, 2}}.at(1)), 2);
}

class CppTexts : public CppApi {};

TEST_F(CppTexts, WhatTheLanguageDoesNotTake_IsRefusedBeforeItIsMade) {
  const std::string nul("a\0b", 3);
  const char* const nulRefused = "value_error|ValueException: U+0000 cannot be stored in a String";
  const char* const charRefused =
      "value_error|ValueException: Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)";
  list<std::string> texts;
  EXPECT_EQ(thrownBy([&] { texts.push_back(nul); }), nulRefused);
  EXPECT_EQ(thrownBy([&] { (void)list<std::string>{nul}; }), nulRefused);
  EXPECT_EQ(thrownBy([&] { (void)value(nul); }), nulRefused);
  EXPECT_EQ(thrownBy([&] { (void)string(nul); }), nulRefused);
  EXPECT_TRUE(texts.empty());
  for (const char32_t none : {char32_t{0xD800}, char32_t{0xDFFF}, char32_t{0x110000}}) {
    list<char32_t> characters{U'a'};
    array<char32_t> fixed{U'a'};
    EXPECT_EQ(thrownBy([&] { characters.push_back(none); }), charRefused);
    EXPECT_EQ(thrownBy([&] { characters[0] = none; }), charRefused);
    EXPECT_EQ(thrownBy([&] { characters.append_range(std::vector<char32_t>{U'b', none}); }), charRefused);
    EXPECT_EQ(thrownBy([&] { fixed[0] = none; }), charRefused);
    EXPECT_EQ(thrownBy([&] { (void)array<char32_t>{U'a', none}; }), charRefused);
    EXPECT_EQ(thrownBy([&] { (void)value(none); }), charRefused);
    EXPECT_EQ(characters.to_string(), "[a]");
    EXPECT_EQ(fixed.to_string(), "f:[a]");
  }
}

TEST_F(CppTexts, OneStringMayBeReferredToByMany) {
  const string text("shared");
  list<string> xs{text, text};
  EXPECT_TRUE(xs.at(0).is_same(xs.at(1)));
  EXPECT_EQ(xs.at(0), "shared");
  EXPECT_TRUE(text < string("shares"));
  EXPECT_EQ(value(text).as<std::string>(), "shared");
  EXPECT_EQ(string::from_handle(text.handle()).view(), "shared");
  EXPECT_EQ(thrownBy([] { (void)string::from_handle(value(1).handle()); }),
            "type_error|TypeError: String was expected, but the value is vorn.Int");
}

}  // namespace
}  // namespace vorn::tests
