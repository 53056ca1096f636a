// The elements of a foreign collection at one moment, kept as that collection keeps them; shared by lists and arrays.
#pragma once

#include <cstdint>

#include "collections/arraylist/snapshots.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"

namespace vorn::collections {

// A run of raw value pairs, read at once so that the kind of their storage is looked at once.
struct RawRun {
  static constexpr std::uint64_t kMost = 256;
  long long integers[kMost];
  double floatings[kMost];
};

// Values collected from one collection: either raw values of one type, or handles.
//
// Raw values stand for the boxes that reading the elements one by one would have made: boxes of exactly this type. So a
// collection that keeps its elements under another name than its kind's own has its boxes made when it is collected,
// because those bear a type of their own.
//
// An unsynchronised list or array can lend its storage: nothing is copied, and the values hold while it is unchanged.
// The four functions that collect lock the collection while they copy it; the others lock nothing.
class CollectedValues {
 public:
  [[nodiscard]] std::uint64_t size() const { return size_; }

  // False when reading an element raised: there are only the values before it.
  [[nodiscard]] bool complete() const { return complete_; }

  // The type of raw values; its kind is None when there are handles.
  [[nodiscard]] const ElementType& type() const { return type_; }
  [[nodiscard]] bool raw() const { return type_.kind != ListData::PrimitiveKind::None; }

  // The bytes of raw values, at the width of their kind.
  [[nodiscard]] const unsigned char* bytes() const { return bytes_; }

  // Reads raw values from `first` on, at most RawRun::kMost of them; gives their number.
  std::uint64_t readRun(std::uint64_t first, RawRun& run) const;

  // Calls visit(first, count, run) for run after run of raw values, until it answers false.
  template <class Visit>
  void forEachRun(Visit visit) const {
    RawRun run;
    for (std::uint64_t first = 0; first < size_;) {
      const std::uint64_t count = readRun(first, run);
      if (!visit(first, count, run)) return;
      first += count;
    }
  }

  // The first raw value that is not among the accepted ones; size() when there is none.
  [[nodiscard]] std::uint64_t firstOutside(const AcceptedValues& accepted) const;

  // Stores all raw values as elements of a kind that takes them.
  void storeAs(ListData::PrimitiveKind kind, unsigned char* elements) const;

  // The handle at `index`; a new box of a raw value. Allocates.
  [[nodiscard]] void* handleAt(std::uint64_t index) const;

  // The handles of values that are not raw.
  [[nodiscard]] void* const* handles() const { return handles_; }

  // The first `count` values as handles, for as long as `boxes` lives: boxes of raw values go there. Allocates for
  // these only.
  void* const* handles(std::uint64_t count, HandleVector& boxes) const;

  // Each fills empty values. `lent` allows to look into the collection itself, when it is not synchronised, instead of
  // a copy. All allocate.
  void collectList(void* list, bool lent);
  void collectArray(void* array, bool lent);
  void collectSet(void* set);
  // Item by item through the class's own native, until one raises.
  void collectTuple(void* tuple, std::uint64_t size);

 private:
  void useElements(ListData::PrimitiveKind kind, RuntimeTypeName name, const unsigned char* elements,
                   std::uint64_t count);
  void useHandles(void* const* handles, std::uint64_t count);

  ListStorageSnapshot copy_;
  ElementType type_;
  const unsigned char* bytes_ = nullptr;
  void* const* handles_ = nullptr;
  std::uint64_t size_ = 0;
  bool complete_ = true;
};

}  // namespace vorn::collections
