#include "collections/keyed/bucket_lines.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "collections/core/port/memory.h"

namespace vorn::collections {

namespace {

// Uninitialised; null when there is no memory.
BucketLine* allocateLines(std::uint64_t count) {
  return static_cast<BucketLine*>(Vorn_gcAllocAtomic(count * sizeof(BucketLine)));
}

// At the load that makes a table grow about one bucket in seven needs a further line.
constexpr std::uint32_t kBucketsPerFurtherLine = 8;

}  // namespace

bool BucketLines::tryAllocate(std::uint64_t bucketCount) {
  if (bucketCount == 0) return true;
  BucketLine* const lines = allocateLines(bucketCount);
  if (lines == nullptr) return false;
  std::memset(static_cast<void*>(lines), 0, bucketCount * sizeof(BucketLine));
  lines_ = lines;
  further_ = {};
  bucketCount_ = static_cast<std::uint32_t>(bucketCount);
  return true;
}

bool BucketLines::tryMakeFurtherLines() {
  const std::uint64_t wanted =
      std::max<std::uint64_t>(bucketCount_ / kBucketsPerFurtherLine + 1, std::uint64_t{2} * further_.capacity);
  if (wanted > std::numeric_limits<std::uint32_t>::max()) return false;
  BucketLine* const further = allocateLines(wanted);
  if (further == nullptr) return false;
  if (further_.used != 0) {
    std::memcpy(static_cast<void*>(further), further_.lines, further_.used * sizeof(BucketLine));
  }
  further_.lines = further;
  further_.capacity = static_cast<std::uint32_t>(wanted);
  return true;
}

// The first of the further lines, or a new one before it when that is full as well.
BucketLine& BucketLines::furtherLineWithRoom(BucketLine& first) {
  if (first.next != 0 && furtherLine(first.next).used < BucketLine::kSlots) return furtherLine(first.next);
  std::uint32_t number = freeLine_;
  if (number != 0) {
    freeLine_ = furtherLine(number).next;
  } else {
    number = ++further_.used;
    std::memset(static_cast<void*>(&furtherLine(number)), 0, sizeof(BucketLine));
  }
  furtherLine(number).next = first.next;
  first.next = number;
  return furtherLine(number);
}

bool BucketLines::tryAddToFullLine(BucketLine& first, std::uint32_t hash, std::uint32_t place) {
  if (!hasRoomIn(first) && !tryMakeFurtherLines()) return false;
  furtherLineWithRoom(first).append(hash, place);
  return true;
}

void BucketLines::remove(std::uint32_t hash, std::uint32_t place) {
  if (bucketCount_ == 0) {
    tags_.tags[place] = 0;
    return;
  }
  BucketLine& first = *firstLine(hash);
  BucketLine* line = &first;
  std::uint32_t slot = 0;
  for (;; line = &furtherLine(line->next)) {
    const BucketLine& searched = *line;
    slot = static_cast<std::uint32_t>(std::find(searched.places, searched.places + searched.used, place) -
                                      searched.places);
    if (slot < searched.used) break;
  }
  // The last element of the one line that need not be full takes the slot.
  const std::uint32_t donorNumber = first.next;
  BucketLine& donor = donorNumber != 0 ? furtherLine(donorNumber) : first;
  const std::uint32_t last = --donor.used;
  line->tags[slot] = donor.tags[last];
  line->places[slot] = donor.places[last];
  donor.tags[last] = 0;
  donor.places[last] = 0;
  if (donor.used != 0 || donorNumber == 0) return;
  first.next = donor.next;
  donor.next = freeLine_;
  freeLine_ = donorNumber;
}

void BucketLines::empty() {
  if (bucketCount_ == 0) {
    tags_ = {};
    return;
  }
  std::memset(static_cast<void*>(lines_), 0, bucketCount_ * sizeof(BucketLine));
  further_.used = 0;
  freeLine_ = 0;
}

}  // namespace vorn::collections
