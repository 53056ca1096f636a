// User classes whose hooks a test can replace. All have the integer field "id" and the handle field "next"; what they
// differ in is which hooks they have.
#pragma once

#include <vorn/runtime.hpp>

#include <cstdint>
#include <functional>

namespace vorn::tests {

enum class Hook : unsigned { Equality, Order, Hash, Text };

// A new object, whose class is defined when it is first asked for.
Handle plain(std::int64_t id);    // app.Plain, without hooks
Handle item(std::int64_t id);     // app.Item: equality
Handle ranked(std::int64_t id);   // app.Ranked: equality and order
Handle hooked(std::int64_t id);   // app.Hooked: equality, order and text
Handle userKey(std::int64_t id);  // app.Key: equality, order, hash and text

// The fields; -1 and null for an object that has none.
std::int64_t idOf(void* handle);
void* nextOf(void* handle);

// What replaces the honest answers. They are: objects of one class are equal when their ids are, and ordered by them;
// those of other classes are neither equal nor comparable; all hashes are 1, so that equality is always asked; the text
// is "#" and the id.
//
// What the functions capture must be rooted elsewhere. `*comparable` is true when compare is called.
struct UserHooks {
  std::function<bool(void* self, void* other)> equals;
  std::function<int(void* self, void* other, bool* comparable)> compare;
  std::function<std::uint64_t(void* self)> hash;
  std::function<void*(void* self)> toString;
};

// The hooks of all user objects and threads. Every test starts and ends without any (RuntimeTest).
extern UserHooks userHooks;

bool honestEquals(void* self, void* other);
int honestCompare(void* self, void* other, bool* comparable);
inline constexpr std::uint64_t kHonestHash = 1;
void* honestText(void* self);  // a new String

// How often the hook has been called, replaced or not, since the test began or the counts were cleared.
int hookCalls(Hook hook);
void clearHookCalls();

// Replaces the hooks for a scope.
class ScopedHooks {
 public:
  explicit ScopedHooks(UserHooks hooks);
  ~ScopedHooks();
  ScopedHooks(const ScopedHooks&) = delete;
  ScopedHooks& operator=(const ScopedHooks&) = delete;

 private:
  UserHooks previous_;
};

// Replaces one of them, and for the order leaves all objects comparable.
class ScopedEquality : public ScopedHooks {
 public:
  explicit ScopedEquality(std::function<bool(void* self, void* other)> equals);
};
class ScopedOrdering : public ScopedHooks {
 public:
  explicit ScopedOrdering(std::function<int(void* self, void* other)> compare);
};

// Defines a class, unless it is defined already: classes last as long as the process, tests may run more than once.
// The size of the definition is filled in.
void defineClass(vorn_class_definition definition);

}  // namespace vorn::tests
