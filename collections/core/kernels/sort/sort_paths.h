// What the paths of the primitive sort share: how elements are seen as keys, and each path's entry points.
//
// Every path sorts signed integers of the element's width. Unsigned and floating elements are turned into signed keys
// of the same order in place, and turned back afterwards; the mapping is one to one, so every bit of a NaN survives.
#pragma once

#include <cstdint>

namespace vorn::collections {

// One element seen as its bits. Elements are stored as other types, hence the attribute.
template <class KeyType>
struct [[gnu::may_alias]] SortSlot {
  using Key = KeyType;
  KeyType key;
};

static_assert(sizeof(SortSlot<std::int8_t>) == 1 && sizeof(SortSlot<std::int64_t>) == 8);

enum class KeyOrder : unsigned char { Signed, Unsigned, Floating };

void sortPlain(SortSlot<std::int8_t>* slots, std::uint64_t count, KeyOrder order);
void sortPlain(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order);
void sortPlain(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order);
void sortPlain(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order);

#if defined(__x86_64__)
void sortAvx2(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order);
void sortAvx2(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order);
void sortAvx2(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order);
void sortAvx512(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order);
void sortAvx512(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order);
void sortAvx512(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order);
#endif

}  // namespace vorn::collections
