// The hashes of keys: that they spread, whatever the keys and the seed, and that nested sequences hash to a bounded
// depth.
#include <vorn/collections/map.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "runtime/keys/hash_seed.h"
#include "tests/runtime/key_support.h"

namespace vorn::tests {
namespace {

using KeyHashes = RuntimeTest;

TEST_F(KeyHashes, OfNeighboursDiffer) {
  std::vector<std::uint32_t> hashes;
  const int count = onStressHeap() ? 200 : 2000;
  for (int i = 0; i < count; ++i) {
    hashes.push_back(keyFor(integer("Int", i)).hash);
    hashes.push_back(keyFor(floating("Double", i + 0.5)).hash);
    hashes.push_back(keyFor(string(std::to_string(i))).hash);
    hashes.push_back(keyFor(string(std::string(20, 'x') + std::to_string(i))).hash);
    hashes.push_back(keyFor(tupleOf({integer("Int", i), integer("Int", -i)})).hash);
    hashes.push_back(keyFor(integer("Char", i)).hash);
  }
  std::sort(hashes.begin(), hashes.end());
  const auto distinct = std::unique(hashes.begin(), hashes.end()) - hashes.begin();
  // 12000 values among 2^32: about 0.02 collisions are expected.
  EXPECT_GE(distinct, static_cast<std::ptrdiff_t>(hashes.size()) - 4);
}

// The inverse of the finaliser of SplitMix64, which an unseeded mixing function may be: numbers that it gives one upper
// half.
std::int64_t unmixed(std::uint64_t bits) {
  const auto inverse = [](std::uint64_t factor) {
    std::uint64_t result = factor;
    for (int i = 0; i < 6; ++i) result *= 2 - factor * result;
    return result;
  };
  const auto unshifted = [](std::uint64_t value, int shift) {
    std::uint64_t result = value;
    for (int i = 0; i <= 64 / shift; ++i) result = value ^ (result >> shift);
    return result;
  };
  bits = unshifted(bits, 31) * inverse(0x94D049BB133111EBULL);
  bits = unshifted(bits, 27) * inverse(0xBF58476D1CE4E5B9ULL);
  return static_cast<std::int64_t>(unshifted(bits, 30));
}

// What a search for each key passes, were each bucket searched to its end: the sum of the squares of the buckets'
// sizes.
double stepsPerHash(const std::vector<std::uint32_t>& hashes) {
  const std::uint64_t buckets = hashes.size() / 5 + 1;
  std::vector<double> sizes(buckets);
  for (const std::uint64_t hash : hashes) ++sizes[(hash * buckets) >> 32];
  double steps = 0;
  for (const double size : sizes) steps += size * size;
  return steps / static_cast<double>(hashes.size());
}

double stepsPerKey(const std::vector<std::int64_t>& keys) {
  std::vector<std::uint32_t> hashes;
  for (const std::int64_t key : keys) hashes.push_back(integerCollectionKey(key).hash);
  return stepsPerHash(hashes);
}

TEST_F(KeyHashes, OfChosenAndOfRegularIntegersSpreadAsRandomOnes) {
  constexpr std::int64_t kCount = 20000;
  const auto made = [&](const std::function<std::int64_t(std::int64_t)>& make) {
    std::vector<std::int64_t> keys;
    for (std::int64_t i = 0; i < kCount; ++i) keys.push_back(make(i));
    return keys;
  };
  // Random keys meet five others on the average.
  const double random =
      stepsPerKey(made([](std::int64_t i) { return unmixed(static_cast<std::uint64_t>(i) << 32 | i); }));
  EXPECT_NEAR(random, 6.0, 0.5);
  EXPECT_NEAR(stepsPerKey(made([](std::int64_t i) { return unmixed(static_cast<std::uint64_t>(i)); })), 6.0, 0.5);
  for (const std::int64_t step : {1LL, 2LL, 1000LL, 1LL << 20, 1LL << 32, (1LL << 40) + 1}) {
    EXPECT_NEAR(stepsPerKey(made([=](std::int64_t i) { return i * step; })), 6.0, 0.5) << step;
  }
}

// Under any seed: the seed of this process is put back.
class SeedScope {
 public:
  ~SeedScope() { Vorn_keyHashSeed = before_; }

 private:
  KeyHashSeed before_ = Vorn_keyHashSeed;
};

TEST_F(KeyHashes, Seed_DecidesTheHashesOfNumbersTextsAndSequences) {
  const SeedScope scope;
  const Handle handles[] = {integer("Int", 7),
                            floating("Double", 0.5),
                            boolean(true),
                            string("short text"),
                            string("a text that is no longer short"),
                            tupleOf({integer("Int", 1)})};
  std::vector<std::uint32_t> hashes[3];
  for (int run = 0; run < 3; ++run) {
    runtime::drawKeyHashSeed(run == 0 ? 1 : 2);
    for (const Handle& handle : handles) hashes[run].push_back(keyFor(handle).hash);
  }
  EXPECT_EQ(hashes[1], hashes[2]) << "a given seed makes runs alike";
  for (std::size_t i = 0; i < std::size(handles); ++i) EXPECT_NE(hashes[0][i], hashes[1][i]) << i;
}

TEST_F(KeyHashes, Seed_IsRandomWhereNoneIsGiven) {
  const SeedScope scope;
  std::set<std::uint32_t> hashes;
  for (int run = 0; run < 20; ++run) {
    runtime::drawKeyHashSeed(0);
    hashes.insert(integerCollectionKey(7).hash);
  }
  EXPECT_GE(hashes.size(), 19U);
}

// Texts that differ in a few places, in the first word, in the second or in both.
TEST_F(KeyHashes, Seed_SpreadsRegularTextsWhateverItIs) {
  const SeedScope scope;
  const auto digits = [](int i) { return std::to_string(10000 + i); };
  const std::function<std::string(int)> forms[] = {
      digits, [&](int i) { return "item" + digits(i); }, [&](int i) { return "prefix-of-8" + digits(i); },
      [&](int i) { return digits(i) + "-of-a-suffix"; },
      [](int i) { return std::string(1, static_cast<char>(i % 128)) + "abcdefghi" + static_cast<char>(i / 128); }};
  for (std::uint64_t seed = 1; seed <= 50; ++seed) {
    runtime::drawKeyHashSeed(seed);
    for (const auto& form : forms) {
      std::vector<std::uint32_t> hashes;
      for (int i = 0; i < 5000; ++i) hashes.push_back(makeNativeStringCollectionKey(form(i)).hash);
      EXPECT_NEAR(stepsPerHash(hashes), 6.0, 0.8) << seed << " " << form(0);
    }
  }
}

TEST_F(KeyHashes, OfShortTexts_AreNotThoseOfNumbersWithTheSameBytes) {
  for (int i = 0; i < 128; ++i) {
    const std::string text(1, static_cast<char>(i));
    EXPECT_NE(makeNativeStringCollectionKey(text).hash, integerCollectionKey(i).hash) << i;
  }
}

TEST_F(KeyHashes, Seed_SpreadsRegularIntegersWhateverItIs) {
  const SeedScope scope;
  for (std::uint64_t seed = 1; seed <= 50; ++seed) {
    runtime::drawKeyHashSeed(seed);
    for (const std::int64_t step : {1LL, 1LL << 32}) {
      std::vector<std::int64_t> keys;
      for (std::int64_t i = 0; i < 5000; ++i) keys.push_back(i * step);
      EXPECT_NEAR(stepsPerKey(keys), 6.0, 0.8) << seed << " " << step;
    }
  }
}

// A pair of a 7 and a pair of a 7 and ... the value.
Handle nestedPair(int levels, std::int64_t value, bool asLists = false) {
  Handle innermost = integer("Int", value);
  for (int i = 0; i < levels; ++i) {
    const std::vector<Handle> elements = {integer("Int", 7), innermost};
    innermost = asLists ? boxedImmutable(elements) : tupleOf(elements);
  }
  return innermost;
}

TEST_F(KeyHashes, Sequences_ThatDifferAtAnyOfTheFirst64LevelsHashApart) {
  const int count = onStressHeap() ? 10 : 200;
  for (const bool asLists : {false, true}) {
    for (const int levels : {1, 8, 9, 10, 16, 32, 63, 64}) {
      std::set<std::uint32_t> hashes;
      for (int i = 0; i < count; ++i) hashes.insert(keyFor(nestedPair(levels, i, asLists)).hash);
      EXPECT_GE(hashes.size(), static_cast<std::size_t>(count) - 1) << levels;
    }
  }
}

TEST_F(KeyHashes, Sequences_NestedOnes_AreNotComparedOnAPut) {
  // Keys of different hashes do not meet; each hook call would be a chain step.
  const Handle map = object("Map");
  const int count = onStressHeap() ? 20 : 1000;
  for (int i = 0; i < count; ++i) {
    Handle tuple = tupleOf({userKey(0), integer("Int", i)});
    for (int level = 0; level < 20; ++level) tuple = tupleOf({userKey(0), tuple});
    vorn_collections_Map_put(map, tuple, nullptr);
  }
  EXPECT_EQ(vorn_collections_Map_size(map), count);
  EXPECT_LE(hookCalls(Hook::Equality), 40) << "two keys of one hash compare twenty-one elements";
}

TEST_F(KeyHashes, Sequences_SharedOnesHashAsOnesThatShareNothing) {
  const auto doubled = [](int times, bool share) {
    std::function<Handle(int)> make = [&](int left) {
      if (left == 0) return tupleOf({integer("Int", 1)});
      const Handle half = make(left - 1);
      return tupleOf({half, share ? half : make(left - 1)});
    };
    return make(times);
  };
  const int times = onStressHeap() ? 4 : 9;
  EXPECT_TRUE(sameKey(doubled(times, true), doubled(times, false)));
}

}  // namespace
}  // namespace vorn::tests
