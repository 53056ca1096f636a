#include "tests/stress/lists.h"

#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>

#include <cstdlib>
#include <new>

namespace vorn::tests::stress {

void* boxed(long long value) {
  void* const box = vorn_box_int(static_cast<std::int32_t>(value));
  if (box == nullptr) throw std::bad_alloc();
  return box;
}

void* pairOf(long long first, long long second) { return vorn_collections_ArrayList_intLiteral(2LL, first, second); }

void* balancedPair(Player& player) {
  const long long value = player.random.below(100);
  return pairOf(value, -value);
}

std::vector<long long> elementsOf(void* list) {
  std::vector<long long> elements;
  for (long long i = 0; i < vorn_collections_ArrayList_size(list); ++i) {
    elements.push_back(vorn_collections_ArrayList_getInt(list, i));
  }
  return elements;
}

std::vector<long long> numbersIn(const char* text) {
  std::vector<long long> numbers;
  if (text == nullptr) return numbers;
  for (const char* next = text; *next != '\0';) {
    if (*next != '-' && (*next < '0' || *next > '9')) {
      ++next;
      continue;
    }
    char* end = nullptr;
    const double number = std::strtod(next, &end);
    if (number == static_cast<double>(static_cast<long long>(number)))
      numbers.push_back(static_cast<long long>(number));
    next = end != next ? end : next + 1;
  }
  return numbers;
}

std::vector<long long> elementsOfArray(void* array) {
  std::vector<long long> elements;
  for (long long i = 0; i < vorn_collections_Array_size(array); ++i) {
    elements.push_back(vorn_collections_Array_getInt(array, i));
  }
  return elements;
}

long long sumOf(const std::vector<long long>& elements) {
  long long sum = 0;
  for (const long long element : elements) sum += element;
  return sum;
}

// ---- Lists that a player makes for itself, and gives to the others ---------------------------------------------------

std::vector<Operation> newListOperations(Shared& balanced) {
  const auto giving = [&balanced](const char* native, auto make) {
    return Operation{native, [&balanced, make](Player& player) {
                       void* const made = attemptNew(player, [&] { return make(player.random.below(50)); });
                       if (made == nullptr) return;
                       expect(sumOf(elementsOf(made)) == 0, "a new list has other elements than it was given");
                       if (vorn_collections_ArrayList_size(balanced) > 40) vorn_collections_ArrayList_clear(balanced);
                       attempt(player, [&] { vorn_collections_ArrayList_addAll(balanced, made); });
                       // Doubles are refused as a whole.
                       forgive("TypeError");
                     }};
  };
  // Fills a buffer with a balanced pair and commits it; null when there was no memory for it.
  const auto filled = [](auto* buffer, void* list, auto commit) -> void* {
    if (buffer == nullptr || list == nullptr) return nullptr;
    buffer[0] = 7;
    buffer[1] = -7;
    commit(list, 2LL);
    return list;
  };
  return {
      giving("ArrayList_literal0", [](long long) { return vorn_collections_ArrayList_literal0(); }),
      giving("ArrayListSync_literal0", [](long long) { return vorn_collections_ArrayListSync_literal0(); }),
      giving("ArrayList_literal1", [](long long) { return vorn_collections_ArrayList_literal1(boxed(0)); }),
      giving("ArrayList_literal5",
             [](long long v) {
               return vorn_collections_ArrayList_literal5(boxed(v), boxed(-v), boxed(0), boxed(1), boxed(-1));
             }),
      giving("ArrayList_literal10",
             [](long long v) {
               return vorn_collections_ArrayList_literal10(boxed(v), boxed(-v), boxed(0), boxed(1), boxed(-1), boxed(v),
                                                           boxed(-v), boxed(0), boxed(2), boxed(-2));
             }),
      giving("ArrayList_literal",
             [](long long v) { return vorn_collections_ArrayList_literal(2LL, boxed(v), boxed(-v)); }),
      giving("ArrayListSync_literal",
             [](long long v) { return vorn_collections_ArrayListSync_literal(2LL, boxed(v), boxed(-v)); }),
      giving("ArrayList_intLiteral0", [](long long) { return vorn_collections_ArrayList_intLiteral0(); }),
      giving("ArrayListSync_intLiteral0", [](long long) { return vorn_collections_ArrayListSync_intLiteral0(); }),
      giving("ArrayList_intLiteral1", [](long long) { return vorn_collections_ArrayList_intLiteral1(0); }),
      giving("ArrayList_intLiteral5",
             [](long long v) { return vorn_collections_ArrayList_intLiteral5(v, -v, 0, v, -v); }),
      giving("ArrayList_intLiteral10",
             [](long long v) { return vorn_collections_ArrayList_intLiteral10(v, -v, 1, -1, 2, -2, 3, -3, 4, -4); }),
      giving("ArrayList_intLiteral20",
             [](long long v) {
               return vorn_collections_ArrayList_intLiteral20(v, -v, 1, -1, 2, -2, 3, -3, 4, -4, v, -v, 1, -1, 2, -2, 3,
                                                              -3, 4, -4);
             }),
      giving("ArrayList_intLiteral", [](long long v) { return vorn_collections_ArrayList_intLiteral(2LL, v, -v); }),
      giving("ArrayList_primitiveLiteral0",
             [](long long) { return vorn_collections_ArrayList_primitiveLiteral0("Int"); }),
      giving("ArrayListSync_primitiveLiteral0",
             [](long long) { return vorn_collections_ArrayListSync_primitiveLiteral0("Int"); }),
      giving("ArrayList_newPrimitiveData",
             [filled](long long) {
               void* list = nullptr;
               void* const buffer = vorn_collections_ArrayList_newPrimitiveData(2, "Int", &list);
               return filled(static_cast<std::int32_t*>(buffer), list,
                             vorn_collections_ArrayList_commitPrimitiveDataSizeFast);
             }),
      giving("ArrayList_commitPrimitiveDataSizeFast",
             [filled](long long) {
               void* list = nullptr;
               void* const buffer = vorn_collections_ArrayListSync_newPrimitiveData(2, "Int", &list);
               return filled(static_cast<std::int32_t*>(buffer), list,
                             vorn_collections_ArrayList_commitPrimitiveDataSizeFast);
             }),
      giving("ArrayListSync_newPrimitiveData",
             [filled](long long) {
               void* list = nullptr;
               void* const buffer = vorn_collections_ArrayListSync_newPrimitiveData(2, "Int", &list);
               return filled(static_cast<std::int32_t*>(buffer), list,
                             vorn_collections_ArrayList_commitPrimitiveDataSize);
             }),
      giving("ArrayList_newPrimitiveI64Data",
             [filled](long long) {
               void* list = nullptr;
               long long* const buffer = vorn_collections_ArrayList_newPrimitiveI64Data(2, "Int", &list);
               return filled(buffer, list, vorn_collections_ArrayList_commitPrimitiveI64DataSize);
             }),
      giving("ArrayList_commitPrimitiveI64DataSizeFast",
             [filled](long long) {
               void* list = nullptr;
               long long* const buffer = vorn_collections_ArrayList_newPrimitiveI64Data(2, "Int", &list);
               return filled(buffer, list, vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast);
             }),
      giving("ArrayList_newDoubleData",
             [filled](long long) {
               void* list = nullptr;
               double* const buffer = vorn_collections_ArrayList_newDoubleData(2, "Double", &list);
               return filled(buffer, list, vorn_collections_ArrayList_commitDoubleDataSize);
             }),
      giving("ArrayList_commitDoubleDataSizeFast",
             [filled](long long) {
               void* list = nullptr;
               double* const buffer = vorn_collections_ArrayList_newDoubleData(2, "Double", &list);
               return filled(buffer, list, vorn_collections_ArrayList_commitDoubleDataSizeFast);
             }),
  };
}

}  // namespace vorn::tests::stress
