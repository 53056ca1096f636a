// The kernels of each vector path, as tables of functions, and the choice among them. Private to this directory.
//
// A table is constant data, so the pointer to the active one needs no ordering: whoever sees it sees the table.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "collections/core/kernels/sort/sort_paths.h"
#include "collections/core/kernels/vector_path.h"
#include "collections/core/kinds.h"

namespace vorn::collections::kernels {

// How a search compares: the kinds that share a width and a meaning of equality share a kernel.
enum class SearchLane : std::uint8_t { Bits8, Bits16, Bits32, Bits64, Float, Double, NonZero8 };

inline constexpr std::uint64_t kSearchLanes = 7;
// Widths 1, 2, 4 and 8.
inline constexpr std::uint64_t kReversalWidths = 4;

// The sum, with wrap-around, of `count` elements.
using SumKernel = std::uint64_t (*)(const unsigned char* data, std::uint64_t count);
// The needle is given by its bits, which NonZero8 ignores. The first match at or after `from`, which is below `size`:
using FindFirstKernel = std::uint64_t (*)(const unsigned char* data, std::uint64_t from, std::uint64_t size,
                                          std::uint64_t needleBits);
// The last match, or the number of matches, among `count` elements.
using SearchKernel = std::uint64_t (*)(const unsigned char* data, std::uint64_t count, std::uint64_t needleBits);
using ReversalKernel = void (*)(unsigned char* data, std::uint64_t count);

struct SearchKernels {
  FindFirstKernel findFirst;
  SearchKernel findLast;
  SearchKernel count;
};

// By the width of the elements. Single bytes are counted on every path, so they have no kernel here.
struct SortKernels {
  void (*words)(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order);
  void (*doubleWords)(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order);
  void (*quadWords)(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order);
};

struct KernelTable {
  VectorPath path;
  // The kernels, but for the sorts, take ranges of at least this many bytes, one vector; shorter ones go to the
  // narrower table. Any range then ends in a vector that overlaps the one before, so that no kernel reads outside it or
  // finishes by the element.
  std::uint64_t shortest;
  const KernelTable* narrower;
  // Whether a Double other than zero and NaN is found sooner by its bits than by a floating comparison.
  bool searchesDoublesByBits;
  std::array<SumKernel, kPrimitiveKinds>
      sums;  // by kind; null for None and the floating kinds, whose sums are never vectors
  SearchKernels searches[kSearchLanes];
  ReversalKernel reversals[kReversalWidths];  // by the binary logarithm of the width
  SortKernels sorts;                          // of any count
};

// The bytes of the narrowest vector of any path.
inline constexpr std::uint64_t kNarrowestVector = 16;

// Its kernels take ranges of any length, none included.
extern const KernelTable kPlainKernels;
#if defined(__x86_64__)
extern const KernelTable kSse2Kernels;
extern const KernelTable kAvx2Kernels;
extern const KernelTable kAvx512Kernels;
#elif defined(__AARCH64EL__)
extern const KernelTable kNeonKernels;
#endif

// Never null, so that taking it costs no branch.
extern std::atomic<const KernelTable*> activeKernels;

inline const KernelTable& kernelsFor(std::uint64_t bytes) {
  // The shortest lists are the most frequent, and need not be told which vectors there are.
  if (bytes < kNarrowestVector) return kPlainKernels;
  const KernelTable* table = activeKernels.load(std::memory_order_relaxed);
  while (bytes < table->shortest) table = table->narrower;
  return *table;
}

// The initialiser of `searches`, from the names of three function templates over a SearchLane.
#define VORN_SEARCH_KERNELS_OF(lane, first, last, count) \
  { first<SearchLane::lane>, last<SearchLane::lane>, count<SearchLane::lane> }
#define VORN_SEARCH_KERNELS(first, last, count)                                                                 \
  {                                                                                                             \
    VORN_SEARCH_KERNELS_OF(Bits8, first, last, count), VORN_SEARCH_KERNELS_OF(Bits16, first, last, count),      \
        VORN_SEARCH_KERNELS_OF(Bits32, first, last, count), VORN_SEARCH_KERNELS_OF(Bits64, first, last, count), \
        VORN_SEARCH_KERNELS_OF(Float, first, last, count), VORN_SEARCH_KERNELS_OF(Double, first, last, count),  \
        VORN_SEARCH_KERNELS_OF(NonZero8, first, last, count),                                                   \
  }

// `sums` from a function that gives the kernel of a kind's tag; the floating kinds have none.
template <class SumOf>
consteval std::array<SumKernel, kPrimitiveKinds> sumKernels(SumOf sumOf) {
  std::array<SumKernel, kPrimitiveKinds> sums{};
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  if constexpr (KindFamily::family != KindFamily::Floating)               \
    sums[value] = sumOf(KindTag<PrimitiveKind::enumerator, type>{});
#include "collections/core/kinds.def"
  return sums;
}

// Width in bytes of the elements that a lane compares.
constexpr std::uint64_t searchWidth(SearchLane lane) {
  switch (lane) {
    case SearchLane::Bits8:
    case SearchLane::NonZero8:
      return 1;
    case SearchLane::Bits16:
      return 2;
    case SearchLane::Bits32:
    case SearchLane::Float:
      return 4;
    case SearchLane::Bits64:
    case SearchLane::Double:
      break;
  }
  return 8;
}

}  // namespace vorn::collections::kernels
