// Copying runs of unboxed elements of one kind, as bytes; from one list to another or between buffers.
#pragma once

#include <cstdint>

#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// Copies elements first, first + step, ... (`count` of them) of the given width to `to`, which does not overlap.
void gatherElements(const unsigned char* from, long long first, long long step, std::uint64_t count,
                    std::uint64_t width, unsigned char* to);

// Copies `count` elements of the given width to positions first, first + step, ... of `to`, which does not overlap.
void scatterElements(const unsigned char* from, std::uint64_t count, std::uint64_t width, unsigned char* to,
                     long long first, long long step);

// Appends source elements first, first + step, ... (`count` of them) to the target, which has room or gets it.
// Allocates.
void appendPrimitiveElements(const ListData& source, long long first, long long step, std::uint64_t count,
                             ListData& target);

// Appends the target's elements to themselves until there are `total` of them, a multiple of what there is, for which it
// has room. Does not allocate.
void repeatPrimitiveElements(ListData& target, std::uint64_t total);

}  // namespace vorn::collections
