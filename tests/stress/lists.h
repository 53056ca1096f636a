// Lists of integers for the mixes.
#pragma once

#include <vector>

#include "tests/stress/mix.h"

namespace vorn::tests::stress {

// A new Int; throws std::bad_alloc where there is no memory for it, as natives do.
void* boxed(long long value);

// A new list of one's own with a pair of values, and one with a value and its opposite.
void* pairOf(long long first, long long second);
void* balancedPair(Player& player);

std::vector<long long> elementsOf(void* list);
std::vector<long long> elementsOfArray(void* array);
long long sumOf(const std::vector<long long>& elements);

// The whole numbers in a joined or displayed text; none in null.
std::vector<long long> numbersIn(const char* text);

// Natives that make a list, which is then added to the shared one. The elements of each add up to zero.
std::vector<Operation> newListOperations(Shared& balanced);

}  // namespace vorn::tests::stress
