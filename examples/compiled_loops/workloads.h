// Four loops as a compiler would emit them: by natives, by the inline forms, and for comparison by the C++ library. All
// three of one loop do the same steps in the same order and come to the same result.
#pragma once

#include <cstdint>
#include <span>

namespace compiled_loops {

// What a loop computes from its size, folded into a number, so that results can be compared.
using Run = std::uint64_t (*)(long long size);

struct Workload {
  const char* name;
  long long size;
  Run natives;
  Run inlined;
  Run standard;
};

// Prime numbers below the size: flags in an array, primes appended to a list.
std::uint64_t sieveByNatives(long long size);
std::uint64_t sieveInlined(long long size);
std::uint64_t sieveStandard(long long size);

// Words of a text of that many: a map from word to number, counts in a list.
std::uint64_t wordCountByNatives(long long size);
std::uint64_t wordCountInlined(long long size);
std::uint64_t wordCountStandard(long long size);

// The product of two matrices of that many rows and columns, in arrays of Double.
std::uint64_t matrixProductByNatives(long long size);
std::uint64_t matrixProductInlined(long long size);
std::uint64_t matrixProductStandard(long long size);

// A heap sort of that many records by their keys: keys in a list of Int, what they belong to in a list of handles.
std::uint64_t recordSortByNatives(long long size);
std::uint64_t recordSortInlined(long long size);
std::uint64_t recordSortStandard(long long size);

inline constexpr Workload kWorkloads[] = {
    {"sieve", 100'000, sieveByNatives, sieveInlined, sieveStandard},
    {"word count", 20'000, wordCountByNatives, wordCountInlined, wordCountStandard},
    {"matrix product", 100, matrixProductByNatives, matrixProductInlined, matrixProductStandard},
    {"sort of records", 20'000, recordSortByNatives, recordSortInlined, recordSortStandard},
};

// Folds one more number into a result.
inline std::uint64_t folded(std::uint64_t result, std::uint64_t number) { return result * 1'000'003 + number; }

}  // namespace compiled_loops
