// What sources call in which a root, a lock or a second read is left out.
#pragma once

#include "collections/core/port/roots.h"
#include "tools/mutants/planted.h"

namespace vorn::planted {

// Takes a root back for as long as this lives, so that its own destructor finds it registered.
template <class Rooted>
class Unrooted {
 public:
  Unrooted(int number, const Rooted& rooted) : rooted_(rooted), active_(on(number)) {
    if (active_) change(Vorn_gcUnregisterRootSlot, Vorn_gcUnregisterRootRange);
  }
  ~Unrooted() {
    if (active_) change(Vorn_gcRegisterRootSlot, Vorn_gcRegisterRootRange);
  }
  Unrooted(const Unrooted&) = delete;
  Unrooted& operator=(const Unrooted&) = delete;

 private:
  template <class Slot, class Range>
  void change(Slot slot, Range range) const {
    // Each of the three kinds begins with what it registers: the slot, the range's two words, or the vector.
    auto* const words = reinterpret_cast<void**>(const_cast<Rooted*>(&rooted_));
    if constexpr (std::is_same_v<Rooted, collections::RootedHandle>) {
      slot(words);
    } else if constexpr (std::is_same_v<Rooted, collections::RootedRange>) {
      if (words[1] != nullptr) range(words[0], reinterpret_cast<std::size_t>(words[1]));
    } else {
      range(words, sizeof(typename Rooted::Storage));
    }
  }

  const Rooted& rooted_;
  bool active_;
};

template <class Rooted>
Unrooted(int, const Rooted&) -> Unrooted<Rooted>;

// The record, or one of its sort that has no lock.
template <class Record>
const Record& unlocked(int number, const Record& record) {
  static const Record plain{};
  return on(number) ? plain : record;
}

constexpr auto stale(int number, auto before, auto now) {
  return on(number) ? static_cast<decltype(now)>(before) : now;
}

}  // namespace vorn::planted
