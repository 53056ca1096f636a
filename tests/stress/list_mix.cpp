// Synchronised lists: every native of the list classes.
#include <vorn/collections/array_list.h>

#include <algorithm>
#include <climits>
#include <string>

#include "tests/stress/lists.h"
#include "tests/stress/mix.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

// Values that only one player adds and removes: 8 + its number, 16 + its number, ...
constexpr int kOwnValues = 6;
constexpr int kMostOfOne = 4;

long long ownValue(const Player& player, int which) { return 8 * (which + 1) + player.number; }

// How often each of a player's values is in a list. Nobody else touches them, so that the player knows at any moment.
struct Ledger {
  int counts[kOwnValues] = {};

  [[nodiscard]] int total() const {
    int sum = 0;
    for (const int count : counts) sum += count;
    return sum;
  }
};

class ListMix : public Mix {
 public:
  explicit ListMix(const char* className) : className_(className) {
    const std::string typed = className_ + "<Int>";
    ledgers_[0] = vorn_object_new(typed.c_str());
    ledgers_[1] = vorn_object_new(className);
    // What is no Int keeps the second one in boxed storage; it counts as 0.
    vorn_collections_ArrayList_add(ledgers_[1], vorn_box_double(0.5));
    balanced_ = vorn_object_new(typed.c_str());
    counted_ = vorn_object_new(typed.c_str());
    open_ = vorn_object_new(typed.c_str());
  }

  std::vector<Operation> operations() override {
    std::vector<Operation> all = ledgerOperations();
    for (const auto more : {&ListMix::ledgerReads, &ListMix::balancedOperations, &ListMix::balancedReads,
                            &ListMix::countedOperations, &ListMix::openOperations}) {
      for (Operation& operation : (this->*more)()) all.push_back(std::move(operation));
    }
    for (Operation& operation : newListOperations(balanced_)) all.push_back(std::move(operation));
    return all;
  }

  void finish() override {
    long long size = 0;
    for (int which = 0; which < 2; ++which) {
      size = which;
      for (const auto& ledgersOfOne : models_) size += ledgersOfOne[which].total();
      expect(vorn_collections_ArrayList_size(ledgers_[which]) == size, "what was added minus what was removed");
    }
    expect(vorn_collections_ArrayList_sumInt(balanced_) == 0, "the sum of balanced values in the end");
    long long counted = 0;
    for (const long long difference : countedBy_) counted += difference;
    expect(vorn_collections_ArrayList_size(counted_) == counted, "additions minus removals by position");
    for (const Shared* list : {&ledgers_[0], &ledgers_[1], &balanced_, &counted_, &open_}) {
      const std::string fault = faultOf(classNamed(className_), *list);
      if (!fault.empty()) diverge(fault);
    }
  }

 private:
  // ---- Lists whose every value is accounted for ---------------------------------------------------------------------

  // One of the two lists, and what the player has in it.
  struct Entry {
    void* list;
    Ledger& ledger;
    int which;  // of the player's values
    long long value;
  };
  Entry entryOf(Player& player) {
    const int list = player.random.below(2);
    const int which = player.random.below(kOwnValues);
    return {ledgers_[list], models_[player.number][list], which, ownValue(player, which)};
  }

  // Adds a value by a native, or removes one where there are enough.
  template <class Add>
  Operation adding(const char* native, Add add) {
    return {native, [this, add](Player& player) {
              const Entry entry = entryOf(player);
              if (entry.ledger.counts[entry.which] >= kMostOfOne) {
                removeOne(player, entry);
                return;
              }
              void* const box = boxed(entry.value);
              if (attempt(player, [&] { add(entry.list, entry.value, box); })) ++entry.ledger.counts[entry.which];
            }};
  }

  static void removeOne(Player& player, const Entry& entry) {
    void* const box = boxed(entry.value);
    bool removed = false;
    if (!attempt(player, [&] { removed = vorn_collections_ArrayList_remove(entry.list, box); })) return;
    expect(removed == (entry.ledger.counts[entry.which] > 0), "remove of an own value");
    if (removed) --entry.ledger.counts[entry.which];
  }

  // Adds a pair of values as a whole.
  template <class Add>
  Operation addingPairs(const char* native, Add add) {
    return {native, [this, add](Player& player) {
              const Entry entry = entryOf(player);
              if (entry.ledger.counts[entry.which] + 2 > kMostOfOne) {
                removeOne(player, entry);
                return;
              }
              void* const source = pairOf(entry.value, entry.value);
              if (attempt(player, [&] { add(entry.list, source); })) entry.ledger.counts[entry.which] += 2;
            }};
  }

  // Calls something that must leave what is in the list there.
  template <class Call>
  Operation keeping(const char* native, Call call) {
    return {native, [this, call](Player& player) {
              const Entry entry = entryOf(player);
              attempt(player, [&] { call(entry.list, player); });
            }};
  }

  std::vector<Operation> ledgerOperations() {
    return {
        adding("ArrayList_add", [](void* list, long long, void* box) { vorn_collections_ArrayList_add(list, box); }),
        adding("ArrayList_addInt",
               [](void* list, long long value, void*) { vorn_collections_ArrayList_addInt(list, value); }),
        adding(
            "ArrayList_addPrimitiveI64",
            [](void* list, long long value, void*) { vorn_collections_ArrayList_addPrimitiveI64(list, value, "Int"); }),
        adding("ArrayList_addIntToData",
               [](void* list, long long value, void*) {
                 vorn_collections_ArrayList_addIntToData(vorn_collections_ArrayList_dataHandle(list), value);
               }),
        adding("ArrayList_addAt",
               [](void* list, long long, void* box) { vorn_collections_ArrayList_addAt(list, 0, box); }),
        addingPairs("ArrayList_addAll",
                    [](void* list, void* source) { vorn_collections_ArrayList_addAll(list, source); }),
        addingPairs("ArrayList_addAllAt",
                    [](void* list, void* source) { vorn_collections_ArrayList_addAllAt(list, 0, source); }),
        {"ArrayList_remove", [this](Player& player) { removeOne(player, entryOf(player)); }},
        keeping("ArrayList_sort", [](void* list, Player&) { vorn_collections_ArrayList_sort(list); }),
        keeping("ArrayList_sortI64Fast", [](void* list, Player&) { vorn_collections_ArrayList_sortI64Fast(list); }),
        keeping("ArrayList_sortF64Fast", [](void* list, Player&) { vorn_collections_ArrayList_sortF64Fast(list); }),
        keeping("ArrayList_reverse", [](void* list, Player&) { vorn_collections_ArrayList_reverse(list); }),
        keeping("ArrayList_shuffle", [](void* list, Player&) { vorn_collections_ArrayList_shuffle(list); }),
        keeping("ArrayList_reserve",
                [](void* list, Player& player) { vorn_collections_ArrayList_reserve(list, player.random.below(300)); }),
        keeping("ArrayList_i64DataPtr", [](void* list, Player&) { vorn_collections_ArrayList_i64DataPtr(list); }),
        keeping("ArrayList_f64DataPtr", [](void* list, Player&) { vorn_collections_ArrayList_f64DataPtr(list); }),
        keeping("ArrayList_primitiveDataPtr",
                [](void* list, Player&) { vorn_collections_ArrayList_primitiveDataPtr(list); }),
    };
  }

  // Checks that a copy has as many of each of the player's values as the list had all the time.
  static void expectOwn(const Player& player, const Ledger& ledger, const std::vector<long long>& elements) {
    for (int which = 0; which < kOwnValues; ++which) {
      const auto found = std::count(elements.begin(), elements.end(), ownValue(player, which));
      if (found != ledger.counts[which]) {
        diverge("a copy has " + std::to_string(found) + " of an own value, not " +
                std::to_string(ledger.counts[which]));
      }
    }
  }

  // Makes a list of the ledger's, in which all values must be found.
  template <class Make>
  Operation copying(const char* native, Make make, bool sorted = false) {
    return {native, [this, make, sorted](Player& player) {
              const Entry entry = entryOf(player);
              void* const result = attemptNew(player, [&] { return make(entry.list); });
              if (result == nullptr) return;
              const std::vector<long long> elements = elementsOf(result);
              expectOwn(player, entry.ledger, elements);
              if (sorted) expect(std::is_sorted(elements.begin(), elements.end()), "a sorted copy is not sorted");
            }};
  }

  template <class Make>
  Operation telling(const char* native, Make make) {
    return {native, [this, make](Player& player) {
              const Entry entry = entryOf(player);
              void* const result = attemptNew(player, [&] { return make(entry.list); });
              if (result != nullptr) expectOwn(player, entry.ledger, numbersIn(vorn_string_text(result)));
            }};
  }

  // Reads something of the list that is at least what the player has in it.
  template <class Read>
  Operation measuring(const char* native, Read read) {
    return {native, [this, read](Player& player) {
              const Entry entry = entryOf(player);
              expect(static_cast<double>(read(entry.list)) >= entry.ledger.total(), "less than the player's own");
            }};
  }

  // Looks for one of the player's values.
  template <class Find>
  Operation finding(const char* native, Find find) {
    return {native, [this, find](Player& player) {
              const Entry entry = entryOf(player);
              void* const box = boxed(entry.value);
              long long found = 0;
              if (!attempt(player, [&] { found = find(entry.list, box); })) return;
              expect(found == entry.ledger.counts[entry.which] || (found == -2 && entry.ledger.counts[entry.which] > 0),
                     "an own value is not found as often as it was added");
            }};
  }

  // Reads the element at some index; there may be none.
  template <class Read>
  Operation reading(const char* native, Read read) {
    return {native, [this, read](Player& player) {
              const Entry entry = entryOf(player);
              double value = 0;
              const bool done =
                  attempt(player, [&] { value = static_cast<double>(read(entry.list, player.random.below(60) - 20)); });
              const bool raised = forgive("IndexException");
              expect(!done || raised || (value >= 0 && value < 8 * (kOwnValues + 2)), "a value that nobody added");
            }};
  }

  std::vector<Operation> ledgerReads() {
    constexpr long long kEnd = LLONG_MAX;
    return {
        // -2 stands for "some".
        finding("ArrayList_count", [](void* list, void* box) { return vorn_collections_ArrayList_count(list, box); }),
        finding("ArrayList_operator_in",
                [](void* list, void* box) { return vorn_collections_ArrayList_operator_in(list, box) ? -2LL : 0LL; }),
        finding(
            "ArrayList_indexOf",
            [](void* list, void* box) { return vorn_collections_ArrayList_indexOf(list, box, 0) >= 0 ? -2LL : 0LL; }),
        finding("ArrayList_lastIndexOf",
                [](void* list, void* box) {
                  return vorn_collections_ArrayList_lastIndexOf(list, box, -1) >= 0 ? -2LL : 0LL;
                }),
        measuring("ArrayList_size", [](void* list) { return vorn_collections_ArrayList_size(list); }),
        measuring("ArrayList_sizeFast", [](void* list) { return vorn_collections_ArrayList_sizeFast(list); }),
        measuring("ArrayList_sumInt", [](void* list) { return vorn_collections_ArrayList_sumInt(list); }),
        measuring("ArrayList_sumI64Fast", [](void* list) { return vorn_collections_ArrayList_sumI64Fast(list); }),
        measuring("ArrayList_sumF64Fast", [](void* list) { return vorn_collections_ArrayList_sumF64Fast(list); }),
        reading("ArrayList_getInt",
                [](void* list, long long index) { return vorn_collections_ArrayList_getInt(list, index); }),
        reading("ArrayList_getIntFast",
                [](void* list, long long index) { return vorn_collections_ArrayList_getIntFast(list, index); }),
        reading("ArrayList_getDouble",
                [](void* list, long long index) { return vorn_collections_ArrayList_getDouble(list, index); }),
        reading("ArrayList_getIntFromData",
                [](void* list, long long index) {
                  return vorn_collections_ArrayList_getIntFromData(vorn_collections_ArrayList_dataHandle(list), index);
                }),
        reading("ArrayList_operator_index",
                [](void* list, long long index) {
                  std::int64_t value = 0;
                  vorn_unbox_integer(vorn_collections_ArrayList_operator_index(list, index), &value);
                  return value;
                }),
        copying("ArrayList_slice",
                [](void* list) { return vorn_collections_ArrayList_slice(list, 0, kEnd, 1, list, list); }),
        copying("ArrayList_slice",
                [](void* list) { return vorn_collections_ArrayList_slice(list, 0, 0, -1, nullptr, nullptr); }),
        copying("ArrayList_reverseNew", vorn_collections_ArrayList_reverseNew),
        copying("ArrayList_sortNew", vorn_collections_ArrayList_sortNew, true),
        copying("ArrayList_repeat", [](void* list) { return vorn_collections_ArrayList_repeat(list, 1); }),
        copying("ArrayList_concat", [](void* list) { return vorn_collections_ArrayList_concat(list, pairOf(1, 2)); }),
        telling("ArrayList_toString", vorn_collections_ArrayList_toString),
        telling("ArrayList_join", [](void* list) { return vorn_collections_ArrayList_join(list, " "); }),
        {"ArrayList_dataHandle",
         [this](Player&) {
           expect(vorn_collections_ArrayList_dataHandle(ledgers_[0]) != nullptr, "a list without a record");
         }},
    };
  }

  // ---- A list whose sum is always zero ------------------------------------------------------------------------------

  // Changes the balanced list as a whole; it never grows large.
  template <class Change>
  Operation balancing(const char* native, Change change) {
    return {native, [this, change](Player& player) {
              void* const source = balancedPair(player);
              if (vorn_collections_ArrayList_size(balanced_) > 40) {
                vorn_collections_ArrayList_clear(balanced_);
              }
              attempt(player, [&] { change(balanced_, source); });
            }};
  }

  // Reads a sum of the balanced list, which is zero at any moment.
  template <class Sum>
  Operation summing(const char* native, Sum sum) {
    return {native, [this, sum](Player& player) {
              double total = 0;
              attempt(player, [&] { total = static_cast<double>(sum(balanced_)); });
              expect(total == 0, "balanced values are seen half changed");
            }};
  }

  static long long sumOfList(void* list) { return list != nullptr ? sumOf(elementsOf(list)) : 0; }

  std::vector<Operation> balancedOperations() {
    constexpr long long kEnd = LLONG_MAX;
    return {
        balancing("ArrayList_addAll",
                  [](void* list, void* source) { vorn_collections_ArrayList_addAll(list, source); }),
        balancing("ArrayList_addAllAt",
                  [](void* list, void* source) { vorn_collections_ArrayList_addAllAt(list, 0, source); }),
        balancing("ArrayList_addAll", [](void* list, void*) { vorn_collections_ArrayList_addAll(list, list); }),
        balancing("ArrayList_sliceAssign",
                  [](void* list, void* source) {
                    vorn_collections_ArrayList_sliceAssign(list, 0, kEnd, 1, nullptr, nullptr, source);
                  }),
        balancing("ArrayList_sliceAssign",
                  [](void* list, void* source) {
                    vorn_collections_ArrayList_sliceAssign(list, 0, 0, 1, list, list, source);
                  }),
        balancing("ArrayList_sort", [](void* list, void*) { vorn_collections_ArrayList_sort(list); }),
        balancing("ArrayList_reverse", [](void* list, void*) { vorn_collections_ArrayList_reverse(list); }),
        balancing("ArrayList_shuffle", [](void* list, void*) { vorn_collections_ArrayList_shuffle(list); }),
    };
  }

  std::vector<Operation> balancedReads() {
    return {
        summing("ArrayList_sumInt", vorn_collections_ArrayList_sumInt),
        summing("ArrayList_sumI64Fast", vorn_collections_ArrayList_sumI64Fast),
        summing("ArrayList_sumF64Fast", vorn_collections_ArrayList_sumF64Fast),
        summing(
            "ArrayList_slice",
            [](void* list) { return sumOfList(vorn_collections_ArrayList_slice(list, 0, 0, 1, nullptr, nullptr)); }),
        summing("ArrayList_concat",
                [](void* list) { return sumOfList(vorn_collections_ArrayList_concat(list, list)); }),
        summing("ArrayList_repeat", [](void* list) { return sumOfList(vorn_collections_ArrayList_repeat(list, 2)); }),
        summing("ArrayList_reverseNew",
                [](void* list) { return sumOfList(vorn_collections_ArrayList_reverseNew(list)); }),
        summing("ArrayList_sortNew", [](void* list) { return sumOfList(vorn_collections_ArrayList_sortNew(list)); }),
        summing(
            "ArrayList_join",
            [](void* list) { return sumOf(numbersIn(vorn_string_text(vorn_collections_ArrayList_join(list, " ")))); }),
    };
  }

  // ---- A list whose size is accounted for ---------------------------------------------------------------------------

  std::vector<Operation> countedOperations() {
    return {
        {"ArrayList_removeAt",
         [this](Player& player) {
           if (!attempt(player, [&] { vorn_collections_ArrayList_removeAt(counted_, -1 + player.random.below(2)); })) {
             return;
           }
           if (!forgive("IndexException")) --countedBy_[player.number];
         }},
        {"ArrayList_add",
         [this](Player& player) {
           if (vorn_collections_ArrayList_size(counted_) > 40) return;
           void* const box = boxed(player.random.below(1000));
           if (attempt(player, [&] { vorn_collections_ArrayList_add(counted_, box); })) ++countedBy_[player.number];
         }},
        {"ArrayList_operator_index_eq",
         [this](Player& player) {
           void* const box = boxed(player.random.below(1000));
           attempt(player, [&] { vorn_collections_ArrayList_operator_index_eq(counted_, -1, box); });
           forgive("IndexException");
         }},
    };
  }

  // ---- A list with which anything is done ---------------------------------------------------------------------------

  // What it raises depends on what the others have made of the list.
  template <class Call>
  Operation meddling(const char* native, Call call) {
    return {native, [this, call](Player& player) {
              if (vorn_collections_ArrayList_size(open_) > 60) vorn_collections_ArrayList_clear(open_);
              attempt(player, [&] { call(open_, player); });
              vorn_errors_clear();
            }};
  }

  std::vector<Operation> openOperations() {
    return {
        meddling("ArrayList_clear", [](void* list, Player&) { vorn_collections_ArrayList_clear(list); }),
        meddling("ArrayList_add",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_add(list, player.random.oneIn(4) ? vorn_string_new("text", 4) : boxed(3));
                 }),
        meddling("ArrayList_addPrimitiveDouble",
                 [](void* list, Player&) { vorn_collections_ArrayList_addPrimitiveDouble(list, 1.5, "Double"); }),
        meddling("ArrayList_addPrimitiveBool",
                 [](void* list, Player&) { vorn_collections_ArrayList_addPrimitiveBool(list, true); }),
        meddling("ArrayList_sliceAssign",
                 [this](void* list, Player&) {
                   vorn_collections_ArrayList_sliceAssign(list, 0, 8, 2, list, list, balanced_);
                 }),
        meddling("ArrayList_addAll",
                 [this](void* list, Player&) { vorn_collections_ArrayList_addAll(list, counted_); }),
        meddling("ArrayList_operator_in",
                 [](void* list, Player&) { vorn_collections_ArrayList_operator_in(list, vorn_text_new("text")); }),
        meddling("ArrayList_prepareIntData",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_prepareIntData(list, player.random.below(20));
                 }),
        meddling("ArrayList_preparePrimitiveI64Data",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_preparePrimitiveI64Data(list, player.random.below(20), "Short");
                 }),
        meddling("ArrayList_prepareDoubleData",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_prepareDoubleData(list, player.random.below(20), "Float");
                 }),
        meddling("ArrayList_commitIntDataSize",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_commitIntDataSize(list, player.random.below(20));
                 }),
        meddling("ArrayList_commitPrimitiveI64DataSize",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_commitPrimitiveI64DataSize(list, player.random.below(20));
                 }),
        meddling("ArrayList_commitDoubleDataSize",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_commitDoubleDataSize(list, player.random.below(20));
                 }),
        meddling("ArrayList_commitPrimitiveDataSize",
                 [](void* list, Player& player) {
                   vorn_collections_ArrayList_commitPrimitiveDataSize(list, player.random.below(20));
                 }),
        meddling("ArrayList_toString", [](void* list, Player&) { vorn_collections_ArrayList_toString(list); }),
    };
  }

  std::string className_;
  Shared ledgers_[2];
  Ledger models_[kPlayers][2];
  Shared balanced_;
  Shared counted_;
  long long countedBy_[kPlayers] = {};
  Shared open_;
};

}  // namespace

Topic listTopic(const char* className) { return mixTopic<ListMix>(className, className); }

}  // namespace vorn::tests::stress
