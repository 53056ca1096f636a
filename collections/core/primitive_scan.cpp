#include "collections/core/primitive_scan.h"

#include <type_traits>

#include "collections/core/element_access.h"
#include "collections/core/primitive_kinds.h"

namespace vorn::collections {

namespace {

// Elements are tested a block at a time, without a branch inside the block: the compiler turns that into vector
// comparisons (measured 0.06 ns an element against 0.25 for a loop that stops at the match). A block of 128 keeps the
// per-block count of one-byte elements within their own width.
constexpr std::uint64_t kBlock = 128;

template <class Element>
using LaneOf =
    std::conditional_t<sizeof(Element) == 1, std::uint8_t,
                       std::conditional_t<sizeof(Element) == 2, std::uint16_t,
                                          std::conditional_t<sizeof(Element) == 4, std::uint32_t, std::uint64_t>>>;

// The number of matches in one block, in lanes as wide as the elements.
template <class Element, class Matches>
inline LaneOf<Element> countInBlock(const unsigned char* block, Matches matches) {
  LaneOf<Element> count = 0;
  for (std::uint64_t i = 0; i < kBlock; ++i) {
    count = static_cast<LaneOf<Element>>(count + (matches(loadElement<Element>(block, i)) ? 1 : 0));
  }
  return count;
}

template <class Element, class Matches>
std::uint64_t findFirst(const unsigned char* data, std::uint64_t from, std::uint64_t size, Matches matches) {
  std::uint64_t i = from;
  while (size - i >= kBlock && countInBlock<Element>(data + i * sizeof(Element), matches) == 0) i += kBlock;
  for (; i < size; ++i) {
    if (matches(loadElement<Element>(data, i))) return i;
  }
  return kNotFound;
}

template <class Element, class Matches>
std::uint64_t findLast(const unsigned char* data, std::uint64_t end, Matches matches) {
  std::uint64_t i = end;
  while (i >= kBlock && countInBlock<Element>(data + (i - kBlock) * sizeof(Element), matches) == 0) i -= kBlock;
  for (; i > 0; --i) {
    if (matches(loadElement<Element>(data, i - 1))) return i - 1;
  }
  return kNotFound;
}

template <class Element, class Matches>
std::uint64_t countAll(const unsigned char* data, std::uint64_t size, Matches matches) {
  std::uint64_t count = 0;
  std::uint64_t i = 0;
  for (; size - i >= kBlock; i += kBlock) count += countInBlock<Element>(data + i * sizeof(Element), matches);
  for (; i < size; ++i) count += matches(loadElement<Element>(data, i)) ? 1 : 0;
  return count;
}

// Calls scan(element type tag, predicate) with the test for one needle, made once; gives `never` when no element of
// that width can match, such as 300 among bytes.
template <class Result, class Scan>
Result scanFor(const ListData& list, const BulkPrimitiveListValue& value, Result never, Scan scan) {
  return visitKind(
      list.primitiveKind,
      [&](auto tag) -> Result {
        using Tag = decltype(tag);
        using Element = typename Tag::Element;
        if constexpr (isFloatingKind(Tag::kind)) {
          const auto needle = static_cast<Element>(value.floating);
          if (static_cast<double>(needle) != value.floating) return never;
          return scan(tag, [needle](Element element) { return element == needle; });
        } else if constexpr (Tag::kind == PrimitiveKind::Boolean) {
          // Compiled code may have left any non-zero byte for true.
          if (value.integer == 0) return scan(tag, [](Element element) { return element == 0; });
          if (value.integer == 1) return scan(tag, [](Element element) { return element != 0; });
          return never;
        } else {
          const auto needle = static_cast<Element>(value.integer);
          if (static_cast<long long>(needle) != value.integer) return never;
          return scan(tag, [needle](Element element) { return element == needle; });
        }
      },
      never);
}

}  // namespace

std::uint64_t findFirstPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from) {
  return scanFor(list, value, kNotFound, [&](auto tag, auto matches) {
    return findFirst<typename decltype(tag)::Element>(list.primitive.data, from, list.primitive.size, matches);
  });
}

std::uint64_t findLastPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from) {
  return scanFor(list, value, kNotFound, [&](auto tag, auto matches) {
    return findLast<typename decltype(tag)::Element>(list.primitive.data, from + 1, matches);
  });
}

std::uint64_t countPrimitive(const ListData& list, const BulkPrimitiveListValue& value) {
  return scanFor(list, value, std::uint64_t{0}, [&](auto tag, auto matches) {
    return countAll<typename decltype(tag)::Element>(list.primitive.data, list.primitive.size, matches);
  });
}

}  // namespace vorn::collections
