#include <vorn/collections/array.h>
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <vector>

#include "workloads.h"

namespace compiled_loops {
namespace {

double leftAt(long long at) { return static_cast<double>(at % 7); }
double rightAt(long long at) { return static_cast<double>(at % 5); }

void* newMatrix(vorn::Handle& root, long long size) {
  root = vorn_object_new("Array<Double>");
  vorn_collections_Array_ctor(root, size * size);
  return root;
}

// setDouble and getDouble are those of the natives or the inline ones.
template <class SetDouble>
void fill(void* left, void* right, long long elements, SetDouble setDouble) {
  for (long long i = 0; i < elements; ++i) {
    setDouble(left, i, leftAt(i));
    setDouble(right, i, rightAt(i));
  }
}

template <class GetDouble>
std::uint64_t resultOf(void* product, long long elements, GetDouble getDouble) {
  std::uint64_t result = 0;
  for (long long i = 0; i < elements; ++i) {
    result = folded(result, static_cast<std::uint64_t>(getDouble(product, i)));
  }
  return result;
}

void setInline(void* array, long long index, double value) {
  vorn_proven_Array_setDouble(array, index, value, VORN_DOUBLE);
}
double getInline(void* array, long long index) { return vorn_proven_Array_getDouble(array, index, VORN_DOUBLE); }

}  // namespace

std::uint64_t matrixProductByNatives(long long size) {
  vorn::Handle roots[3];
  void* const left = newMatrix(roots[0], size);
  void* const right = newMatrix(roots[1], size);
  void* const product = newMatrix(roots[2], size);
  fill(left, right, size * size, vorn_collections_Array_setDouble);
  for (long long i = 0; i < size; ++i) {
    for (long long k = 0; k < size; ++k) {
      const double factor = vorn_collections_Array_getDouble(left, i * size + k);
      for (long long j = 0; j < size; ++j) {
        const long long at = i * size + j;
        const double sum = vorn_collections_Array_getDouble(product, at) +
                           factor * vorn_collections_Array_getDouble(right, k * size + j);
        vorn_collections_Array_setDouble(product, at, sum);
      }
    }
  }
  return resultOf(product, size * size, vorn_collections_Array_getDouble);
}

// Nothing in the loops can change an array, so that the elements are taken once, and indexes that the loops cannot leave
// need no test. Where they cannot be taken, the loops by natives are the ones to run.
std::uint64_t matrixProductInlined(long long size) {
  vorn::Handle roots[3];
  void* const left = newMatrix(roots[0], size);
  void* const right = newMatrix(roots[1], size);
  void* const product = newMatrix(roots[2], size);
  fill(left, right, size * size, setInline);
  vorn_span lefts;
  vorn_span rights;
  vorn_span products;
  const bool lent = vorn_inline_Array_span(left, VORN_DOUBLE, &lefts) &&
                    vorn_inline_Array_span(right, VORN_DOUBLE, &rights) &&
                    vorn_inline_Array_span(product, VORN_DOUBLE, &products);
  if (!lent || lefts.size < size * size || rights.size < size * size || products.size < size * size) {
    return matrixProductByNatives(size);
  }
  const auto* const a = static_cast<const double*>(lefts.data);
  const auto* const b = static_cast<const double*>(rights.data);
  auto* const c = static_cast<double*>(products.data);
  for (long long i = 0; i < size; ++i) {
    for (long long k = 0; k < size; ++k) {
      const double factor = a[i * size + k];
      for (long long j = 0; j < size; ++j) c[i * size + j] += factor * b[k * size + j];
    }
  }
  return resultOf(product, size * size, getInline);
}

std::uint64_t matrixProductStandard(long long size) {
  const auto elements = static_cast<std::size_t>(size * size);
  std::vector<double> left(elements);
  std::vector<double> right(elements);
  std::vector<double> product(elements);
  for (std::size_t i = 0; i < elements; ++i) {
    left[i] = leftAt(static_cast<long long>(i));
    right[i] = rightAt(static_cast<long long>(i));
  }
  const auto n = static_cast<std::size_t>(size);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < n; ++k) {
      const double factor = left[i * n + k];
      for (std::size_t j = 0; j < n; ++j) product[i * n + j] += factor * right[k * n + j];
    }
  }
  std::uint64_t result = 0;
  for (const double value : product) result = folded(result, static_cast<std::uint64_t>(value));
  return result;
}

}  // namespace compiled_loops
