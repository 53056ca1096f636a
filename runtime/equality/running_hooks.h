// Which hooks of equality and order are running on this thread, and for which comparison.
//
// A hook that compares what its objects refer to would never end on objects that refer to each other. So within one
// comparison a pair in progress counts as equal, whatever lies between: the hook's own comparisons go on with the one
// that called it.
//
// A lookup in a map or set is another matter. Its result stays in the table, and must not rest on an equality that was
// only assumed. So a lookup that a hook makes is a new comparison, for which nothing is in progress, and asks the hook
// of the same pair again. Hooks that never cease to do so are stopped: once kReentries pairs have been entered again
// since the outermost hook began, the hooks of lookups within it are not asked any more and identity decides, or in an
// order the address.
#pragma once

#include <cstdint>

#include "runtime/equality/pair_rules.h"

namespace vorn::runtime {

// The number of lookups that this thread is in the middle of, each within a hook of the one before; comparisons belong
// to the same one when they have the same number.
class LookupScope {
 public:
  LookupScope();
  ~LookupScope();
  LookupScope(const LookupScope&) = delete;
  LookupScope& operator=(const LookupScope&) = delete;

  static std::uint32_t current();

 private:
  std::uint32_t outer_;
};

// A pair of objects while the hook that decides about it runs. The handles are only compared: whoever called the hook
// keeps both objects alive.
class RunningHook {
 public:
  RunningHook(Rule rule, const void* left, const void* right);
  ~RunningHook();
  RunningHook(const RunningHook&) = delete;
  RunningHook& operator=(const RunningHook&) = delete;

  enum class Standing : std::uint8_t {
    MayRun,
    InProgress,          // in this comparison
    EntersAgainForEver,  // and has done so too often
  };

  // How a pair stands whose hook is about to be called.
  static Standing standingOf(Rule rule, const void* left, const void* right);

 private:
  [[nodiscard]] bool isOf(Rule rule, const void* left, const void* right) const;

  Rule rule_;
  std::uint32_t lookup_;
  const void* left_;
  const void* right_;
  const RunningHook* outer_;
};

}  // namespace vorn::runtime
