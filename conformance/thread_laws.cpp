// Laws of synchronised collections and of threads.
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

constexpr int kThreads = 4;
constexpr int kSteps = 500;

void inThreads(const std::function<void(int thread)>& work) {
  std::vector<std::function<void()>> ends;
  ends.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    ends.push_back(adapter().startThread([&work, thread] { work(thread); }));
  }
  for (const auto& end : ends) end();
}

// A box that nobody keeps but the caller's frame: values.h is for the checking thread.
void* newInt(long long value) { return boxIntegerLikeLocal(internRuntimeTypeName("Int"), value); }

}  // namespace

Checks threadLaws() {
  return {
      {"synchronised lists", "lose nothing that several threads add",
       [] {
         for (const char* name : {"ArrayListSync", "LinkedListSync"}) {
           void* const list = object(name);
           inThreads([&](int thread) {
             for (int i = 0; i < kSteps; ++i) {
               const collections::RootedHandle value(newInt(static_cast<long long>(thread) * kSteps + i));
               vorn_collections_ArrayList_add(list, value.get());
             }
           });
           expect(std::string("the size of ") + name, vorn_collections_ArrayList_size(list),
                  static_cast<long long>(kThreads) * kSteps);
           vorn_collections_ArrayList_sort(list);
           for (int i = 0; i < kThreads * kSteps; ++i)
             expect("an element", vorn_collections_ArrayList_getInt(list, i), static_cast<long long>(i));
         }
       },
       Needs::Threads},
      {"synchronised maps", "lose nothing that several threads put",
       [] {
         for (const char* name : {"HashMapSync", "SortedMapSync"}) {
           void* const map = object(name);
           inThreads([&](int thread) {
             for (int i = 0; i < kSteps; ++i) {
               const collections::RootedHandle key(newInt(static_cast<long long>(thread) * kSteps + i));
               vorn_collections_Map_put(map, key.get(), key.get());
             }
           });
           expect(std::string("the size of ") + name, vorn_collections_Map_size(map),
                  static_cast<long long>(kThreads) * kSteps);
         }
       },
       Needs::Threads},
      {"synchronised sets", "lose nothing that several threads add",
       [] {
         void* const set = object("HashSetSync");
         inThreads([&](int thread) {
           for (int i = 0; i < kSteps; ++i) {
             const collections::RootedHandle value(newInt(static_cast<long long>(thread % 2) * kSteps + i));
             vorn_collections_HashSet_add(set, value.get());
           }
         });
         expect("the size", vorn_collections_HashSet_size(set), 2LL * kSteps);
       },
       Needs::Threads},
      {"threads", "use collections of their own at once, and see their own errors only",
       [] {
         std::vector<int> errors(kThreads);
         inThreads([&](int thread) {
           const collections::RootedHandle list(Vorn_allocObject("ArrayList<Int>"));
           for (int i = 0; i < kSteps; ++i) vorn_collections_ArrayList_addInt(list.get(), i);
           if (thread % 2 == 0) vorn_collections_ArrayList_getInt(list.get(), kSteps);
           if (vorn_collections_ArrayList_size(list.get()) != kSteps) errors[static_cast<std::size_t>(thread)] = 100;
           errors[static_cast<std::size_t>(thread)] += static_cast<int>(adapter().takeErrors().size());
         });
         for (int thread = 0; thread < kThreads; ++thread) {
           expect("the errors of thread " + std::to_string(thread), errors[static_cast<std::size_t>(thread)],
                  thread % 2 == 0 ? 1 : 0);
         }
       },
       Needs::Threads},
  };
}

}  // namespace vorn::conformance
