#include "collections/core/kernels/search_kernels.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

#include "collections/core/kernels/kernel_table.h"

namespace vorn::collections {

namespace {

using kernels::SearchKernels;
using kernels::SearchLane;

// What a kind's needles must be like, and the kernel that looks for them.
struct NeedleRule {
  long long lowest = 0;
  long long highest = -1;  // below the lowest: no needle matches
  SearchLane lane = SearchLane::Bits8;
  std::uint8_t widthLog2 = 0;
};

constexpr SearchLane laneOf(PrimitiveKind kind) {
  if (kind == PrimitiveKind::Float) return SearchLane::Float;
  if (kind == PrimitiveKind::Double) return SearchLane::Double;
  constexpr SearchLane kByWidthLog2[] = {SearchLane::Bits8, SearchLane::Bits16, SearchLane::Bits32, SearchLane::Bits64};
  return kByWidthLog2[std::countr_zero(primitiveWidth(kind))];
}

// Which integers the elements of a type can equal. A needle for 64 unsigned bits is any, by its bits.
template <class Element>
constexpr void setNeedleRange(NeedleRule& rule) {
  if constexpr (std::is_integral_v<Element>) {
    constexpr bool kAny = sizeof(Element) == sizeof(long long);
    using Range = std::numeric_limits<std::conditional_t<kAny, long long, Element>>;
    rule.lowest = Range::min();
    rule.highest = Range::max();
  }
}

// A table instead of a switch over the kinds: on lists of a few elements the jump cost more than the search.
constexpr auto kNeedleRules = [] {
  std::array<NeedleRule, kPrimitiveKinds> rules = {};
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot)                          \
  rules[value] = {0, 0, laneOf(PrimitiveKind::enumerator), std::countr_zero(std::uint8_t{width})}; \
  setNeedleRange<type>(rules[value]);
#include "collections/core/kinds.def"
  rules[static_cast<std::uint8_t>(PrimitiveKind::Boolean)].highest = 1;
  return rules;
}();

// Calls scan(kernels, needle bits) with those for `count` elements; gives `never` when none of the kind can
// match.
template <class Scan>
inline std::uint64_t scanFor(PrimitiveKind kind, std::uint64_t count, long long integer, double floating,
                             std::uint64_t never, Scan scan) {
  const auto value = static_cast<std::uint8_t>(kind);
  if (value >= kNeedleRules.size()) return never;
  const NeedleRule& rule = kNeedleRules[value];
  const kernels::KernelTable& table = kernels::kernelsFor(count << rule.widthLog2);
  SearchLane lane = rule.lane;
  auto bits = static_cast<std::uint64_t>(integer);
  // Floating numbers that are equal have equal bits, except for the two zeros, and processors compare bits faster.
  if (lane == SearchLane::Double) {
    if (std::isnan(floating)) return never;
    bits = std::bit_cast<std::uint64_t>(floating);
    if (floating != 0.0 && table.searchesDoublesByBits) lane = SearchLane::Bits64;
  } else if (lane == SearchLane::Float) {
    const auto needle = static_cast<float>(floating);
    if (static_cast<double>(needle) != floating) return never;
    bits = std::bit_cast<std::uint32_t>(needle);
    if (needle != 0.0F) lane = SearchLane::Bits32;
  } else {
    if (integer < rule.lowest || integer > rule.highest) return never;
    // Compiled code may have left any non-zero byte for true.
    if (kind == PrimitiveKind::Boolean && integer == 1) lane = SearchLane::NonZero8;
  }
  return scan(table.searches[static_cast<std::uint8_t>(lane)], bits);
}

}  // namespace

std::uint64_t findFirstElement(PrimitiveKind kind, const unsigned char* data, std::uint64_t from, std::uint64_t size,
                               long long integer, double floating) {
  if (from >= size) return kNotFound;
  return scanFor(kind, size - from, integer, floating, kNotFound, [&](const SearchKernels& search, std::uint64_t bits) {
    return search.findFirst(data, from, size, bits);
  });
}

std::uint64_t findLastElement(PrimitiveKind kind, const unsigned char* data, std::uint64_t end, long long integer,
                              double floating) {
  return scanFor(kind, end, integer, floating, kNotFound,
                 [&](const SearchKernels& search, std::uint64_t bits) { return search.findLast(data, end, bits); });
}

std::uint64_t countElements(PrimitiveKind kind, const unsigned char* data, std::uint64_t size, long long integer,
                            double floating) {
  return scanFor(kind, size, integer, floating, 0,
                 [&](const SearchKernels& search, std::uint64_t bits) { return search.count(data, size, bits); });
}

}  // namespace vorn::collections
