#include "runtime/equality/running_hooks.h"

namespace vorn::runtime {
namespace {

// Enough for hooks that look a few things up, and few enough that a hook which enters itself again in each of many
// lookups comes to an end: their number is bounded by this one and not by its powers.
constexpr int kReentries = 64;

thread_local const RunningHook* innermostHook = nullptr;
thread_local std::uint32_t currentLookup = 0;
thread_local int reentriesLeft = kReentries;  // until the outermost hook returns

}  // namespace

// Outside of hooks all lookups may bear one number: none is in progress while another one begins.
LookupScope::LookupScope() : outer_(currentLookup) { currentLookup += innermostHook != nullptr ? 1 : 0; }

LookupScope::~LookupScope() { currentLookup = outer_; }

std::uint32_t LookupScope::current() { return currentLookup; }

RunningHook::RunningHook(Rule rule, const void* left, const void* right)
    : rule_(rule), lookup_(currentLookup), left_(left), right_(right), outer_(innermostHook) {
  innermostHook = this;
}

RunningHook::~RunningHook() {
  innermostHook = outer_;
  if (outer_ == nullptr) reentriesLeft = kReentries;
}

bool RunningHook::isOf(Rule rule, const void* left, const void* right) const {
  return rule_ == rule && ((left_ == left && right_ == right) || (left_ == right && right_ == left));
}

auto RunningHook::standingOf(Rule rule, const void* left, const void* right) -> Standing {
  bool entersAgain = false;
  for (const RunningHook* hook = innermostHook; hook != nullptr; hook = hook->outer_) {
    if (!hook->isOf(rule, left, right)) continue;
    if (hook->lookup_ == currentLookup) return Standing::InProgress;
    entersAgain = true;
  }
  if (currentLookup != 0 && reentriesLeft == 0) return Standing::EntersAgainForEver;
  if (entersAgain) --reentriesLeft;
  return Standing::MayRun;
}

}  // namespace vorn::runtime
