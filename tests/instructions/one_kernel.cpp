// Runs one kernel once, so that the instructions of two runs differ by those that the kernel takes for the elements
// between: one_kernel PATH OPERATION KIND COUNT.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "collections/core/kernels/reverse_kernels.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/kernels/vector_path.h"
#include "collections/core/kinds.h"

namespace {

using vorn::collections::PrimitiveKind;

constexpr std::uint64_t kMostBytes = 1 << 16;
alignas(64) unsigned char elements[kMostBytes];

// All elements are zero, which the needle is not.
void run(const char* operation, PrimitiveKind kind, std::uint64_t count) {
  using namespace vorn::collections;
  volatile std::uint64_t result = 0;
  switch (operation[0]) {
    case 's':
      result = static_cast<std::uint64_t>(sumIntegers(kind, elements, count));
      break;
    case 'f':
      result = findFirstElement(kind, elements, 0, count, 1, 1.0);
      break;
    case 'l':
      result = findLastElement(kind, elements, count, 1, 1.0);
      break;
    case 'c':
      result = countElements(kind, elements, count, 1, 1.0);
      break;
    case 'r':
      reverseElements(elements, count, primitiveWidth(kind));
      break;
    default:  // nothing, for what the program itself takes
      break;
  }
  static_cast<void>(result);
}

}  // namespace

int main(int arguments, char** argument) {
  using namespace vorn::collections;
  if (arguments != 5) return 2;
  if (!setVectorPath(static_cast<VectorPath>(std::atoi(argument[1])))) return 1;
  const auto kind = static_cast<PrimitiveKind>(std::atoi(argument[3]));
  const std::uint64_t count = std::strtoull(argument[4], nullptr, 10);
  if (count * primitiveWidth(kind) > kMostBytes) return 2;
  run(argument[2], kind, count);
  return 0;
}
