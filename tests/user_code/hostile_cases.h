// Runs one native over one class of collections while one of its hooks is hostile.
#pragma once

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/natives_with_hooks.h"
#include "tests/support/watchdog.h"

namespace vorn::tests {

inline constexpr const char* kHookNames[] = {"Equality", "Order", "Hash", "Text"};
inline constexpr const char* kNotFound = "KeyException: Key not found";

struct HostileCase {
  CollectionClass type;
  Native native;
  Hook hook;
  Shape shape;
};

inline std::string nameOf(const HostileCase& hostile) {
  return std::string(hostile.type.name) + "_" + hostile.native.name + "_" +
         kHookNames[static_cast<unsigned>(hostile.hook)] + (hostile.shape == Shape::Direct ? "" : "InTuple");
}
inline std::ostream& operator<<(std::ostream& out, const HostileCase& hostile) { return out << nameOf(hostile); }

// Every combination that exists, of all classes or of the synchronised ones.
inline std::vector<HostileCase> hostileCases(bool onlySynchronised = false) {
  std::vector<HostileCase> cases;
  for (const CollectionClass& type : kCollectionClasses) {
    if (onlySynchronised && !type.synchronised) continue;
    for (const Shape shape : {Shape::Direct, Shape::InTuple}) {
      for (const Native& native : nativesOf(type, shape)) {
        for (const Hook hook : {Hook::Equality, Hook::Order, Hook::Hash, Hook::Text}) {
          if ((native.hooks & bit(hook)) != 0) cases.push_back({type, native, hook, shape});
        }
      }
    }
  }
  return cases;
}

// What a native did.
struct Ending {
  std::string outcome;
  Texts contents;
  Texts errors;
  int calls = 0;  // of the case's hook
  bool threw = false;
  std::string what;
};

class HostileTest : public RuntimeTest, public ::testing::WithParamInterface<HostileCase> {
 protected:
  static const HostileCase& hostileCase() { return GetParam(); }
  static const CollectionClass& type() { return GetParam().type; }
  static const Native& native() { return GetParam().native; }
  static Hook hook() { return GetParam().hook; }

  // Six elements, of which the fourth is wanted; for sorts enough to be partitioned.
  static Scene scene() {
    std::vector<int> ids = {4, 7, 2, 5, 1, 6};
    if (native().effect == Effect::Sorts) ids = {14, 7, 2, 5, 18, 6, 11, 3, 16, 9, 1, 17, 8, 13, 4, 10, 15, 12};
    return {type(), hostileCase().shape, ids};
  }

  // Runs the native. Afterwards the record must be whole, its lock free, and no root left.
  static Ending run(const Scene& scene, const Hostility& hostility) {
    Ending result;
    const std::size_t roots = rootCount();
    try {
      const ScopedHostility scope(hostility);
      struct CountCalls {
        int& calls;
        ~CountCalls() { calls = ScopedHostility::calls(GetParam().hook); }
      } const counting{result.calls};
      result.outcome = native().call(scene);
    } catch (const std::exception& exception) {
      result.threw = true;
      result.what = exception.what();
    }
    EXPECT_EQ(rootCount(), roots) << "a root is left registered";
    EXPECT_EQ(faultOf(type(), scene.collection), "");
    EXPECT_EQ(faultOf(type(), scene.twin), "");
    result.errors = takeErrors();
    result.contents = scene.contents();
    return result;
  }

  // Runs it on a new collection while the hooks are honest.
  static Ending honestRun() {
    const Ending honest = run(scene(), {});
    EXPECT_GT(honest.calls, 0) << "the hook is not reached";
    EXPECT_EQ(honest.errors, Texts{});
    EXPECT_FALSE(honest.threw);
    return honest;
  }

  // Filled anew, the collection must be as good as new.
  static void expectWorksAgain(const Scene& scene, const Ending& honest) {
    scene.refill();
    const Ending again = run(scene, {});
    EXPECT_EQ(again.outcome, honest.outcome) << "after the hostile run";
    EXPECT_EQ(again.contents, honest.contents) << "after the hostile run";
    EXPECT_EQ(again.errors, Texts{}) << "after the hostile run";
  }

  // A hostility that acts in the n-th call of the case's hook, counted from 1; in every call when n is 0.
  static Hostility atCall(int n, const std::function<void(void* self, void* other)>& act) {
    Hostility hostility;
    hostility.during = [n, act](Hook called, void* self, void* other) {
      if (called != GetParam().hook) return;
      if (n == 0 || ScopedHostility::calls(called) == n) act(self, other);
    };
    return hostility;
  }

  // Calls to be hostile in, of those that an honest run makes.
  static std::vector<int> someCalls(const Ending& honest) {
    std::vector<int> calls = {1, 4};
    if (!onStressHeap()) calls.insert(calls.end(), {2, honest.calls});
    std::erase_if(calls, [&](int call) { return call > honest.calls; });
    std::sort(calls.begin(), calls.end());
    calls.erase(std::unique(calls.begin(), calls.end()), calls.end());
    return calls;
  }

 private:
  Watchdog watchdog_;
};

#define INSTANTIATE_HOSTILE_TESTS(suite, cases)                        \
  INSTANTIATE_TEST_SUITE_P(Natives, suite, ::testing::ValuesIn(cases), \
                           [](const auto& param) { return ::vorn::tests::nameOf(param.param); })

}  // namespace vorn::tests
