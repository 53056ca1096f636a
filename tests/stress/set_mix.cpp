// Synchronised sets: every native of the class.
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>

#include <algorithm>
#include <string>

#include "tests/stress/keyed_models.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

class SetMix : public Mix {
 public:
  std::vector<Operation> operations() override {
    std::vector<Operation> all = ownElements();
    for (const auto more : {&SetMix::listings, &SetMix::openOperations}) {
      for (Operation& operation : (this->*more)()) all.push_back(std::move(operation));
    }
    return all;
  }

  void finish() override {
    for (int which = 0; which < 2; ++which) {
      long long elements = 0;
      for (const auto& ofPlayer : present_) elements += std::ranges::count(ofPlayer[which], true);
      expect(vorn_collections_HashSet_size(sets_[which]) == elements, "what was added minus what was removed");
    }
    for (const Shared* set : {&sets_[0], &sets_[1], &open_}) {
      const std::string fault = faultOf(classNamed("HashSetSync"), *set);
      if (!fault.empty()) diverge(fault);
    }
  }

 private:
  struct Element {
    void* set;
    void* value;
    bool& present;
  };
  Element elementOf(Player& player) {
    const int which = player.random.below(2);
    const int key = player.random.below(kKeysOfOne);
    return {sets_[which], keyOf(which == 0 ? Keys::Numbers : Keys::Texts, keyNumber(player, key)),
            present_[player.number][which][key]};
  }

  std::vector<Operation> ownElements() {
    const auto looking = [this](const char* native, auto look) {
      return Operation{native, [this, look](Player& player) {
                         const Element element = elementOf(player);
                         bool found = false;
                         if (!attempt(player, [&] { found = look(element.set, element.value); })) return;
                         expect(found == element.present, "whether an own element is there");
                       }};
    };
    const Operation add = {"HashSet_add", [this](Player& player) {
                             const Element element = elementOf(player);
                             if (attempt(player, [&] { vorn_collections_HashSet_add(element.set, element.value); })) {
                               element.present = true;
                             }
                           }};
    return {add,
            add,
            {"HashSet_remove",
             [this](Player& player) {
               const Element element = elementOf(player);
               bool removed = false;
               if (!attempt(player, [&] { removed = vorn_collections_HashSet_remove(element.set, element.value); })) {
                 return;
               }
               expect(removed == element.present, "remove of an own element");
               element.present = false;
             }},
            looking("HashSet_operator_in", vorn_collections_HashSet_operator_in),
            looking("HashSet_count",
                    [](void* set, void* value) { return vorn_collections_HashSet_count(set, value) == 1; }),
            {"HashSet_reserve", [this](Player& player) {
               attempt(player, [&] { vorn_collections_HashSet_reserve(sets_[0], player.random.below(600)); });
             }}};
  }

  void expectOwn(const Player& player, int which, const std::vector<long long>& numbers) {
    for (int key = 0; key < kKeysOfOne; ++key) {
      const auto found = std::ranges::count(numbers, keyNumber(player, key));
      expect(found == (present_[player.number][which][key] ? 1 : 0), "a listing has other own elements");
    }
  }

  std::vector<Operation> listings() {
    return {
        {"HashSet_items",
         [this](Player& player) {
           const int which = player.random.below(2);
           void* const items = attemptNew(player, [&] { return vorn_collections_HashSet_items(sets_[which]); });
           if (items == nullptr) return;
           std::vector<long long> numbers;
           for (long long i = 0; i < vorn_collections_ArrayList_size(items); ++i) {
             numbers.push_back(numberOf(vorn_collections_ArrayList_operator_index(items, i)));
           }
           expectOwn(player, which, numbers);
         }},
        {"HashSet_toString",
         [this](Player& player) {
           void* const text = attemptNew(player, [&] { return vorn_collections_HashSet_toString(sets_[0]); });
           if (text != nullptr) expectOwn(player, 0, numbersIn(vorn_string_text(text)));
         }},
        {"HashSet_operator_index",
         [this](Player& player) {
           const int which = player.random.below(2);
           void* const element = vorn_collections_HashSet_operator_index(sets_[which], player.random.below(100) - 20);
           if (forgive("IndexException")) return;
           const long long number = numberOf(element);
           expect(number >= 0 && number < kPlayers * kKeysOfOne, "an element that nobody added");
         }},
        {"HashSet_size",
         [this](Player& player) {
           const int which = player.random.below(2);
           expect(
               vorn_collections_HashSet_size(sets_[which]) >= std::ranges::count(present_[player.number][which], true),
               "fewer elements than the player's own");
         }},
    };
  }

  std::vector<Operation> openOperations() {
    const auto meddling = [this](const char* native, auto call) {
      return Operation{native, [this, call](Player& player) { attempt(player, [&] { call(open_, player); }); }};
    };
    return {
        meddling("HashSet_clear", [](void* set, Player&) { vorn_collections_HashSet_clear(set); }),
        meddling("HashSet_add",
                 [](void* set, Player& player) { vorn_collections_HashSet_add(set, boxed(player.random.below(300))); }),
        meddling("HashSet_add", [](void* set, Player&) { vorn_collections_HashSet_add(set, nullptr); }),
        meddling(
            "HashSet_remove",
            [](void* set, Player& player) { vorn_collections_HashSet_remove(set, boxed(player.random.below(300))); }),
        meddling("HashSet_reserve",
                 [](void* set, Player& player) { vorn_collections_HashSet_reserve(set, player.random.below(900)); }),
        meddling("HashSet_items", [](void* set, Player&) { vorn_collections_HashSet_items(set); }),
        meddling("HashSet_operator_index",
                 [](void* set, Player& player) {
                   vorn_collections_HashSet_operator_index(set, player.random.below(40) - 20);
                   forgive("IndexException");
                 }),
    };
  }

  Shared sets_[2] = {Shared("HashSetSync"), Shared("HashSetSync")};  // numbers, texts
  bool present_[kPlayers][2][kKeysOfOne] = {};
  Shared open_{"HashSetSync"};
};

}  // namespace

Topic setTopic() { return mixTopic<SetMix>("HashSetSync"); }

}  // namespace vorn::tests::stress
