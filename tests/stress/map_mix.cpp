// Synchronised maps: every native of the map classes.
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <string>

#include "tests/stress/keyed_models.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

// A value tells the key that it belongs to: it is its number times this and a little more.
constexpr long long kKeyRange = 1000;
constexpr long long kAbsent = -1;

class MapMix : public Mix {
 public:
  explicit MapMix(const char* className) : className_(className) {
    for (Shared& map : maps_) map = vorn_object_new(className);
    open_ = vorn_object_new(className);
    for (auto& ofPlayer : values_) {
      for (auto& ofMap : ofPlayer) std::ranges::fill(ofMap, kAbsent);
    }
  }

  std::vector<Operation> operations() override {
    std::vector<Operation> all = writes();
    for (const auto more : {&MapMix::reads, &MapMix::listings, &MapMix::openOperations}) {
      for (Operation& operation : (this->*more)()) all.push_back(std::move(operation));
    }
    return all;
  }

  void finish() override {
    for (int which = 0; which < 2; ++which) {
      long long entries = 0;
      for (const auto& ofPlayer : values_) {
        entries += std::ranges::count_if(ofPlayer[which], [](long long value) { return value != kAbsent; });
      }
      expect(vorn_collections_Map_size(maps_[which]) == entries, "what was put minus what was removed");
    }
    for (const Shared* map : {&maps_[0], &maps_[1], &open_}) {
      const std::string fault = faultOf(classNamed(className_), *map);
      if (!fault.empty()) diverge(fault);
    }
  }

 private:
  struct Entry {
    void* map;
    int which;
    void* key;
    long long number;
    long long& value;
  };
  static Keys keysOf(int which) { return which == 0 ? Keys::Numbers : Keys::Texts; }
  Entry entryOf(Player& player) {
    const int which = player.random.below(2);
    const int key = player.random.below(kKeysOfOne);
    const long long number = keyNumber(player, key);
    return {maps_[which], which, keyOf(keysOf(which), number), number, values_[player.number][which][key]};
  }

  static long long valueOf(void* box) {
    std::int64_t value = kAbsent;
    vorn_unbox_integer(box, &value);
    return value;
  }

  std::vector<Operation> writes() {
    const auto putting = [this](const char* native, auto put) {
      return Operation{native, [this, put](Player& player) {
                         const Entry entry = entryOf(player);
                         const long long value = entry.number * kKeyRange + player.random.below(kKeyRange);
                         void* const box = boxed(value);
                         if (attempt(player, [&] { put(entry.map, entry.key, box); })) entry.value = value;
                       }};
    };
    const Operation remove = {
        "Map_remove", [this](Player& player) {
          const Entry entry = entryOf(player);
          bool removed = false;
          if (!attempt(player, [&] { removed = vorn_collections_Map_remove(entry.map, entry.key); })) {
            return;
          }
          expect(removed == (entry.value != kAbsent), "remove of an own key");
          entry.value = kAbsent;
        }};
    return {putting("Map_put", vorn_collections_Map_put),
            putting("Map__set", vorn_collections_Map__set),
            putting("Map_operator_index_eq", vorn_collections_Map_operator_index_eq),
            remove,
            remove,
            {"Map_reserve", [this](Player& player) {
               attempt(player, [&] { vorn_collections_Map_reserve(maps_[0], player.random.below(600)); });
             }}};
  }

  std::vector<Operation> reads() {
    const auto looking = [this](const char* native, auto look) {
      return Operation{native, [this, look](Player& player) {
                         const Entry entry = entryOf(player);
                         long long found = entry.value;
                         if (!attempt(player, [&] { found = look(entry); })) return;
                         forgive("KeyException");
                         expect(found == entry.value, "the value of an own key");
                       }};
    };
    return {
        looking("Map__get",
                [](const Entry& entry) { return valueOf(vorn_collections_Map__get(entry.map, entry.key)); }),
        looking("Map_operator_index",
                [](const Entry& entry) { return valueOf(vorn_collections_Map_operator_index(entry.map, entry.key)); }),
        looking("Map_tryGet",
                [](const Entry& entry) {
                  void* value = nullptr;
                  const bool found = vorn_collections_Map_tryGet(entry.map, entry.key, &value);
                  return found ? valueOf(value) : kAbsent;
                }),
        looking("Map_operator_in",
                [](const Entry& entry) {
                  const bool found = vorn_collections_Map_operator_in(entry.map, entry.key);
                  return found == (entry.value != kAbsent) ? entry.value : kAbsent - 1;
                }),
        looking("Map_containsValue",
                [](const Entry& entry) {
                  void* const box = boxed(entry.value != kAbsent ? entry.value : entry.number * kKeyRange + kKeyRange);
                  const bool found = vorn_collections_Map_containsValue(entry.map, box);
                  // Without a value of its own, the next player's is asked for, which may be there or not.
                  return entry.value == kAbsent || found ? entry.value : kAbsent - 1;
                }),
        {"Map_size",
         [this](Player& player) {
           const int which = player.random.below(2);
           const auto& own = values_[player.number][which];
           expect(vorn_collections_Map_size(maps_[which]) >=
                      std::ranges::count_if(own, [](long long value) { return value != kAbsent; }),
                  "fewer entries than the player's own");
         }},
    };
  }

  // ---- Lists of the whole map ---------------------------------------------------------------------------------------

  // Checks that the player's own numbers are listed as they are in the map.
  void expectOwn(const Player& player, int which, const std::vector<long long>& numbers, bool areValues) {
    std::vector<long long> expected;
    for (int key = 0; key < kKeysOfOne; ++key) {
      const long long value = values_[player.number][which][key];
      if (value != kAbsent) expected.push_back(areValues ? value : keyNumber(player, key));
    }
    std::vector<long long> found;
    for (const long long number : numbers) {
      if (isOwn(player, areValues ? number / kKeyRange : number)) found.push_back(number);
    }
    if (className_ == "SortedMapSync" && !areValues) {
      expect(std::is_sorted(numbers.begin(), numbers.end()), "the keys of a sorted map are not in order");
    }
    std::ranges::sort(found);
    std::ranges::sort(expected);
    expect(found == expected, "a listing has other entries of the player's own");
  }

  // A listing by a native, of which one number an element is told.
  template <class List, class Tell>
  Operation listing(const char* native, bool areValues, List list, Tell tell) {
    return {native, [this, areValues, list, tell](Player& player) {
              const int which = player.random.below(2);
              void* const listed = attemptNew(player, [&] { return list(maps_[which]); });
              if (listed == nullptr) return;
              std::vector<long long> numbers;
              for (long long i = 0; i < vorn_collections_ArrayList_size(listed); ++i) {
                numbers.push_back(tell(vorn_collections_ArrayList_operator_index(listed, i)));
              }
              expectOwn(player, which, numbers, areValues);
            }};
  }

  std::vector<Operation> listings() {
    return {
        listing("Map_keys", false, vorn_collections_Map_keys, numberOf),
        listing("Map_values", true, vorn_collections_Map_values, valueOf),
        listing("Map_items", true, vorn_collections_Map_items,
                [](void* item) {
                  const long long key = numberOf(vorn_collections_Tuple_operator_index(item, 0));
                  const long long value = valueOf(vorn_collections_Tuple_operator_index(item, 1));
                  expect(value / kKeyRange == key, "an item has the value of another key");
                  return value;
                }),
        {"Map_toString",
         [this](Player& player) {
           void* const text = attemptNew(player, [&] { return vorn_collections_Map_toString(maps_[0]); });
           if (text == nullptr) return;
           std::vector<long long> keys;
           const std::vector<long long> numbers = numbersIn(vorn_string_text(text));
           for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
             keys.push_back(numbers[i]);
             expect(numbers[i + 1] / kKeyRange == numbers[i], "a display has the value of another key");
           }
           expectOwn(player, 0, keys, false);
         }},
        {"Map_operator_eq",
         [this](Player& player) {
           bool equal = true;
           attempt(player, [&] { equal = vorn_collections_Map_operator_eq(maps_[0], maps_[0]); });
           expect(equal, "a map is not equal to itself");
         }},
        {"Map_operator_ne",
         [this](Player& player) {
           bool unequal = false;
           const auto& own = values_[player.number][0];
           const bool some = std::ranges::any_of(own, [](long long value) { return value != kAbsent; });
           if (!attempt(player, [&] { unequal = vorn_collections_Map_operator_ne(maps_[0], maps_[1]); })) return;
           expect(unequal || !some, "maps with unlike keys are equal");
         }},
    };
  }

  // ---- A map with which anything is done ----------------------------------------------------------------------------

  std::vector<Operation> openOperations() {
    const auto meddling = [this](const char* native, auto call) {
      return Operation{native, [this, call](Player& player) { attempt(player, [&] { call(open_, player); }); }};
    };
    return {
        meddling("Map_clear", [](void* map, Player&) { vorn_collections_Map_clear(map); }),
        meddling("Map_put",
                 [](void* map, Player& player) {
                   const long long number = player.random.below(300);
                   vorn_collections_Map_put(map, boxed(number), boxed(number * kKeyRange));
                 }),
        meddling("Map_remove",
                 [](void* map, Player& player) { vorn_collections_Map_remove(map, boxed(player.random.below(300))); }),
        meddling("Map_reserve",
                 [](void* map, Player& player) { vorn_collections_Map_reserve(map, player.random.below(900)); }),
        meddling("Map__get",
                 [](void* map, Player& player) {
                   const long long number = player.random.below(300);
                   void* const value = vorn_collections_Map__get(map, boxed(number));
                   expect(value == nullptr || valueOf(value) == number * kKeyRange, "the value of another key");
                 }),
        meddling("Map_items", [](void* map, Player&) { vorn_collections_Map_items(map); }),
        meddling("Map_operator_eq", [this](void* map, Player&) { vorn_collections_Map_operator_eq(map, maps_[0]); }),
    };
  }

  std::string className_;
  Shared maps_[2];  // keys are numbers, texts
  long long values_[kPlayers][2][kKeysOfOne];
  Shared open_;
};

}  // namespace

Topic mapTopic(const char* className) { return mixTopic<MapMix>(className, className); }

}  // namespace vorn::tests::stress
