// Which path the kernels take: chosen when the library is loaded, or set.
#include "collections/core/kernels/vector_path.h"

#include "collections/core/kernels/kernel_table.h"

namespace vorn::collections {

namespace kernels {

// What every processor of this architecture has, until the initialiser below has looked at this one: a kernel may run
// before it, in the constructor of some other global.
#if defined(__x86_64__)
constinit std::atomic<const KernelTable*> activeKernels{&kSse2Kernels};
#elif defined(__AARCH64EL__)
constinit std::atomic<const KernelTable*> activeKernels{&kNeonKernels};
#else
constinit std::atomic<const KernelTable*> activeKernels{&kPlainKernels};
#endif

namespace {

#if defined(__x86_64__)

// The builtins ask the operating system as well: wide registers that it does not save are of no use.
bool processorHasAvx2() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
         __builtin_cpu_supports("popcnt");
}

bool processorHasAvx512() {
  return processorHasAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
}

#endif

// The path's table, or null where the build or the processor lacks it.
const KernelTable* tableOf(VectorPath path) {
  switch (path) {
    case VectorPath::Plain:
      return &kPlainKernels;
#if defined(__x86_64__)
    case VectorPath::Sse2:
      return &kSse2Kernels;
    case VectorPath::Avx2:
      return processorHasAvx2() ? &kAvx2Kernels : nullptr;
    case VectorPath::Avx512:
      return processorHasAvx512() ? &kAvx512Kernels : nullptr;
#elif defined(__AARCH64EL__)
    case VectorPath::Neon:
      return &kNeonKernels;
#endif
    default:
      return nullptr;
  }
}

const KernelTable* widestTable() {
  const KernelTable* widest = &kPlainKernels;
  for (const VectorPath path : kVectorPaths) {
    if (const KernelTable* table = tableOf(path)) widest = table;
  }
  return widest;
}

[[maybe_unused]] const bool kChosen = [] {
  activeKernels.store(widestTable(), std::memory_order_relaxed);
  return true;
}();

}  // namespace

}  // namespace kernels

const char* vectorPathName(VectorPath path) {
  switch (path) {
    case VectorPath::Plain:
      return "plain";
    case VectorPath::Sse2:
      return "SSE2";
    case VectorPath::Avx2:
      return "AVX2";
    case VectorPath::Avx512:
      return "AVX512";
    case VectorPath::Neon:
      return "NEON";
  }
  return "unknown";
}

bool isVectorPathAvailable(VectorPath path) { return kernels::tableOf(path) != nullptr; }

VectorPath vectorPath() { return kernels::activeKernels.load(std::memory_order_relaxed)->path; }

bool setVectorPath(VectorPath path) {
  const kernels::KernelTable* table = kernels::tableOf(path);
  if (table == nullptr) return false;
  kernels::activeKernels.store(table, std::memory_order_relaxed);
  return true;
}

}  // namespace vorn::collections
