// Displays and joins of unboxed elements: the same text as that of their boxes, for every kind of storage under every
// declared type.
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "collections/array/slot_values.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "tests/display/display_cases.h"

namespace vorn::tests {
namespace {

using collections::PrimitiveKind;
using Unboxed = RuntimeTest;

constexpr const char* kDeclaredTypes[] = {"",       "Int",    "UInt",  "Long",     "ULong",   "Short",    "UShort",
                                          "Byte",   "SByte",  "Float", "Double",   "Char",    "CodeUnit", "Boolean",
                                          "Object", "String", "Point", "vorn.Int", "Double$", "ulong"};

constexpr std::array kPrimitiveTypes = {"SByte", "Byte",  "Short",  "UShort",  "Int",  "UInt",    "Long",
                                        "ULong", "Float", "Double", "Boolean", "Char", "CodeUnit"};

// Values at the ends of every type and in between, and random ones of every magnitude.
std::vector<std::int64_t> sampleBits(std::mt19937_64& random) {
  std::vector<std::int64_t> bits = {0,
                                    1,
                                    -1,
                                    9,
                                    10,
                                    99,
                                    100,
                                    -128,
                                    127,
                                    128,
                                    255,
                                    256,
                                    32767,
                                    32768,
                                    -32769,
                                    65535,
                                    0xD7FF,
                                    0xD800,
                                    0xDFFF,
                                    0xFFFF,
                                    0x10000,
                                    0x10FFFF,
                                    0x110000,
                                    std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max(),
                                    std::numeric_limits<std::uint32_t>::max(),
                                    std::numeric_limits<std::int64_t>::min(),
                                    std::numeric_limits<std::int64_t>::max()};
  for (int shift = 0; shift < 64; ++shift) bits.push_back(static_cast<std::int64_t>(random() >> shift));
  for (const double value :
       {0.0, -0.0, 0.1, 1.0, -2.5, 1e21, 1e300, 5e-324, double{INFINITY}, -double{INFINITY}, double{NAN}}) {
    bits.push_back(std::bit_cast<std::int64_t>(value));
  }
  return bits;
}

// An array list whose record holds the values unboxed under the kind, whatever type it declares: compiled code may
// append values under a kind that the declared type would not have.
Handle unboxedList(PrimitiveKind kind, const char* declared, const std::vector<std::int64_t>& bits) {
  Handle made = object("ArrayList");
  ListData& data = *getListData(made);
  configurePrimitiveStorage(data, kind);
  data.primitiveKind = kind;
  data.elementType = internRuntimeTypeName(declared);
  for (const std::int64_t word : bits) {
    primitiveListAppend(data, word, std::bit_cast<double>(word));
  }
  return made;
}

// The displays of the elements' boxes.
std::string boxedText(void* unboxed, const std::string& separator) {
  const ListData& data = *getListData(unboxed);
  std::string text;
  for (std::uint64_t i = 0; i < data.primitive.size; ++i) {
    const Handle box = boxPrimitiveListValue(data.primitiveKind, data.elementType, primitiveListReadI64(data, i),
                                             primitiveListReadF64(data, i));
    text += (i == 0 ? "" : separator) + valueToDisplayString(box);
  }
  return text;
}

TEST_F(Unboxed, Lists_ShowAndJoinWhatTheirBoxesWould) {
  std::mt19937_64 random(20);
  std::vector<std::int64_t> bits = sampleBits(random);
  if (onStressHeap()) bits.resize(40);
  for (int kind = 1; kind <= 11; ++kind) {
    for (const char* declared : kDeclaredTypes) {
      SCOPED_TRACE(std::to_string(kind) + " declared as " + declared);
      const Handle made = unboxedList(static_cast<PrimitiveKind>(kind), declared, bits);
      ASSERT_EQ(getListData(made)->primitive.size, bits.size());
      EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[" + boxedText(made, ", ") + "]");
      EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, " ")), boxedText(made, " "));
      EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, nullptr)), boxedText(made, ""));
    }
  }
}

TEST_F(Unboxed, Lists_ShowAsTheBoxedListDoes) {
  for (const char* type : kPrimitiveTypes) {
    SCOPED_TRACE(type);
    const bool isFloating = std::string(type) == "Float" || std::string(type) == "Double";
    const Handle unboxed = object(std::string("ArrayList<") + type + ">");
    const Handle boxed = object("LinkedList");
    for (const int value : {65, 1, 2, 100}) {
      const Handle box = isFloating ? floating(type, value + 0.25) : integer(type, value);
      vorn_collections_ArrayList_add(unboxed, std::string(type) == "Boolean" ? boolean(value % 2 != 0) : box);
      vorn_collections_ArrayList_add(boxed, std::string(type) == "Boolean" ? boolean(value % 2 != 0) : box);
    }
    ASSERT_NE(getListData(unboxed)->primitiveKind, PrimitiveKind::None);
    EXPECT_EQ("l:" + textOf(vorn_collections_ArrayList_toString(unboxed)),
              textOf(vorn_collections_ArrayList_toString(boxed)));
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(unboxed, "-")),
              textOf(vorn_collections_ArrayList_join(boxed, "-")));
  }
}

TEST_F(Unboxed, UntypedListOfCharacters_ShowsNumbers) {
  for (const char* type : {"Char", "CodeUnit"}) {
    const Handle made = list("ArrayList", {integer(type, 'a'), integer(type, 'b')});
    ASSERT_NE(getListData(made)->primitiveKind, PrimitiveKind::None);
    EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[97, 98]");
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, "")), "9798");
  }
}

TEST_F(Unboxed, ListOfCharacters_ShowsCharacters) {
  for (const char* type : {"Char", "CodeUnit"}) {
    const Handle made = list(std::string("ArrayList<") + type + ">", {integer(type, 'a'), integer(type, '"')});
    ASSERT_NE(getListData(made)->primitiveKind, PrimitiveKind::None);
    EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[a, \"]");
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, "")), "a\"");
  }
}

TEST_F(Unboxed, ULongs_AreUnsigned) {
  const Handle made = object("ArrayList<ULong>");
  vorn_collections_ArrayList_addPrimitiveI64(made, -1, "ULong");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[18446744073709551615]");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ", ")), "18446744073709551615");
}

TEST_F(Unboxed, UntypedListOfULongs_ShowsSignedNumbers) {
  const Handle made = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveI64(made, -1, "ULong");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[-1]");
}

TEST_F(Unboxed, Floats_AreWidened) {
  const Handle made = object("ArrayList<Float>");
  vorn_collections_ArrayList_addPrimitiveDouble(made, 0.1, "Float");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[" + formatVornFloat(double{0.1F}) + "]");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, "")), formatVornFloat(double{0.1F}));
}

TEST_F(Unboxed, AnyNonZeroByte_ShowsAsTrue) {
  const Handle made = list("ArrayList<Boolean>", {boolean(false), boolean(true)});
  getListData(made)->primitive.data[1] = 0x80;
  EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[false, true]");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, "|")), "false|true");
}

TEST_F(Unboxed, ManyElements_AreAllShown) {
  const Handle made = object("ArrayList<Long>");
  std::string expected;
  for (std::int64_t i = 0; i < 20000; ++i) {
    const std::int64_t value = i % 2 == 0 ? i : std::numeric_limits<std::int64_t>::min() + i;
    vorn_collections_ArrayList_addPrimitiveI64(made, value, "Long");
    expected += (i == 0 ? "" : ", ") + std::to_string(value);
  }
  EXPECT_EQ(textOf(vorn_collections_ArrayList_toString(made)), "[" + expected + "]");
  EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ", ")), expected);
}

TEST_F(Unboxed, Arrays_ShowAndJoinWhatTheirBoxesWould) {
  std::mt19937_64 random(21);
  const std::vector<std::int64_t> bits = sampleBits(random);
  const auto count = static_cast<long long>(bits.size());
  for (const char* arrayClass : {"Array", "ArraySync"}) {
    for (const char* type : kPrimitiveTypes) {
      for (const char* module : {"", "vorn."}) {
        SCOPED_TRACE(std::string(arrayClass) + " of " + module + type);
        const Handle array = object(std::string(arrayClass) + "<" + module + type + ">");
        vorn_collections_Array_ctor(array, count);
        ArrayData& data = *getArrayData(array);
        std::string shown;
        std::string joined;
        for (std::size_t i = 0; i < bits.size(); ++i) {
          arrayWrite(data, i, bits[i], std::bit_cast<double>(bits[i]));
          const Handle box = arraySlotToObject(data, i);
          shown += (i == 0 ? "" : ", ") + valueToDisplayString(box);
          joined += (i == 0 ? "" : "; ") + std::string(Vorn_objectToString(box));
        }
        const std::string tag = std::string(arrayClass) == "ArraySync" ? "fs:[" : "f:[";
        EXPECT_EQ(textOf(vorn_collections_Array_toString(array)), tag + shown + "]");
        EXPECT_EQ(arrayToDisplayStringInternal(array), tag + shown + "]");
        EXPECT_EQ(textOf(vorn_collections_Array_join(array, "; ")), joined);
      }
    }
  }
}

TEST_F(Unboxed, NewArrays_ShowTheirZeros) {
  const auto shownNew = [](const char* type) {
    const Handle array = object(type);
    vorn_collections_Array_ctor(array, 2);
    return textOf(vorn_collections_Array_toString(array));
  };
  EXPECT_EQ(shownNew("Array<Int>"), "f:[0, 0]");
  EXPECT_EQ(shownNew("Array<Double>"), "f:[0.0, 0.0]");
  EXPECT_EQ(shownNew("Array<Boolean>"), "f:[false, false]");
  EXPECT_EQ(shownNew("Array<String>"), "f:[null, null]");
  EXPECT_EQ(shownNew("ArraySync<Object>"), "fs:[null, null]");
  EXPECT_EQ(textOf(vorn_collections_Array_toString(object("Array<Int>"))), "f:[]") << "not constructed yet";
}

TEST_F(Unboxed, FloatsShowAsTheyDoBoxed) {
  const Handle unboxed = list("ArrayList<Float>", {floating("Float", 0.1), floating("Double", 1e-7)});
  const Handle boxed = list("LinkedList", {floating("Float", 0.1), floating("Float", 1e-7)});
  EXPECT_EQ("l:" + textOf(vorn_collections_ArrayList_toString(unboxed)),
            textOf(vorn_collections_ArrayList_toString(boxed)));
}

}  // namespace
}  // namespace vorn::tests
