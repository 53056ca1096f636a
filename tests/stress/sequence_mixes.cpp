// Immutable lists and tuples: shared ones are read by all players, new ones are made of lists that others change.
#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <string>

#include "tests/stress/lists.h"
#include "tests/stress/mix.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

constexpr int kItems = 20;

// Two synchronised lists, unboxed and boxed, whose elements always add up to zero; the players change them all the time.
class BalancedLists {
 public:
  BalancedLists() {
    for (Shared* list : {&unboxed_, &boxed_}) vorn_collections_ArrayList_addAll(*list, pairOf(5, -5));
    vorn_collections_ArrayList_add(boxed_, vorn_box_double(0.5));
    vorn_collections_ArrayList_add(boxed_, vorn_box_double(-0.5));
  }

  void* any(Player& player) const { return player.random.oneIn(2) ? unboxed_ : boxed_; }

  Operation change() const {
    return {"ArrayList_addAll", [this](Player& player) {
              void* const list = any(player);
              void* const source = balancedPair(player);
              attempt(player, [&] {
                if (vorn_collections_ArrayList_size(list) > 30) {
                  vorn_collections_ArrayList_sliceAssign(list, 0, 0, 1, nullptr, nullptr, source);
                } else {
                  vorn_collections_ArrayList_addAllAt(list, 0, source);
                }
                vorn_collections_ArrayList_reverse(list);
              });
            }};
  }

  void finish() const {
    for (const Shared* list : {&unboxed_, &boxed_}) {
      const std::string fault = faultOf(classNamed("ArrayListSync"), *list);
      if (!fault.empty()) diverge(fault);
      expect(vorn_collections_ArrayList_sumF64Fast(*list) == 0, "the sum of balanced values in the end");
    }
  }

 private:
  Shared unboxed_{"ArrayListSync<Int>"};
  Shared boxed_{"ArrayListSync"};
};

Operation plainly(const char* native, std::function<bool(Player&)> holds) {
  return {native, [native, holds = std::move(holds)](Player& player) {
            bool held = true;
            if (!attempt(player, [&] { held = holds(player); })) return;
            if (!held && !player.faulted) diverge(std::string(native) + " gives something else");
          }};
}

class ImmutableMix : public Mix {
 public:
  ImmutableMix() {
    const Shared source("LinkedList<Int>");
    for (int i = 0; i < kItems; ++i) vorn_collections_ArrayList_addInt(source, kItems - i);
    vorn_collections_ImmutableList_ctor(list_, source);
  }

  std::vector<Operation> operations() override {
    return {
        lists_.change(),
        {"ImmutableList_ctor",
         [this](Player& player) {
           void* const fresh = vorn_object_new("ImmutableList");
           void* const source = lists_.any(player);
           if (!attempt(player, [&] { vorn_collections_ImmutableList_ctor(fresh, source); })) return;
           expect(vorn_collections_ArrayList_sumF64Fast(fresh) == 0, "a list is copied half changed");
         }},
        plainly("ImmutableList_size", [this](Player&) { return vorn_collections_ImmutableList_size(list_) == kItems; }),
        plainly("ImmutableList_operator_index",
                [this](Player& player) {
                  const int index = player.random.below(kItems);
                  std::int64_t value = 0;
                  vorn_unbox_integer(vorn_collections_ImmutableList_operator_index(list_, index), &value);
                  return value == kItems - index;
                }),
        plainly("ImmutableList_operator_index_eq",
                [this](Player&) {
                  vorn_collections_ImmutableList_operator_index_eq(list_, 0, nullptr);
                  return forgive("ReadOnlyException");
                }),
        plainly("ImmutableList_indexOf",
                [this](Player& player) {
                  const int index = player.random.below(kItems);
                  return vorn_collections_ImmutableList_indexOf(list_, boxed(kItems - index), 0) == index;
                }),
        plainly("ImmutableList_lastIndexOf",
                [this](Player& player) {
                  const int index = player.random.below(kItems);
                  return vorn_collections_ImmutableList_lastIndexOf(list_, boxed(kItems - index), -1) == index;
                }),
        plainly("ImmutableList_sortNew",
                [this](Player&) {
                  void* const sorted = vorn_collections_ImmutableList_sortNew(list_);
                  if (sorted == nullptr) return false;
                  const std::vector<long long> elements = elementsOf(sorted);
                  return elements.size() == kItems && std::is_sorted(elements.begin(), elements.end());
                }),
        plainly("ImmutableList_toString", [this](Player&) {
          void* const text = vorn_collections_ImmutableList_toString(list_);
          return text != nullptr && numbersIn(vorn_string_text(text)).size() == kItems;
        })};
  }

  void finish() override {
    lists_.finish();
    const std::string fault = faultOf(classNamed("ImmutableList"), list_);
    if (!fault.empty()) diverge(fault);
  }

 private:
  BalancedLists lists_;
  Shared list_{"ImmutableList"};
};

class TupleMix : public Mix {
 public:
  TupleMix() {
    const Shared source("ArrayList<Int>");
    for (int i = 0; i < kItems; ++i) vorn_collections_ArrayList_addInt(source, kItems - i);
    vorn_collections_Tuple_ctor(tuple_, source);
  }

  std::vector<Operation> operations() override {
    return {lists_.change(),
            {"Tuple_ctor",
             [this](Player& player) {
               void* const fresh = vorn_object_new("Tuple");
               void* const source = lists_.any(player);
               if (!attempt(player, [&] { vorn_collections_Tuple_ctor(fresh, source); })) return;
               double sum = 0;
               for (long long i = 0; i < vorn_collections_Tuple_size(fresh); ++i) {
                 std::int64_t whole = 0;
                 double real = 0;
                 void* const item = vorn_collections_Tuple_operator_index(fresh, i);
                 if (vorn_unbox_integer(item, &whole) != 0) sum += static_cast<double>(whole);
                 if (vorn_unbox_floating(item, &real) != 0) sum += real;
               }
               expect(sum == 0, "a list is packed half changed");
             }},
            plainly("Tuple_size", [this](Player&) { return vorn_collections_Tuple_size(tuple_) == kItems; }),
            plainly("Tuple_operator_index",
                    [this](Player& player) {
                      const int index = player.random.below(kItems);
                      std::int64_t value = 0;
                      vorn_unbox_integer(vorn_collections_Tuple_operator_index(tuple_, index - kItems), &value);
                      return value == kItems - index;
                    }),
            plainly("Tuple_operator_index_eq",
                    [this](Player&) {
                      vorn_collections_Tuple_operator_index_eq(tuple_, 0, nullptr);
                      return forgive("ReadOnlyException");
                    }),
            plainly("Tuple_toString", [this](Player&) {
              void* const text = vorn_collections_Tuple_toString(tuple_);
              return text != nullptr && numbersIn(vorn_string_text(text)).size() == kItems;
            })};
  }

  void finish() override { lists_.finish(); }

 private:
  BalancedLists lists_;
  Shared tuple_{"Tuple"};
};

}  // namespace

Topic immutableTopic() { return mixTopic<ImmutableMix>("ImmutableList"); }
Topic tupleTopic() { return mixTopic<TupleMix>("Tuple"); }

}  // namespace vorn::tests::stress
