// User objects whose hooks a test makes hostile.
#pragma once

#include <cstdint>
#include <functional>

#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

constexpr unsigned bit(Hook hook) { return 1U << static_cast<unsigned>(hook); }

inline bool isHostile(void* handle) { return vorn_is_instance(handle, "app.Key") != 0; }

// What the hooks do. What the functions capture must be rooted elsewhere.
struct Hostility {
  // Runs first in every call of a hook. `other` is null for Hash and Text.
  std::function<void(Hook hook, void* self, void* other)> during;
  // Each replaces the honest answer, which it is given where it depends on the objects.
  std::function<bool(bool honest)> equality;
  std::function<int(int honest, bool* comparable)> order;
  std::function<std::uint64_t()> hash;
  std::function<void*()> text;
};

// Makes the hooks hostile for a scope and counts their calls. Hooks that are called while a hook runs answer honestly
// and do not count: user code that uses a collection would never end otherwise.
class ScopedHostility {
 public:
  explicit ScopedHostility(const Hostility& hostility) : hooks_(hooksOf(hostility)) {
    for (int& calls : calls_) calls = 0;
  }

  static int calls(Hook hook) { return calls_[static_cast<unsigned>(hook)]; }
  static int calls() { return calls(Hook::Equality) + calls(Hook::Order) + calls(Hook::Hash) + calls(Hook::Text); }

 private:
  static UserHooks hooksOf(const Hostility& hostility) {
    UserHooks hooks;
    hooks.equals = [&hostility](void* self, void* other) {
      const bool honest = honestEquals(self, other);
      return enter(hostility, Hook::Equality, self, other) && hostility.equality ? hostility.equality(honest) : honest;
    };
    hooks.compare = [&hostility](void* self, void* other, bool* comparable) {
      const int honest = honestCompare(self, other, comparable);
      return enter(hostility, Hook::Order, self, other) && hostility.order ? hostility.order(honest, comparable)
                                                                           : honest;
    };
    hooks.hash = [&hostility](void* self) {
      return enter(hostility, Hook::Hash, self, nullptr) && hostility.hash ? hostility.hash() : kHonestHash;
    };
    hooks.toString = [&hostility](void* self) {
      return enter(hostility, Hook::Text, self, nullptr) && hostility.text ? hostility.text() : honestText(self);
    };
    return hooks;
  }

  // Whether the call is one to be hostile in; what comes first has then run. Both objects must outlive that, also where
  // the collection held them alone and has been emptied.
  static bool enter(const Hostility& hostility, Hook hook, void* self, void* other) {
    if (inside_) return false;
    ++calls_[static_cast<unsigned>(hook)];
    const Inside scope;
    const std::int64_t selfId = idOf(self);
    const std::int64_t otherId = idOf(other);
    if (hostility.during) hostility.during(hook, self, other);
    EXPECT_EQ(idOf(self), selfId) << "the object died in its own hook";
    EXPECT_EQ(idOf(other), otherId) << "the other object died in the hook";
    return true;
  }

  class Inside {
   public:
    Inside() { inside_ = true; }
    ~Inside() { inside_ = false; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
  };

  static inline bool inside_ = false;
  static inline int calls_[4] = {};

  ScopedHooks hooks_;
};

}  // namespace vorn::tests
