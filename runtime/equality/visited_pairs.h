// The pairs of collections that a comparison has entered.
#pragma once

#include <cstddef>
#include <functional>
#include <unordered_set>

#include "collections/core/port/roots.h"

namespace vorn::runtime {

// A pair stays in here when its elements have been compared: the first difference ends the whole comparison, so that a
// pair met again is either still in progress or was found equal. That makes cycles end, and collections that
// share their parts cost their size rather than the number of paths through them.
//
// The handles are rooted here, because user hooks may drop a collection from where it was found: another one at its
// address must not pass for it.
class VisitedPairs {
 public:
  VisitedPairs() : roots_(first_, sizeof(first_)) {}

  [[nodiscard]] bool contains(void* left, void* right) const {
    if (!others_.empty() && others_.contains({left, right})) return true;
    for (std::size_t i = 0; i < count_; ++i) {
      if (first_[i].left == left && first_[i].right == right) return true;
    }
    return false;
  }

  // Adds a pair that is not in here. Allocates; std::bad_alloc.
  void add(void* left, void* right) {
    if (count_ < kFirst) {
      first_[count_++] = {left, right};
      return;
    }
    more_->push_back(left);
    more_->push_back(right);
    others_.insert({left, right});
  }

 private:
  struct Pair {
    void* left = nullptr;
    void* right = nullptr;
    friend bool operator==(const Pair&, const Pair&) = default;
  };
  struct PairHash {
    std::size_t operator()(const Pair& pair) const {
      constexpr std::size_t kMultiplier = 0x9E3779B97F4A7C15ULL;
      const std::size_t mixed = std::hash<void*>{}(pair.left) * kMultiplier + std::hash<void*>{}(pair.right);
      return (mixed * kMultiplier) >> 16;
    }
  };
  static constexpr std::size_t kFirst = 4;

  // Most comparisons meet one pair or a few, which take no memory.
  Pair first_[kFirst] = {};
  std::size_t count_ = 0;
  collections::RootedRange roots_;
  collections::HandleVector more_;
  std::unordered_set<Pair, PairHash> others_;
};

}  // namespace vorn::runtime
