// What the tests of the sorts share.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {

inline std::vector<long long> integersOf(void* list) {
  std::vector<long long> values;
  for (long long i = 0, size = vorn_collections_ArrayList_size(list); i < size; ++i) {
    values.push_back(vorn_collections_ArrayList_getInt(list, i));
  }
  return values;
}

inline std::vector<double> doublesOf(void* list) {
  std::vector<double> values;
  for (long long i = 0, size = vorn_collections_ArrayList_size(list); i < size; ++i) {
    values.push_back(vorn_collections_ArrayList_getDouble(list, i));
  }
  return values;
}

// A reproducible order of n numbers with repetitions.
inline std::vector<long long> scrambled(int n, long long modulus) {
  std::vector<long long> values;
  std::uint64_t state = 12345;
  for (int i = 0; i < n; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    values.push_back(static_cast<long long>(state >> 33) % modulus);
  }
  return values;
}
class Sort : public RuntimeTest {};

}  // namespace vorn::tests
