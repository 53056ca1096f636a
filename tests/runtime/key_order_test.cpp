// The order of keys, and laws that hold for keys of every kind.
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/runtime/comparisons.h"
#include "tests/runtime/key_support.h"
#include "tests/runtime/special_numbers.h"

namespace vorn::tests {
namespace {

using KeyOrder = RuntimeTest;

// Expects each handle to come before all that follow it.
void expectAscending(const std::vector<Handle>& handles) {
  for (std::size_t i = 0; i < handles.size(); ++i) {
    for (std::size_t j = 0; j < handles.size(); ++j) {
      EXPECT_EQ(order(handles[i], handles[j]), i == j ? 0 : (i < j ? -1 : 1)) << i << " " << j;
    }
  }
}

TEST_F(KeyOrder, Kinds_NullNumbersBooleansCharactersTextsIdentitiesSequencesInstances) {
  expectAscending({nullptr, integer("Int", 1'000'000), boolean(true), integer("Char", 'z'), integer("CodeUnit", 'z'),
                   string("zzz"), object("ArrayList"), tupleOf({integer("Int", 1)}), object("ImmutableList"),
                   userKey(1)});
}

TEST_F(KeyOrder, Numbers_ByValueAcrossKinds_NanLast) {
  expectAscending({floating("Double", -kInfinity), floating("Double", -1e300),
                   integer("Long", std::numeric_limits<std::int64_t>::min()), integer("SByte", -1), integer("Int", 0),
                   floating("Double", 0.5), integer("Byte", 1), integer("Long", (1LL << 53)),
                   integer("Long", (1LL << 53) + 1), integer("Long", std::numeric_limits<std::int64_t>::max()),
                   integer("ULong", std::numeric_limits<std::int64_t>::min()), integer("ULong", -1),
                   floating("Double", 0x1p64), floating("Double", kInfinity), floating("Double", kNan)});
}

TEST_F(KeyOrder, Texts_ByBytesWhateverTheirLengthAndForm) {
  expectAscending({string(""), string(std::string(1, '\0')), text("A"), string("a"), text("a very long text, really"),
                   string("aa"), string("b"), string("b is long as well, beyond sixteen"), string("c"),
                   string("\xC3\xA9")});
  EXPECT_EQ(order(string("abcdefghijklmnopq"), text("abcdefghijklmnopq")), 0);
}

TEST_F(KeyOrder, BooleansAndCharacters_ByValue) {
  expectAscending({boolean(false), boolean(true), integer("Char", 'a'), integer("Char", 'b'), integer("CodeUnit", 'a'),
                   integer("CodeUnit", 'b')});
}

TEST_F(KeyOrder, Sequences_FamiliesApartAndLexicographic) {
  expectAscending({tupleOf({}), tupleOf({nullptr}), tupleOf({integer("Int", 1)}),
                   tupleOf({integer("Int", 1), integer("Int", 0)}), tupleOf({floating("Double", 1.5)}),
                   tupleOf({integer("Int", 2)}), tupleOf({string("a")}), tupleOf({tupleOf({})}),
                   object("ImmutableList"), unboxedImmutable("Int", {1}), unboxedImmutable("Long", {1, 0}),
                   boxedImmutable({integer("Int", 2), nullptr}), unboxedFloatingImmutable("Double", {2, 0.5}),
                   boxedImmutable({string("a")}), boxedImmutable({unboxedImmutable("Int", {1})})});
}

TEST_F(KeyOrder, Instances_ByHook) {
  expectAscending({userKey(1), userKey(2), userKey(30)});
  EXPECT_EQ(order(userKey(1), userKey(1)), 0);
  expectAscending({tupleOf({userKey(1)}), tupleOf({userKey(2)})});
}

TEST_F(KeyOrder, Instances_ThatTheHookCannotCompareStayTogetherByClass) {
  // Both compare within their own class only.
  for (int i = 0; i < 10; ++i) EXPECT_EQ(order(hooked(9 - i), userKey(i)), -1);
}

TEST_F(KeyOrder, Instances_WithoutOrderingHookByAddress) {
  vorn_class_definition definition = {};
  definition.name = "test.EqualityOnly";
  definition.equals = [](void*, void*, void*) { return false; };
  defineClass(definition);
  const Handle one = object("test.EqualityOnly");
  const Handle other = object("test.EqualityOnly");
  EXPECT_EQ(order(one, other), one.get() < other.get() ? -1 : 1);
}

TEST_F(KeyOrder, Instances_AHookThatRaisesMakesNoTwoKeysOne) {
  const Handle one = userKey(1);
  const Handle other = userKey(1);
  userHooks.compare = [](void*, void*, bool*) {
    vorn_raise("Exception", "no order");
    return 0;
  };
  EXPECT_NE(compareNativeCollectionKeys(keyFor(one), keyFor(other)), 0);
  EXPECT_RAISED("Exception: no order");
  EXPECT_EQ(compareNativeCollectionKeys(keyFor(one), keyFor(one)), 0);
}

// ---- Laws -----------------------------------------------------------------------------------------------------------

// Handles of every kind with a text that two of them share exactly when they are one key.
struct Sample {
  Handle handle;
  std::string meaning;
};

class Samples {
 public:
  explicit Samples(unsigned seed) : random_(seed) {
    for (int i = 0; i < 4; ++i) {
      identities_.push_back({object(i < 2 ? "ArrayList" : "HashSet"), "identity " + std::to_string(i)});
    }
  }

  Sample next(int depth = 0) {
    switch (pick(depth < 3 ? 9 : 7)) {
      case 0:
        return number();
      case 1:
        return number();
      case 2:
        return textual();
      case 3:
        return scalar();
      case 4:
        return {nullptr, "null"};
      case 5:
        return identities_[pick(identities_.size())];
      case 6: {
        const auto key = static_cast<std::int64_t>(pick(3));
        return pick(2) == 0 ? Sample{userKey(key), "key " + std::to_string(key)}
                            : Sample{hooked(key), "hooked " + std::to_string(key)};
      }
      case 7:
        return sequence(depth);
      default:
        return unboxed();
    }
  }

 private:
  std::size_t pick(std::size_t below) { return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_); }

  Sample number() {
    const std::int64_t whole = static_cast<std::int64_t>(pick(5)) - 2;
    const std::string meaning = "number " + std::to_string(whole);
    switch (pick(6)) {
      case 0:
        return {integer("Int", whole), meaning};
      case 1:
        return {integer("Long", whole), meaning};
      case 2:
        return {floating("Double", static_cast<double>(whole)), meaning};
      case 3:
        return {floating("Float", static_cast<double>(whole) + 0.5), meaning + ".5"};
      case 4:
        return {floating("Double", kNan), "number NaN"};
      default:
        return {integer("ULong", -1), "number 2^64 - 1"};
    }
  }

  Sample textual() {
    const std::string bytes = std::string(pick(3) * 10, 'x') + static_cast<char>('a' + pick(2));
    return {pick(2) == 0 ? string(bytes) : text(bytes), "text " + bytes};
  }

  Sample scalar() {
    const auto value = static_cast<std::int64_t>(pick(2));
    switch (pick(3)) {
      case 0:
        return {boolean(value != 0), "Boolean " + std::to_string(value)};
      case 1:
        return {integer("Char", value), "Char " + std::to_string(value)};
      default:
        return {integer("CodeUnit", value), "CodeUnit " + std::to_string(value)};
    }
  }

  Sample sequence(int depth) {
    const bool isTuple = pick(2) == 0;
    std::string meaning = isTuple ? "(" : "[";
    std::vector<Handle> elements;
    for (std::size_t i = pick(3); i > 0; --i) {
      const Sample element = next(depth + 1);
      elements.push_back(element.handle);
      meaning += element.meaning + ";";
    }
    return {isTuple ? tupleOf(elements) : boxedImmutable(elements), meaning};
  }

  Sample unboxed() {
    std::string meaning = "[";
    std::vector<std::int64_t> values;
    for (std::size_t i = pick(3); i > 0; --i) {
      values.push_back(static_cast<std::int64_t>(pick(3)) - 1);
      meaning += "number " + std::to_string(values.back()) + ";";
    }
    return {unboxedImmutable(pick(2) == 0 ? "Int" : "Long", values), meaning};
  }

  std::mt19937 random_;
  std::vector<Sample> identities_;
};

TEST_F(KeyOrder, Laws_EqualityHashAndOrderAgreeForRandomKeys) {
  const std::size_t count = onStressHeap() ? 25 : 120;
  for (unsigned seed = 1; seed <= (onStressHeap() ? 2U : 8U); ++seed) {
    SCOPED_TRACE(seed);
    Samples samples(seed);
    std::vector<Sample> all;
    for (std::size_t i = 0; i < count; ++i) all.push_back(samples.next());
    std::vector<std::vector<int>> orders(count, std::vector<int>(count));
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t j = 0; j < count; ++j) {
        const bool same = all[i].meaning == all[j].meaning;
        EXPECT_EQ(sameKey(all[i].handle, all[j].handle), same) << all[i].meaning << " | " << all[j].meaning;
        orders[i][j] = sign(order(all[i].handle, all[j].handle));
        EXPECT_EQ(orders[i][j] == 0, same) << all[i].meaning << " | " << all[j].meaning;
      }
    }
    // Strict and transitive; with the line above, a total order of keys.
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t j = 0; j < count; ++j) {
        for (std::size_t k = 0; k < count; ++k) {
          if (orders[i][j] < 0 && orders[j][k] < 0) {
            ASSERT_LT(orders[i][k], 0) << all[i].meaning << " | " << all[j].meaning << " | " << all[k].meaning;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
