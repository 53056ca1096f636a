// Arrays of characters and code units as text. The C library's iconv says what the bytes must be.
#include <iconv.h>

#include <cerrno>
#include <cmath>

#include "tests/array/array_cases.h"
#include "tests/array/runtime_hooks.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {
namespace {

class ArrayText : public RuntimeTest {};

constexpr const char* kNulError = error_texts::kNulInString;
constexpr const char* kHighError = error_texts::kUnpairedHighSurrogate;
constexpr const char* kLowError = error_texts::kUnpairedLowSurrogate;

// The UTF-8 of little-endian text, or "not convertible".
std::string utf8By(const char* encoding, const void* data, std::size_t bytes) {
  const iconv_t converter = iconv_open("UTF-8", encoding);
  EXPECT_NE(converter, reinterpret_cast<iconv_t>(-1)) << encoding;
  std::string source(static_cast<const char*>(data), bytes);
  std::string result(bytes * 3 + 8, '\0');
  char* in = source.data();
  char* out = result.data();
  std::size_t inLeft = source.size();
  std::size_t outLeft = result.size();
  const std::size_t status = iconv(converter, &in, &inLeft, &out, &outLeft);
  iconv_close(converter);
  if (status == static_cast<std::size_t>(-1)) return "not convertible";
  result.resize(result.size() - outLeft);
  return result;
}
std::string utf8Of(const std::vector<std::uint32_t>& scalars) {
  return utf8By("UTF-32LE", scalars.data(), scalars.size() * 4);
}
std::string utf8Of(const std::vector<std::uint16_t>& units) {
  return utf8By("UTF-16LE", units.data(), units.size() * 2);
}

// Arrays filled by their slots, unchecked.
template <class Element>
Handle rawArray(const std::string& type, const std::vector<Element>& slots) {
  const Handle array = newArray(type, static_cast<long long>(slots.size()));
  EXPECT_EQ(recordOf(array).primitive.elementSize, sizeof(Element));
  if (!slots.empty()) std::memcpy(recordOf(array).primitive.data, slots.data(), slots.size() * sizeof(Element));
  return array;
}
Handle characters(const std::vector<std::uint32_t>& scalars, bool synchronised = false) {
  return rawArray(arrayType("Char", synchronised), scalars);
}
Handle codeUnits(const std::vector<std::uint16_t>& units, bool synchronised = false) {
  return rawArray(arrayType("CodeUnit", synchronised), units);
}

// The text of the String object that a conversion gives.
std::string converted(void* (*conversion)(void*), void* array) {
  const Handle result = conversion(array);
  EXPECT_STREQ(vorn_type_name(result), "vorn.String");
  EXPECT_NE(vorn_is_object(result), 0);
  EXPECT_EQ(array != nullptr ? faultOfArray(array) : "", "");
  return vorn_string_text(result);
}
std::string charText(void* array) { return converted(Vorn_stringFromCharArray, array); }
std::string unitText(void* array) { return converted(Vorn_stringFromCodeUnitArray, array); }

// ---- Round trips ----------------------------------------------------------------------------------------------------

std::vector<std::uint32_t> allScalars() {
  std::vector<std::uint32_t> scalars;
  for (std::uint32_t scalar = 1; scalar <= 0x10FFFF; ++scalar) {
    if (scalar < 0xD800 || scalar > 0xDFFF) scalars.push_back(scalar);
  }
  return scalars;
}

TEST_F(ArrayText, Chars_EveryScalar) {
  const std::vector<std::uint32_t> scalars = allScalars();
  ASSERT_EQ(scalars.size(), 0x10FFFFU - 0x800U);
  const std::string expected = utf8Of(scalars);
  ASSERT_NE(expected, "not convertible");
  EXPECT_TRUE(charText(characters(scalars)) == expected);
  EXPECT_TRUE(charText(characters(scalars, true)) == expected);
}

TEST_F(ArrayText, CodeUnits_EveryScalarBothInOneUnitAndInPairs) {
  std::vector<std::uint16_t> units;
  for (const std::uint32_t scalar : allScalars()) {
    if (scalar < 0x10000) {
      units.push_back(static_cast<std::uint16_t>(scalar));
    } else {
      units.push_back(static_cast<std::uint16_t>(0xD800 + ((scalar - 0x10000) >> 10)));
      units.push_back(static_cast<std::uint16_t>(0xDC00 + ((scalar - 0x10000) & 0x3FF)));
    }
  }
  const std::string expected = utf8Of(allScalars());
  ASSERT_TRUE(utf8Of(units) == expected);
  EXPECT_TRUE(unitText(codeUnits(units)) == expected);
  EXPECT_TRUE(unitText(codeUnits(units, true)) == expected);
}

TEST_F(ArrayText, Chars_AtTheBordersOfTheByteCounts) {
  for (const std::uint32_t scalar :
       {0x1U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    EXPECT_EQ(charText(characters({scalar})), utf8Of(std::vector<std::uint32_t>{scalar}));
  }
  EXPECT_EQ(charText(characters({0x10FFFF})), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(unitText(codeUnits({0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
}

// Long runs of ASCII have a way of their own; what is no ASCII stands at every place of a block.
TEST_F(ArrayText, LongTexts_WithOneOtherCharacterAtEveryPlace) {
  for (std::size_t size = 1; size < 70; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      for (const std::uint32_t other : {0x7FU, 0x80U, 0xFFFFU, 0x10041U}) {
        std::vector<std::uint32_t> scalars(size, 'a');
        scalars[at] = other;
        ASSERT_EQ(charText(characters(scalars)), utf8Of(scalars));
        if (other > 0xFFFF) continue;
        std::vector<std::uint16_t> units(size, 'a');
        units[at] = static_cast<std::uint16_t>(other);
        ASSERT_EQ(unitText(codeUnits(units)), utf8Of(units));
      }
    }
    if (onStressHeap()) size += 6;
  }
}

// Runs of each byte count in every order, so that every change of script meets every place of a block.
TEST_F(ArrayText, LongTexts_OfRunsOfEveryByteCount) {
  const std::uint32_t first[] = {'a', 0x430, 0x4E00, 0x1F600};
  for (std::size_t length = 1; length < 20; length += onStressHeap() ? 6 : 1) {
    for (unsigned order = 0; order < 256; order += onStressHeap() ? 37 : 1) {
      std::vector<std::uint32_t> scalars;
      std::vector<std::uint16_t> units;
      for (unsigned run = 0; run < 4; ++run) {
        const std::uint32_t script = first[order >> (2 * run) & 3];
        for (std::size_t i = 0; i < length; ++i) {
          const auto scalar = script + static_cast<std::uint32_t>(i);
          scalars.push_back(scalar);
          if (scalar > 0xFFFF) {
            units.push_back(static_cast<std::uint16_t>(0xD800 + ((scalar - 0x10000) >> 10)));
            units.push_back(static_cast<std::uint16_t>(0xDC00 + ((scalar - 0x10000) & 0x3FF)));
          } else {
            units.push_back(static_cast<std::uint16_t>(scalar));
          }
        }
      }
      const std::string expected = utf8Of(scalars);
      ASSERT_EQ(charText(characters(scalars)), expected);
      ASSERT_EQ(unitText(codeUnits(units)), expected);
    }
  }
}

// What narrowing could take for ASCII.
TEST_F(ArrayText, LongTexts_NumbersWithAsciiLowBits_AreRefusedOrEncoded) {
  for (std::size_t at = 0; at < 20; ++at) {
    for (const std::uint32_t other : {0x80000041U, 0xFFFFFF41U, 0x7FFF0041U, 0x110041U}) {
      std::vector<std::uint32_t> scalars(20, 'a');
      scalars[at] = other;
      EXPECT_EQ(charText(characters(scalars)), "");
      EXPECT_RAISED(kCharError);
    }
    std::vector<std::uint16_t> units(20, 'a');
    for (const std::uint16_t other : {std::uint16_t{0x0141}, std::uint16_t{0x8041}, std::uint16_t{0xFF41}}) {
      units[at] = other;
      EXPECT_EQ(unitText(codeUnits(units)), utf8Of(units));
    }
  }
}

TEST_F(ArrayText, LongTexts_WithAFaultAtEveryPlace) {
  for (std::size_t at = 0; at < 40; ++at) {
    std::vector<std::uint32_t> scalars(40, 'a');
    scalars[at] = 0;
    EXPECT_EQ(charText(characters(scalars)), "");
    EXPECT_RAISED(kNulError);
    scalars[at] = 0xD800;
    EXPECT_EQ(charText(characters(scalars)), "");
    EXPECT_RAISED(kCharError);
    std::vector<std::uint16_t> units(40, 'a');
    units[at] = 0;
    EXPECT_EQ(unitText(codeUnits(units)), "");
    EXPECT_RAISED(kNulError);
    units[at] = 0xD800;
    EXPECT_EQ(unitText(codeUnits(units)), "");
    EXPECT_RAISED(kHighError);
    units[at] = 0xDC00;
    EXPECT_EQ(unitText(codeUnits(units)), "");
    EXPECT_RAISED(kLowError);
  }
}

// ---- Errors ---------------------------------------------------------------------------------------------------------

TEST_F(ArrayText, NullAndEmptyArrays_AreTheEmptyString) {
  EXPECT_EQ(charText(nullptr), "");
  EXPECT_EQ(unitText(nullptr), "");
  for (const bool synchronised : {false, true}) {
    EXPECT_EQ(charText(characters({}, synchronised)), "");
    EXPECT_EQ(unitText(codeUnits({}, synchronised)), "");
    EXPECT_EQ(charText(newArray(arrayType("", synchronised), 0)), "");
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArrayText, EmptyStrings_AreNewObjects) {
  const Handle first = Vorn_stringFromCharArray(nullptr);
  const Handle second = Vorn_stringFromCharArray(nullptr);
  EXPECT_NE(first.get(), second.get());
}

TEST_F(ArrayText, Chars_TheFirstFaultDecides) {
  for (const bool synchronised : {false, true}) {
    EXPECT_EQ(charText(characters({0x41, 0}, synchronised)), "");
    EXPECT_RAISED(kNulError);
    EXPECT_EQ(charText(characters({0x41, 0, 0xD800}, synchronised)), "");
    EXPECT_RAISED(kNulError);
    EXPECT_EQ(charText(characters({0xDFFF, 0}, synchronised)), "");
    EXPECT_RAISED(kCharError);
    EXPECT_EQ(charText(characters({0x110000}, synchronised)), "");
    EXPECT_RAISED(kCharError);
    EXPECT_EQ(charText(characters({0xFFFFFFFF}, synchronised)), "");
    EXPECT_RAISED(kCharError);
  }
}

TEST_F(ArrayText, CodeUnits_TheTestsRunInTheirOrderForEachUnit) {
  const struct {
    std::vector<std::uint16_t> units;
    const char* error;
  } cases[] = {{{0}, kNulError},
               {{0x41, 0, 0xDC00}, kNulError},
               {{0xD83D}, kHighError},
               {{0x41, 0xDBFF}, kHighError},
               {{0xD83D, 0x0041}, kHighError},
               {{0xD83D, 0}, kHighError},  // the low unit is not tested for zero
               {{0xD83D, 0xD83D, 0xDE00}, kHighError},
               {{0xD83D, 0xE000}, kHighError},
               {{0xD83D, 0xDBFF}, kHighError},
               {{0xDE00}, kLowError},
               {{0xDC00, 0}, kLowError},
               {{0xDFFF, 0xD83D}, kLowError},
               {{0xD83D, 0xDE00, 0xDE00}, kLowError}};
  for (const auto& entry : cases) {
    for (const bool synchronised : {false, true}) {
      EXPECT_EQ(unitText(codeUnits(entry.units, synchronised)), "");
      EXPECT_RAISED(entry.error);
    }
  }
}

TEST_F(ArrayText, CodeUnits_BeyondSixteenBits_StandForWhatTheRuntimeGives) {
  const Handle array = intArray("Array<Int>", {0x41, 0x10042, 0x43, -1, 0x44});
  EXPECT_EQ(unitText(array), "ACD");
  for (const std::string& given : {std::string("<wide>"), std::string(40, 'w'), std::string()}) {
    textOfWideUnits = given.c_str();
    EXPECT_EQ(unitText(array), "A" + given + "C" + given + "D");
  }
  textOfWideUnits = nullptr;
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArrayText, CodeUnits_BordersOfTheSurrogates) {
  for (const std::vector<std::uint16_t>& units :
       {std::vector<std::uint16_t>{0xD7FF}, {0xE000}, {0xD800, 0xDC00}, {0xDBFF, 0xDFFF}, {0xD800, 0xDFFF}}) {
    EXPECT_EQ(unitText(codeUnits(units)), utf8Of(units));
    EXPECT_NOTHING_RAISED();
  }
}

TEST_F(ArrayText, ErrorAlreadyPending_StopsCharactersAtTheirFirstSlot) {
  const auto withError = [](void* (*conversion)(void*), void* array) {
    vorn_raise("Exception", "before");
    const std::string result = converted(conversion, array);
    EXPECT_RAISED("Exception: before");
    return result;
  };
  EXPECT_EQ(withError(Vorn_stringFromCharArray, characters({0x41, 0x42})), "");
  EXPECT_EQ(withError(Vorn_stringFromCharArray, characters({0})), "") << "the pending error stands, alone";
  EXPECT_EQ(withError(Vorn_stringFromCharArray, characters({})), "");
  EXPECT_EQ(withError(Vorn_stringFromCodeUnitArray, codeUnits({0x41, 0x42})), "AB") << "code units are not asked for";
}

// ---- Other slot kinds -----------------------------------------------------------------------------------------------

TEST_F(ArrayText, OtherIntegerKinds_AreReadAsNumbers) {
  for (const char* element : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong", "Float", "Double"}) {
    SCOPED_TRACE(element);
    const Handle array = intArray(arrayType(element), {72, 105});
    EXPECT_EQ(charText(array), "Hi");
    EXPECT_EQ(unitText(array), "Hi");
    const Handle many = intArray(arrayType(element), Integers(50, 65));
    EXPECT_EQ(charText(many), std::string(50, 'A'));
    EXPECT_EQ(unitText(many), std::string(50, 'A'));
  }
  EXPECT_EQ(charText(doubleArray("Array<Double>", {65.9})), "A");
  EXPECT_EQ(charText(intArray("Array<Boolean>", {1})), "\x01");
  EXPECT_EQ(charText(intArray("Array<UShort>", {0xD800})), "");
  EXPECT_RAISED(kCharError);
  EXPECT_EQ(unitText(intArray("Array<Int>", {0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
}

TEST_F(ArrayText, Handles_ReadAsZeros) {
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised), {integer("Char", 65)});
    EXPECT_EQ(charText(array), "");
    EXPECT_RAISED(kNulError);
    EXPECT_EQ(unitText(array), "");
    EXPECT_RAISED(kNulError);
  }
}

TEST_F(ArrayText, WideValues_AreRefusedAsCharactersAndCutAsCodeUnits) {
  EXPECT_EQ(charText(intArray("Array<Long>", {1LL << 32 | 65})), "");
  EXPECT_RAISED(kCharError);
  EXPECT_EQ(charText(intArray("Array<Long>", {-1})), "");
  EXPECT_RAISED(kCharError);
  EXPECT_EQ(unitText(intArray("Array<Long>", {1LL << 32 | 65})), "A") << "the tests look at the low 32 bits";
  EXPECT_EQ(unitText(intArray("Array<Long>", {1LL << 32})), "");
  EXPECT_RAISED(kNulError);
  EXPECT_EQ(unitText(intArray("Array<Long>", {65, 0x10041, 0x1D83D, -1, 66})), "AB")
      << "a unit above 16 bits has no text";
  EXPECT_EQ(unitText(doubleArray("Array<Double>", {std::nan("")})), "");
  EXPECT_RAISED(kNulError);
  EXPECT_EQ(charText(doubleArray("Array<Double>", {std::nan("")})), "");
  EXPECT_RAISED(kCharError);
}

TEST_F(ArrayText, MemoryExhaustion_ReleasesTheLock) {
  for (const auto conversion : {Vorn_stringFromCharArray, Vorn_stringFromCodeUnitArray}) {
    const Handle array = intArray("ArraySync<Int>", {65, 66});
    const ArrayState before(array);
    EXPECT_GE(
        sweepAllocationFailures([&] { Handle(conversion(array)); }, [&] { EXPECT_ARRAY_UNTOUCHED(array, before); }), 1);
  }
}

}  // namespace
}  // namespace vorn::tests
