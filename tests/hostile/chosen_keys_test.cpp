// Keys that somebody has chosen so that they collide: what a search passes on its way, counted.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "collections/core/port/keys.h"
#include "collections/keyed/map_data.h"
#include "runtime/keys/hash_seed.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

// The seed of the process is put back.
class ChosenKeys : public RuntimeTest {
 protected:
  void SetUp() override { before_ = Vorn_keyHashSeed; }
  void TearDown() override {
    Vorn_keyHashSeed = before_;
    RuntimeTest::TearDown();
  }

  static std::int64_t count() { return onStressHeap() ? 5000 : underTool() ? 50'000 : 1'000'000; }

 private:
  KeyHashSeed before_ = {};
};

using KeyAt = std::function<NativeCollectionKey(std::int64_t)>;

// The lines of buckets and the keys that a search for each of the keys looks at, in a map of them all, for each key.
double stepsPerKey(std::int64_t count, const KeyAt& keyAt) {
  const Handle map = object("Map");
  auto& table = getMapData(map)->hash;
  for (std::int64_t i = 0; i < count; ++i) {
    const NativeCollectionKey key = keyAt(i);
    auto place = table.find(key);
    if (place.node != nullptr) continue;
    table.makeRoom(place, key);
    table.insert(place, key, {nullptr, nullptr});
  }
  std::uint64_t steps = 0;
  const collections::BucketLines& lines = table.lines();
  table.forEach([&](const NativeCollectionKey& key, const NativeMapEntry&) {
    const std::uint16_t tag = collections::BucketLine::tagOf(key.hash);
    const collections::BucketLine* line = lines.firstLine(key.hash);
    bool found = false;
    while (line != nullptr && !found) {
      ++steps;
      found = line->visitPlacesWith(tag, [&](std::uint32_t place) {
        ++steps;
        return &table.at(place).key == &key;
      });
      line = lines.nextLine(line);
    }
    EXPECT_TRUE(found);
  });
  EXPECT_EQ(table.count(), static_cast<std::uint64_t>(count)) << "keys that are equal";
  return static_cast<double>(steps) / static_cast<double>(count);
}

NativeCollectionKey numberKey(std::uint64_t number) { return integerCollectionKey(static_cast<std::int64_t>(number)); }

// SplitMix64.
std::uint64_t randomBits(std::uint64_t index) {
  std::uint64_t mixed = (index + 1) * 0x9E3779B97F4A7C15;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

double stepsPerRandomKey(std::int64_t count) {
  return stepsPerKey(count, [](std::int64_t i) { return numberKey(randomBits(static_cast<std::uint64_t>(i))); });
}

// The first keys that fall into a thirtieth of the buckets.
template <class Key, class Make>
std::vector<Key> collidingKeys(std::int64_t count, Make make) {
  std::vector<Key> chosen;
  for (std::uint64_t i = 0; static_cast<std::int64_t>(chosen.size()) < count; ++i) {
    Key key = make(i);
    if constexpr (std::is_same_v<Key, std::uint64_t>) {
      if (numberKey(key).hash >> 27 == 5) chosen.push_back(key);
    } else {
      if (makeNativeStringCollectionKey(key).hash >> 27 == 5) chosen.push_back(std::move(key));
    }
  }
  return chosen;
}

TEST_F(ChosenKeys, NumbersThatCollideUnderOneSeed_CostWhatRandomOnesDoUnderAnother) {
  runtime::drawKeyHashSeed(1);
  const std::vector<std::uint64_t> chosen = collidingKeys<std::uint64_t>(count(), randomBits);
  const auto chosenAt = [&](std::int64_t i) { return numberKey(chosen[static_cast<std::size_t>(i)]); };
  const double random = stepsPerRandomKey(count());
  EXPECT_GE(stepsPerKey(onStressHeap() ? count() : 20'000, chosenAt), 2 * random) << "they were not chosen well";
  for (const std::uint64_t seed : {2ULL, 0ULL}) {
    runtime::drawKeyHashSeed(seed);
    EXPECT_LE(stepsPerKey(count(), chosenAt), 2 * random) << seed;
  }
}

TEST_F(ChosenKeys, TextsThatCollideUnderOneSeed_CostWhatRandomOnesDoUnderAnother) {
  const std::int64_t some = count() / 20;  // thirty times as many are tried
  const double random = stepsPerRandomKey(some);
  for (const std::size_t length : {8U, 16U, 40U}) {
    runtime::drawKeyHashSeed(1);
    const auto chosen = collidingKeys<std::string>(some, [&](std::uint64_t i) {
      std::string text(length, 'x');
      for (std::size_t at = 0; at < 7; ++at) text[at] = static_cast<char>('0' + ((i >> (6 * at)) & 63));
      return text;
    });
    const auto chosenAt = [&](std::int64_t i) {
      return makeNativeStringCollectionKey(chosen[static_cast<std::size_t>(i)]);
    };
    EXPECT_GE(stepsPerKey(some, chosenAt), 2 * random) << "they were not chosen well";
    runtime::drawKeyHashSeed(2);
    EXPECT_LE(stepsPerKey(some, chosenAt), 2 * random) << length;
  }
}

TEST_F(ChosenKeys, RegularNumbers_CostWhatRandomOnesDo) {
  const std::int64_t some = count() / 5;
  const double random = stepsPerRandomKey(some);
  for (const std::uint64_t step : {1ULL, 1ULL << 10, 1ULL << 32, (1ULL << 44) + 1}) {
    EXPECT_LE(stepsPerKey(some, [=](std::int64_t i) { return numberKey(static_cast<std::uint64_t>(i) * step); }),
              2 * random)
        << step;
  }
}

}  // namespace
}  // namespace vorn::tests
