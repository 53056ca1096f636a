// Hooks that contradict themselves and each other.
#include <climits>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>

#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

struct Liar {
  const char* name;
  Hostility hostility;
};

std::vector<Liar> liars(unsigned seed) {
  const auto random = std::make_shared<std::mt19937_64>(seed);
  const auto nobody = [](bool) { return false; };
  const auto everybody = [](bool) { return true; };
  const auto fresh = [random] { return (*random)(); };
  return {
      {"equal to everything", {{}, everybody, [](int, bool*) { return 0; }, {}, [] { return nullptr; }}},
      {"less both ways, hash of every call",
       {{}, nobody, [](int, bool*) { return -1; }, fresh, [] { return vorn_text_new(""); }}},
      {"greater both ways, few hashes",
       {{},
        everybody,
        [](int, bool*) { return 1; },
        [random] { return (*random)() % 2; },
        [] { return vorn_string_new("\0 and more", 10); }}},
      {"the contrary, as far as can be",
       {{},
        [](bool honest) { return !honest; },
        [](int honest, bool*) { return honest < 0   ? INT_MAX
                                       : honest > 0 ? INT_MIN
                                                    : 1; },
        fresh,
        [] { return vorn_string_new(std::string(3000, '\xFF').c_str(), SIZE_MAX); }}},
      {"at random",
       {{},
        [random](bool) { return (*random)() % 2 == 0; },
        [random](int, bool* comparable) {
          *comparable = (*random)() % 8 != 0;
          return static_cast<int>((*random)() % 3) - 1;
        },
        [random] { return (*random)() % 3; },
        [random]() -> void* { return (*random)() % 2 == 0 ? nullptr : vorn_text_new("\"\\\n"); }}},
      {"never comparable", {{}, {}, [](int, bool* comparable) { return *comparable = false, 1; }, {}, {}}},
  };
}

Texts sortedTexts(Texts texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

// The words of an outcome, sorted.
Texts sortedWords(const std::string& outcome) {
  std::istringstream words(outcome);
  return sortedTexts({std::istream_iterator<std::string>(words), {}});
}

// The texts of one that the other does not have.
Texts missingFrom(const Texts& other, const Texts& one) {
  Texts missing;
  const Texts left = sortedTexts(one);
  const Texts right = sortedTexts(other);
  std::set_difference(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(missing));
  return missing;
}

class LyingHooks : public HostileTest {
 protected:
  static void expectOnlyTheEffect(const Texts& before, const Texts& after) {
    switch (native().effect) {
      case Effect::Reads:
        EXPECT_EQ(after, before);
        break;
      case Effect::Sorts:
        EXPECT_EQ(sortedTexts(after), sortedTexts(before)) << "a permutation";
        break;
      case Effect::Adds:  // one more, or the same key with another handle or value
        EXPECT_LE(missingFrom(after, before).size(), 1U);
        EXPECT_LE(missingFrom(before, after).size(), 1U);
        EXPECT_GE(after.size(), before.size());
        break;
      case Effect::Removes:
        EXPECT_LE(missingFrom(after, before).size(), 1U);
        EXPECT_EQ(missingFrom(before, after), Texts{});
        break;
    }
  }
};
INSTANTIATE_HOSTILE_TESTS(LyingHooks, hostileCases());

TEST_P(LyingHooks, TheNativeEndsAndLosesNothing) {
  const Ending honest = honestRun();
  for (unsigned seed = 1; seed <= (onStressHeap() ? 1U : 4U); ++seed) {
    for (const Liar& liar : liars(seed)) {
      SCOPED_TRACE(std::string(liar.name) + ", seed " + std::to_string(seed));
      const Scene target = scene();
      for (int round = 0; round < (onStressHeap() ? 1 : 3); ++round) {
        const Texts before = target.contents();
        const Ending ending = run(target, liar.hostility);
        EXPECT_FALSE(ending.threw) << ending.what;
        EXPECT_LE(ending.calls, 2000) << "bounded";
        EXPECT_TRUE(ending.errors.empty() || ending.errors == Texts{kNotFound}) << join(ending.errors);
        expectOnlyTheEffect(before, ending.contents);
        if (std::string(native().name) == "sortNew") {
          EXPECT_EQ(sortedWords(ending.outcome), sortedWords(honest.outcome)) << "a permutation";
        }
      }
      expectWorksAgain(target, honest);
    }
  }
}

std::vector<HostileCase> counts() {
  std::vector<HostileCase> cases = hostileCases();
  std::erase_if(cases, [](const HostileCase& hostile) {
    return std::string(hostile.native.name) != "count" || hostile.native.makesKey;
  });
  return cases;
}

class LyingEquality : public HostileTest {};
INSTANTIATE_HOSTILE_TESTS(LyingEquality, counts());

TEST_P(LyingEquality, CountIsThatOfTheAnswersGiven) {
  std::mt19937 random(5);
  for (int round = 0; round < 10; ++round) {
    int matches = 0;
    Hostility hostility;
    hostility.equality = [&](bool) {
      const bool answer = random() % 2 == 0;
      matches += answer ? 1 : 0;
      return answer;
    };
    const Ending ending = run(scene(), hostility);
    EXPECT_EQ(ending.calls, 6);
    EXPECT_EQ(ending.outcome, std::to_string(matches));
  }
}

}  // namespace
}  // namespace vorn::tests
