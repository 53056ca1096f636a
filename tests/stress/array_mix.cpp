// Synchronised arrays: every native of the class.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <numeric>
#include <string>

#include "tests/stress/lists.h"
#include "tests/stress/mix.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

constexpr int kSlots = 32;
// What a slot holds tells which one it is: its position times this and a little more.
constexpr long long kSlotRange = 1000;

class ArrayMix : public Mix {
 public:
  ArrayMix() {
    for (Shared* array : {&slots_[0], &slots_[1], &longs_, &flags_, &letters_, &units_, &permuted_}) {
      vorn_collections_Array_ctor(*array, kSlots);
    }
    for (int i = 0; i < kSlots; ++i) {
      for (Shared& array : slots_) vorn_collections_Array_setInt(array, i, i * kSlotRange);
      std::ranges::fill(values_[i], i * kSlotRange);
      vorn_collections_Array_setInt(letters_, i, 'a');
      vorn_collections_Array_setInt(units_, i, 'a');
      vorn_collections_Array_setInt(permuted_, i, i + 1);
    }
    texts_[0].assign(kSlots, 'a');
    texts_[1].assign(kSlots, 'a');
    vorn_collections_Array_copyCtor(copied_, permuted_);
    vorn_collections_Array_ctor(remade_, 4);
  }

  std::vector<Operation> operations() override {
    std::vector<Operation> all = slotWrites();
    for (const auto more : {&ArrayMix::slotReads, &ArrayMix::wholeReads, &ArrayMix::texts, &ArrayMix::permutations,
                            &ArrayMix::constructions}) {
      for (Operation& operation : (this->*more)()) all.push_back(std::move(operation));
    }
    return all;
  }

  void finish() override {
    for (int which = 0; which < 2; ++which) {
      for (int i = 0; i < kSlots; ++i) {
        expect(vorn_collections_Array_getInt(slots_[which], i) == values_[i][which], "a slot in the end");
      }
    }
    expect(vorn_collections_Array_sumI64Fast(permuted_) == kSum, "the sum of permuted elements in the end");
    for (const Shared* array :
         {&slots_[0], &slots_[1], &longs_, &flags_, &letters_, &units_, &permuted_, &copied_, &remade_}) {
      const std::string fault = faultOf(classNamed("ArraySync"), *array);
      if (!fault.empty()) diverge(fault);
    }
  }

 private:
  static constexpr long long kSum = kSlots * (kSlots + 1) / 2;

  // ---- Slots, each written by one player only -----------------------------------------------------------------------

  struct Slot {
    void* array;
    int which;
    long long index;
    long long& value;
  };
  Slot slotOf(Player& player) {
    const int index = player.number + kPlayers * player.random.below(kSlots / kPlayers);
    const int which = player.random.below(2);
    return {slots_[which], which, index, values_[index][which]};
  }

  template <class Write>
  Operation writing(const char* native, Write write) {
    return {native, [this, write](Player& player) {
              const Slot slot = slotOf(player);
              const long long value = slot.index * kSlotRange + player.random.below(kSlotRange);
              // The position may be counted from the end too.
              const long long index = player.random.oneIn(2) ? slot.index : slot.index - kSlots;
              if (attempt(player, [&] { write(slot.array, index, value); })) slot.value = value;
            }};
  }

  std::vector<Operation> slotWrites() {
    return {
        writing("Array_setInt", vorn_collections_Array_setInt),
        {"Array_setDouble",
         [this](Player& player) {
           // Only unboxed integers take a double for what it is as an integer.
           const int index = player.number + kPlayers * player.random.below(kSlots / kPlayers);
           const long long value = index * kSlotRange + player.random.below(kSlotRange);
           vorn_collections_Array_setDouble(slots_[0], index, static_cast<double>(value) + 0.25);
           values_[index][0] = value;
         }},
        writing("Array_operator_index_eq",
                [](void* array, long long index, long long value) {
                  vorn_collections_Array_operator_index_eq(array, index, boxed(value));
                }),
        {"Array_setBool",
         [this](Player& player) {
           const int index = player.number + kPlayers * player.random.below(kSlots / kPlayers);
           const bool flag = player.random.oneIn(2);
           vorn_collections_Array_setBool(flags_, index, flag);
           expect((vorn_collections_Array_getInt(flags_, index) != 0) == flag, "a flag that nobody else sets");
         }},
    };
  }

  template <class Read>
  Operation reading(const char* native, Read read) {
    return {native, [this, read](Player& player) {
              const Slot slot = slotOf(player);
              long long found = 0;
              if (!attempt(player, [&] { found = static_cast<long long>(read(slot.array, slot.index, slot.value)); })) {
                return;
              }
              expect(found == slot.value, "a slot that nobody else writes");
            }};
  }

  // Where the value of a slot is found: nowhere else.
  template <class Find>
  Operation finding(const char* native, Find find) {
    return {native, [this, find](Player& player) {
              const Slot slot = slotOf(player);
              void* const box = boxed(slot.value);
              long long found = -2;
              if (attempt(player, [&] { found = find(slot.array, box); })) {
                expect(found == slot.index, "the place of a value");
              }
            }};
  }

  std::vector<Operation> slotReads() {
    return {
        reading("Array_getInt",
                [](void* array, long long index, long long) { return vorn_collections_Array_getInt(array, index); }),
        reading("Array_getDouble",
                [](void* array, long long index, long long) { return vorn_collections_Array_getDouble(array, index); }),
        reading("Array_operator_index",
                [](void* array, long long index, long long) {
                  std::int64_t value = -1;
                  vorn_unbox_integer(vorn_collections_Array_operator_index(array, index), &value);
                  return value;
                }),
        reading("Array_count",
                [](void* array, long long, long long value) {
                  return vorn_collections_Array_count(array, boxed(value)) == 1 ? value : -1;
                }),
        reading("Array_operator_in",
                [](void* array, long long, long long value) {
                  return vorn_collections_Array_operator_in(array, boxed(value)) ? value : -1;
                }),
        finding("Array_indexOf", [](void* array, void* box) { return vorn_collections_Array_indexOf(array, box, 0); }),
        finding("Array_lastIndexOf",
                [](void* array, void* box) { return vorn_collections_Array_lastIndexOf(array, box, -1); }),
    };
  }

  // ---- The whole of them --------------------------------------------------------------------------------------------

  void expectOwn(const Player& player, int which, const std::vector<long long>& elements) {
    for (int index = player.number; index < kSlots; index += kPlayers) {
      const long long value = values_[index][which];
      expect(std::count(elements.begin(), elements.end(), value) == 1, "a copy lacks an own value");
    }
  }

  template <class Make>
  Operation copying(const char* native, Make make) {
    return {native, [this, make](Player& player) {
              const Slot slot = slotOf(player);
              void* const result = attemptNew(player, [&] { return make(slot.array); });
              if (result != nullptr) expectOwn(player, slot.which, elementsOfArray(result));
            }};
  }

  std::vector<Operation> wholeReads() {
    constexpr long long kEnd = LLONG_MAX;
    const auto telling = [this](const char* native, auto make) {
      return Operation{native, [this, make](Player& player) {
                         const Slot slot = slotOf(player);
                         void* const result = attemptNew(player, [&] { return make(slot.array); });
                         if (result != nullptr) expectOwn(player, slot.which, numbersIn(vorn_string_text(result)));
                       }};
    };
    const auto plainly = [](const char* native, auto holds, const char* what) {
      return Operation{native, [holds, what](Player&) { expect(holds(), what); }};
    };
    return {
        copying("Array_slice",
                [](void* array) { return vorn_collections_Array_slice(array, 0, kEnd, 1, array, array); }),
        copying("Array_sortNew", vorn_collections_Array_sortNew),
        copying("Array_reverseNew", vorn_collections_Array_reverseNew),
        copying("Array_concat",
                [](void* array) { return vorn_collections_Array_concat(array, pairOf(kSlots * kSlotRange, -1)); }),
        telling("Array_toString", vorn_collections_Array_toString),
        telling("Array_join", [](void* array) { return vorn_collections_Array_join(array, ";"); }),
        plainly(
            "Array_size", [this] { return vorn_collections_Array_size(slots_[0]) == kSlots; }, "the size"),
        plainly(
            "Array_rawSize", [this] { return vorn_collections_Array_rawSize(slots_[0]) == 0; }, "the raw size"),
        plainly(
            "Array_rawDataPtr", [this] { return vorn_collections_Array_rawDataPtr(slots_[0]) == nullptr; },
            "the raw elements"),
        plainly(
            "Array_i64DataPtr", [this] { return vorn_collections_Array_i64DataPtr(longs_) != nullptr; },
            "elements of Long"),
        plainly(
            "Array_f64DataPtr", [this] { return vorn_collections_Array_f64DataPtr(longs_) == nullptr; },
            "no elements of Double"),
        {"Array_operator_eq",
         [this](Player& player) {
           bool equal = true;
           attempt(player, [&] { equal = vorn_collections_Array_operator_eq(slots_[0], slots_[0]); });
           expect(equal, "an array is not equal to itself");
         }},
        {"Array_operator_ne",
         [this](Player& player) {
           bool unequal = true;
           attempt(player, [&] { unequal = vorn_collections_Array_operator_ne(slots_[0], permuted_); });
           expect(unequal, "arrays without a common element are equal");
         }},
    };
  }

  // ---- Text ---------------------------------------------------------------------------------------------------------

  std::vector<Operation> texts() {
    const auto spelling = [this](const char* native, int which, auto make) {
      return Operation{native, [this, which, make](Player& player) {
                         void* const array = which == 0 ? letters_ : units_;
                         const int index = player.number + kPlayers * player.random.below(kSlots / kPlayers);
                         char& letter = texts_[which][static_cast<std::size_t>(index)];
                         letter = static_cast<char>('a' + player.random.below(26));
                         vorn_collections_Array_setInt(array, index, letter);
                         void* const made = attemptNew(player, [&] { return make(array); });
                         if (made == nullptr) return;
                         const char* const text = vorn_string_text(made);
                         if (std::strlen(text) != kSlots) {
                           // What memory has run out for is an empty text or none.
                           expect(player.faulted, "a text of another length");
                           return;
                         }
                         expect(text[index] == letter, "a letter that nobody else writes");
                       }};
    };
    return {spelling("Vorn_stringFromCharArray", 0, Vorn_stringFromCharArray),
            spelling("Vorn_stringFromCodeUnitArray", 1, Vorn_stringFromCodeUnitArray)};
  }

  // ---- An array whose elements only change their places -------------------------------------------------------------

  static long long sumOfArray(void* array) { return array != nullptr ? sumOf(elementsOfArray(array)) : kSum; }

  std::vector<Operation> permutations() {
    const auto permuting = [this](const char* native, auto change) {
      return Operation{native, [this, change](Player& player) { attempt(player, [&] { change(permuted_); }); }};
    };
    const auto summing = [this](const char* native, auto sum) {
      return Operation{native, [this, sum](Player& player) {
                         long long total = kSum;
                         attempt(player, [&] { total = static_cast<long long>(sum(permuted_)); });
                         expect(total == kSum, "permuted elements are seen half changed");
                       }};
    };
    return {
        permuting("Array_sort", vorn_collections_Array_sort),
        permuting("Array_reverse", vorn_collections_Array_reverse),
        permuting("Array_sliceAssign",
                  [](void* array) {
                    void* const copy = vorn_collections_Array_sortNew(array);
                    if (copy != nullptr) {
                      vorn_collections_Array_sliceAssign(array, 0, 0, -1, nullptr, nullptr, copy);
                    }
                  }),
        permuting("Array_sliceAssign",
                  [](void* array) { vorn_collections_Array_sliceAssign(array, 0, 0, -1, nullptr, nullptr, array); }),
        summing("Array_sumI64Fast", vorn_collections_Array_sumI64Fast),
        summing("Array_sumF64Fast", vorn_collections_Array_sumF64Fast),
        summing(
            "Array_slice",
            [](void* array) { return sumOfArray(vorn_collections_Array_slice(array, 0, 0, -1, nullptr, nullptr)); }),
        summing("Array_sortNew", [](void* array) { return sumOfArray(vorn_collections_Array_sortNew(array)); }),
        summing("Array_concat",
                [](void* array) {
                  void* const both = vorn_collections_Array_concat(array, array);
                  return both != nullptr ? sumOfArray(both) / 2 : kSum;
                }),
    };
  }

  // ---- Arrays that are constructed anew -----------------------------------------------------------------------------

  std::vector<Operation> constructions() {
    return {
        {"Array_copyCtor",
         [this](Player& player) {
           attempt(player, [&] { vorn_collections_Array_copyCtor(copied_, permuted_); });
           expect(vorn_collections_Array_sumI64Fast(copied_) == kSum, "a copy is seen half made");
         }},
        {"Array_copyCtor",
         [this](Player& player) {
           Shared* const from = player.random.oneIn(2) ? &copied_ : &permuted_;
           void* const fresh = vorn_object_new("ArraySync<Int>");
           if (attempt(player, [&] { vorn_collections_Array_copyCtor(fresh, *from); })) {
             expect(vorn_collections_Array_sumI64Fast(fresh) == kSum, "a new copy is half made");
           }
         }},
        {"Array_ctor",
         [this](Player& player) {
           attempt(player, [&] { vorn_collections_Array_ctor(remade_, player.random.below(20)); });
           expect(vorn_collections_Array_sumI64Fast(remade_) == 0, "a new array has elements");
           expect(vorn_collections_Array_size(remade_) < 20, "a size that nobody gave");
         }},
    };
  }

  Shared slots_[2] = {Shared("ArraySync<Int>"), Shared("ArraySync<Object>")};
  long long values_[kSlots][2] = {};
  Shared longs_{"ArraySync<Long>"};
  Shared flags_{"ArraySync<Boolean>"};
  Shared letters_{"ArraySync<Char>"};
  Shared units_{"ArraySync<CodeUnit>"};
  std::string texts_[2];
  Shared permuted_{"ArraySync<Int>"};
  Shared copied_{"ArraySync<Int>"};
  Shared remade_{"ArraySync<Int>"};
};

}  // namespace

Topic arrayTopic() { return mixTopic<ArrayMix>("ArraySync"); }

}  // namespace vorn::tests::stress
