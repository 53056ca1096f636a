// Random mixes of operations on shared collections from several threads at once: what the topics of the stress program
// are made of.
//
// Each thread is a player with a model of its own: of what it alone adds, changes and removes it knows exactly what
// must be there, whatever the others do meanwhile. So a result that is wrong for one moment shows, and not only totals.
#pragma once

#include <vorn/runtime.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace vorn::tests::stress {

inline constexpr int kPlayers = 8;

// SplitMix64.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  // A number below the bound, which is not 0.
  int below(int bound) { return static_cast<int>(next() % static_cast<std::uint64_t>(bound)); }
  bool oneIn(int count) { return below(count) == 0; }

 private:
  std::uint64_t state_;
};

// What one thread of a mix needs and counts.
struct Player {
  Player(int itsNumber, std::uint64_t seed) : number(itsNumber), random(seed) {}

  const int number;  // 0 to kPlayers - 1
  Random random;
  std::uint64_t operations = 0;
  std::uint64_t faults = 0;  // allocations that were made to fail
  bool faulted = false;      // whether one failed in the attempt that was made last
};

// Notes that something is not as it must be; the first ones are printed.
void diverge(const std::string& what);
void expect(bool holds, const char* what);

// Takes the errors that are pending on this thread back; one of another class than the given one is a divergence.
// Whether there was any.
bool forgive(const char* errorClass);

// Calls a native, now and then with an allocation that fails. False when the call ended with std::bad_alloc: then it must
// have changed nothing.
template <class Call>
bool attempt(Player& player, const Call& call) {
  const bool armed = player.random.oneIn(16);
  player.faulted = false;
  if (armed) vorn_heap_fail_allocation(player.random.below(6));
  bool done = true;
  try {
    call();
  } catch (const std::bad_alloc&) {
    done = false;
  }
  if (armed) {
    player.faulted = vorn_heap_failure_happened() != 0;
    player.faults += player.faulted ? 1 : 0;
    vorn_heap_fail_allocation(-1);
  }
  expect(done || player.faulted, "memory has run out by itself");
  return done;
}

// The same for a native with a handle as its result; null when a failed allocation left nothing to give.
template <class Call>
void* attemptNew(Player& player, const Call& call) {
  void* result = nullptr;
  if (!attempt(player, [&] { result = call(); })) return nullptr;
  expect(result != nullptr || player.faulted, "no result");
  return result;
}

// What a player can do; the name of the native that it is about tells that each is in some mix.
struct Operation {
  const char* native;
  std::function<void(Player&)> run;
};

// Shared collections, what can be done with them, and what must hold in the end.
class Mix {
 public:
  virtual ~Mix() = default;
  virtual std::vector<Operation> operations() = 0;
  // After the last operation, on a single thread.
  virtual void finish() = 0;
};

// A slot that is a root of the process as long as it exists, for what all players share.
class Shared {
 public:
  Shared() { vorn_root_add(&slot_); }
  explicit Shared(const char* typeName) : Shared() { slot_ = vorn_object_new(typeName); }
  ~Shared() { vorn_root_remove(&slot_); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  Shared& operator=(void* handle) {
    slot_ = handle;
    return *this;
  }
  operator void*() const { return slot_; }  // NOLINT(google-explicit-constructor): it is passed to natives throughout

 private:
  void* slot_ = nullptr;
};

struct Limits {
  std::uint64_t operations = 2'000'000;
  double seconds = 3600;
  std::uint64_t seed = 1;
};

// So many seconds from when it is made.
class Deadline {
 public:
  explicit Deadline(double seconds)
      : end_(std::chrono::steady_clock::now() +
             std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds))) {}
  [[nodiscard]] bool passed() const { return std::chrono::steady_clock::now() >= end_; }

 private:
  std::chrono::steady_clock::time_point end_;
};

struct Figures {
  std::uint64_t operations = 0;
  std::uint64_t faults = 0;
  std::uint64_t collections = 0;
  std::uint64_t divergences = 0;
};

// Lets the players loose while another thread collects again and again. Ends the process when none of them gets on for a
// minute.
Figures play(Mix& mix, const Limits& limits);

// How often something was not as it must be since the program began.
std::uint64_t divergences();

// Ends the process when none of the steps that it is told of comes for a minute.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // What a thread does now; the text must last.
  void step(int thread, const char* what);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A program's topics: "ArrayListSync" and so on.
struct Topic {
  const char* name;
  std::function<Figures(const Limits&)> run;
  std::function<std::vector<std::string>()> natives;
};
std::vector<Topic> topics();

// A topic that is one mix.
template <class MixOfTopic, class... Arguments>
Topic mixTopic(const char* name, Arguments... arguments) {
  return {name,
          [=](const Limits& limits) {
            MixOfTopic mix(arguments...);
            return play(mix, limits);
          },
          [=] {
            MixOfTopic mix(arguments...);
            std::vector<std::string> names;
            for (const Operation& operation : mix.operations()) names.emplace_back(operation.native);
            return names;
          }};
}

Topic listTopic(const char* className);
Topic arrayTopic();
Topic mapTopic(const char* className);
Topic setTopic();
Topic immutableTopic();
Topic tupleTopic();
Topic pairsTopic();
Topic runtimeTopic();

}  // namespace vorn::tests::stress
