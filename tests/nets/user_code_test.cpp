// Every native whose elements are objects with hooks: which hooks it reaches, and that it is sound whatever they do.
// tests/user_code says more of what comes of it.
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <stdexcept>

#include "tests/nets/stage.h"
#include "tests/support/figures.h"
#include "tests/support/sequences.h"

namespace vorn::tests::nets {
namespace {

constexpr Hook kHooks[] = {Hook::Equality, Hook::Order, Hook::Hash, Hook::Text};
constexpr const char* kThrown = "thrown by a hook";
constexpr const char* kRaised = "Hook: raised";

// Replaces all hooks by their honest answers behind a call of `during`, which calls of hooks that come from inside it do
// not reach.
class Watched {
 public:
  explicit Watched(std::function<void(Hook hook, void* self)> during)
      : during_(std::move(during)),
        hooks_({[this](void* self, void* other) { return enter(Hook::Equality, self), honestEquals(self, other); },
                [this](void* self, void* other, bool* comparable) {
                  return enter(Hook::Order, self), honestCompare(self, other, comparable);
                },
                [this](void* self) { return enter(Hook::Hash, self), kHonestHash; },
                [this](void* self) { return enter(Hook::Text, self), honestText(self); }}) {}

 private:
  void enter(Hook hook, void* self) {
    if (inside_) return;
    inside_ = true;
    struct Leave {
      bool& inside;
      ~Leave() { inside = false; }
    } const leave{inside_};
    during_(hook, self);
  }

  std::function<void(Hook hook, void* self)> during_;
  bool inside_ = false;
  ScopedHooks hooks_;
};

// Subjects with user objects in them, plain and synchronised.
std::vector<Subject> hookedSubjects(const Native& native) {
  std::vector<Subject> subjects;
  for (const Which which : {Which::Plain, Which::Synchronised}) {
    if (which == Which::Synchronised && !native.takesReceiver()) continue;
    for (Subject subject : subjectsOf(native, which)) {
      const std::string content = subject.content->name;
      if (subject.type == nullptr) subject.content = &contentNamed("user objects");
      if (subject.type == nullptr || content.ends_with("user objects")) subjects.push_back(subject);
    }
  }
  return subjects;
}

// How often each hook is called.
struct Calls {
  int of[4] = {};
  [[nodiscard]] int& operator[](Hook hook) { return of[static_cast<unsigned>(hook)]; }
};

Ending runHonestly(Stage& stage, Calls& calls) {
  const Watched watched([&](Hook hook, void*) { ++calls[hook]; });
  return stage.run();
}

// ---- What a hook does to the collection -----------------------------------------------------------------------------

void empty(const CollectionClass& type, void* collection) {
  switch (type.family) {
    case Family::List:
      return vorn_collections_ArrayList_clear(collection);
    case Family::Immutable:
      return vorn_collections_ImmutableList_ctor(collection, nullptr);
    case Family::Tuple:
      return vorn_collections_Tuple_ctor(collection, object("ArrayList"));
    case Family::Set:
      return vorn_collections_HashSet_clear(collection);
    case Family::Map:
      return vorn_collections_Map_clear(collection);
    case Family::Array:
      return vorn_collections_Array_ctor(collection, 0);
  }
}

void fillWithIntegers(const CollectionClass& type, void* collection) {
  const Handle source = object("ArrayList");
  for (int i = 0; i < 40; ++i) vorn_collections_ArrayList_addInt(source, i);
  switch (type.family) {
    case Family::List:
      vorn_collections_ArrayList_clear(collection);
      return vorn_collections_ArrayList_addAll(collection, source);
    case Family::Immutable:
      return vorn_collections_ImmutableList_ctor(collection, source);
    case Family::Tuple:
      return vorn_collections_Tuple_ctor(collection, source);
    case Family::Set:
      for (int i = 0; i < 40; ++i) vorn_collections_HashSet_add(collection, integer("Int", i));
      return;
    case Family::Map:
      for (int i = 0; i < 40; ++i) vorn_collections_Map_put(collection, integer("Int", i), nullptr);
      return;
    case Family::Array:
      return vorn_collections_Array_copyCtor(collection, source);
  }
}

class UserCode : public NativeTest {
 protected:
  // Runs check(stage, hook, call, honest) for hooks that are called, and calls to be hostile in.
  template <class Check>
  static void forEachCall(Check check) {
    for (const Subject& subject : hookedSubjects(native())) {
      const Choices choices = ordinary(native(), subject);
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      Stage honestStage(native(), subject, choices);
      Calls calls;
      const Ending honest = runHonestly(honestStage, calls);
      for (const Hook hook : kHooks) {
        for (const int call : {1, 2, calls[hook]}) {
          if (call < 1 || call > calls[hook] || (call != 1 && !inFull())) continue;
          SCOPED_TRACE("hook " + std::to_string(static_cast<int>(hook)) + " in call " + std::to_string(call));
          Stage stage(native(), subject, choices);
          check(stage, hook, call, honest, honestStage);
          if (HasFailure()) return;
        }
      }
    }
  }

  // Runs it with one call of a hook that does something first.
  static Ending runWith(Stage& stage, Hook hook, int call, const std::function<void(void* self)>& act) {
    int called = 0;
    const Watched watched([&](Hook which, void* self) {
      if (which != hook || ++called != call) return;
      ++figures().faults;
      act(self);
    });
    return stage.run();
  }
};
class UserCodeExcuses : public NativeTest {};
INSTANTIATE_NET(UserCode, [](const Native& native) { return native.hooks != 0; });

unsigned hooksReached(const Native& native) {
  unsigned reached = 0;
  for (const Subject& subject : hookedSubjects(native)) {
    for (const Choices& choices : oneAtATime(native, subject)) {
      Stage stage(native, subject, choices);
      Calls calls;
      runHonestly(stage, calls);
      for (const Hook hook : kHooks) reached |= calls[hook] > 0 ? hookBit(hook) : 0;
    }
  }
  return reached;
}

TEST_P(UserCode, TheHooksThatAreReached_AreThoseOfTheCatalogue) {
  const unsigned reached = hooksReached(native());
  EXPECT_EQ(reached & ~native().hooks, 0U) << "and others";
  EXPECT_TRUE(!inFull() || reached == native().hooks) << "not all of them";
}

TEST_P(UserCode, AHookThatThrows_LeavesTheCollectionAsItWas) {
  forEachCall([](Stage& stage, Hook hook, int call, const Ending&, const Stage&) {
    const Ending ending = runWith(stage, hook, call, [](void*) { throw std::runtime_error(kThrown); });
    EXPECT_EQ(ending.threw, kThrown);
    EXPECT_EQ(ending.errors, Texts{});
    EXPECT_EQ(stage.state(), stage.stateBefore());
  });
}

TEST_P(UserCode, AHookThatRaises_LeavesItSound) {
  forEachCall([](Stage& stage, Hook hook, int call, const Ending&, const Stage&) {
    const Ending ending = runWith(stage, hook, call, [](void*) { vorn_raise("Hook", "raised"); });
    EXPECT_EQ(ending.threw, "");
    ASSERT_FALSE(ending.errors.empty());
    EXPECT_EQ(ending.errors.front(), kRaised);
    if (native().reads) {
      EXPECT_EQ(stage.state(), stage.stateBefore());
    }
  });
}

TEST_P(UserCode, AHookThatCollectsAllocatesAndKeeps_ChangesNothing) {
  forEachCall([](Stage& stage, Hook hook, int call, const Ending& honest, const Stage& honestStage) {
    Handle kept;
    const Ending ending = runWith(stage, hook, call, [&](void* self) {
      kept = self;
      for (int i = 0; i < 3; ++i) string("garbage");
      vorn_heap_collect();
    });
    EXPECT_EQ(textOf(ending), textOf(honest));
    EXPECT_EQ(stage.elements(), honestStage.elements());
    vorn_heap_collect();
    EXPECT_NE(idOf(kept), -1) << "what the hook kept has died";
  });
}

TEST_P(UserCode, AHookThatChangesTheCollection_LeavesItSound) {
  for (const auto change : {empty, fillWithIntegers}) {
    forEachCall([&](Stage& stage, Hook hook, int call, const Ending&, const Stage&) {
      const Ending ending = runWith(stage, hook, call, [&](void*) {
        change(stage.type(), stage.receiver());
        vorn_heap_collect();
      });
      EXPECT_EQ(ending.threw, "");
    });
  }
}

// The hook calls the native that it is called from on another collection like it, whose hooks do the same, and so on many
// levels down; and then on the very same one.
TEST_P(UserCode, AHookThatRecurses_LeavesItSound) {
  const int kLevels = inFull() ? 100 : 10;
  for (const Subject& subject : hookedSubjects(native())) {
    const Choices choices = ordinary(native(), subject);
    SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
    Stage stage(native(), subject, choices);
    int level = 0;
    bool filling = false;
    const auto deeper = [&] {
      if (filling || level >= kLevels) return;
      ++level;
      ++figures().faults;
      filling = true;
      Stage below(native(), subject, choices);
      filling = false;
      below.callAgain();
      stage.callAgain();
    };
    const ScopedHooks hooks(
        {[&](void* self, void* other) { return deeper(), honestEquals(self, other); },
         [&](void* self, void* other, bool* comparable) { return deeper(), honestCompare(self, other, comparable); },
         [&](void*) { return deeper(), kHonestHash; }, [&](void* self) { return deeper(), honestText(self); }});
    EXPECT_EQ(stage.run().threw, "");
    EXPECT_EQ(level, kLevels);
    if (HasFailure()) return;
  }
}

TEST_P(UserCodeExcuses, NoHookIsReached) { EXPECT_EQ(hooksReached(native()), 0U); }

}  // namespace
}  // namespace vorn::tests::nets
