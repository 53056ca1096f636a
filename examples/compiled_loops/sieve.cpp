#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <vector>

#include "workloads.h"

namespace compiled_loops {

std::uint64_t sieveByNatives(long long size) {
  const vorn::Handle composite = vorn_object_new("Array<Boolean>");
  vorn_collections_Array_ctor(composite, size);
  const vorn::Handle primes = vorn_object_new("ArrayList<Int>");
  for (long long i = 2; i < size; ++i) {
    if (vorn_collections_Array_getInt(composite, i) != 0) continue;
    vorn_collections_ArrayList_addInt(primes, i);
    for (long long multiple = i * i; multiple < size; multiple += i) {
      vorn_collections_Array_setBool(composite, multiple, true);
    }
  }
  std::uint64_t result = 0;
  for (long long i = 0; i < vorn_collections_ArrayList_size(primes); ++i) {
    result = folded(result, static_cast<std::uint64_t>(vorn_collections_ArrayList_getInt(primes, i)));
  }
  return result;
}

std::uint64_t sieveInlined(long long size) {
  const vorn::Handle compositeRoot = vorn_object_new("Array<Boolean>");
  void* const composite = compositeRoot;
  vorn_collections_Array_ctor(composite, size);
  const vorn::Handle primesRoot = vorn_object_new("ArrayList<Int>");
  void* const primes = primesRoot;
  for (long long i = 2; i < size; ++i) {
    if (vorn_proven_Array_getInt(composite, i, VORN_BOOLEAN) != 0) continue;
    vorn_proven_ArrayList_addInt(primes, i);
    for (long long multiple = i * i; multiple < size; multiple += i) {
      vorn_proven_Array_setBool(composite, multiple, true);
    }
  }
  std::uint64_t result = 0;
  for (long long i = 0; i < vorn_proven_ArrayList_size(primes); ++i) {
    result = folded(result, static_cast<std::uint64_t>(vorn_proven_ArrayList_getInt(primes, i, VORN_INT)));
  }
  return result;
}

std::uint64_t sieveStandard(long long size) {
  std::vector<std::uint8_t> composite(static_cast<std::size_t>(size));
  std::vector<std::int32_t> primes;
  for (long long i = 2; i < size; ++i) {
    if (composite.at(static_cast<std::size_t>(i)) != 0) continue;
    primes.push_back(static_cast<std::int32_t>(i));
    for (long long multiple = i * i; multiple < size; multiple += i)
      composite.at(static_cast<std::size_t>(multiple)) = 1;
  }
  std::uint64_t result = 0;
  for (const std::int32_t prime : primes) result = folded(result, static_cast<std::uint64_t>(prime));
  return result;
}

}  // namespace compiled_loops
