#include "tests/stress/mix.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <latch>
#include <mutex>
#include <thread>

namespace vorn::tests::stress {

namespace {

std::atomic<std::uint64_t> divergenceCount{0};
constexpr std::uint64_t kPrinted = 20;

}  // namespace

std::uint64_t Random::next() {
  state_ += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

void diverge(const std::string& what) {
  if (divergenceCount.fetch_add(1) < kPrinted) std::fprintf(stderr, "divergence: %s\n", what.c_str());
}

void expect(bool holds, const char* what) {
  if (!holds) diverge(what);
}

std::uint64_t divergences() { return divergenceCount.load(); }

bool forgive(const char* errorClass) {
  const std::size_t count = vorn_error_count();
  for (std::size_t i = 0; i < count; ++i) {
    if (std::strcmp(vorn_error_class(i), errorClass) != 0) {
      diverge(std::string(vorn_error_class(i)) + ": " + vorn_error_message(i));
    }
  }
  if (count != 0) vorn_errors_clear();
  return count != 0;
}

// ---- Progress -------------------------------------------------------------------------------------------------------

struct Progress::State {
  struct Thread {
    std::atomic<std::uint64_t> steps{0};
    std::atomic<const char*> now{"nothing"};
  };
  Thread threads[kPlayers];
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  std::thread watcher;

  std::uint64_t steps() const {
    std::uint64_t all = 0;
    for (const Thread& thread : threads) all += thread.steps.load(std::memory_order_relaxed);
    return all;
  }

  void watch() {
    std::unique_lock lock(mutex);
    std::uint64_t before = steps();
    while (!changed.wait_for(lock, std::chrono::minutes(1), [this] { return done; })) {
      const std::uint64_t now = steps();
      if (now == before) {
        std::fputs("divergence: the threads wait for each other; they are in\n", stderr);
        for (const Thread& thread : threads) std::fprintf(stderr, "  %s\n", thread.now.load());
        std::abort();
      }
      before = now;
    }
  }
};

Progress::Progress() : state_(std::make_unique<State>()) {
  state_->watcher = std::thread([this] { state_->watch(); });
}

Progress::~Progress() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->done = true;
  }
  state_->changed.notify_one();
  state_->watcher.join();
}

void Progress::step(int thread, const char* what) {
  State::Thread& its = state_->threads[thread];
  its.now.store(what, std::memory_order_relaxed);
  its.steps.fetch_add(1, std::memory_order_relaxed);
}

// ---- Playing --------------------------------------------------------------------------------------------------------

namespace {

std::uint64_t collectionsSoFar() {
  vorn_heap_statistics statistics;
  vorn_heap_get_statistics(&statistics);
  return statistics.collections;
}

// Collects again and again while it exists.
class Collector {
 public:
  Collector() : thread_([this] { collect(); }) {}
  ~Collector() {
    done_ = true;
    thread_.join();
  }
  Collector(const Collector&) = delete;
  Collector& operator=(const Collector&) = delete;

 private:
  void collect() {
    vorn_thread_attach();
    while (!done_) {
      vorn_heap_collect();
      std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
  }

  std::atomic<bool> done_{false};
  std::thread thread_;  // last, so that it starts when the rest exists
};

// One player's share, until all have done enough together.
void playAlone(Player& player, const std::vector<Operation>& operations, std::vector<std::atomic<std::uint64_t>>& runs,
               std::uint64_t share, Deadline end, Progress& progress) {
  while (player.operations < share && (player.operations % 64 != 0 || !end.passed())) {
    const auto chosen = static_cast<std::size_t>(player.random.below(static_cast<int>(operations.size())));
    const Operation& operation = operations[chosen];
    progress.step(player.number, operation.native);
    try {
      operation.run(player);
    } catch (const std::exception& thrown) {
      diverge(std::string(operation.native) + " has thrown: " + thrown.what());
    }
    if (vorn_error_count() != 0) {
      diverge(std::string(operation.native) + " has raised " + vorn_error_class(0) + ": " + vorn_error_message(0));
      vorn_errors_clear();
    }
    runs[chosen].fetch_add(1, std::memory_order_relaxed);
    ++player.operations;
  }
}

}  // namespace

Figures play(Mix& mix, const Limits& limits) {
  const std::vector<Operation> operations = mix.operations();
  std::vector<std::atomic<std::uint64_t>> runs(operations.size());
  const std::uint64_t collectionsBefore = collectionsSoFar();
  const std::uint64_t divergencesBefore = divergences();
  const Deadline end(limits.seconds);
  Figures figures;
  {
    Progress progress;
    const Collector collector;
    std::latch start(kPlayers);
    std::vector<Player> players;
    players.reserve(kPlayers);
    for (int number = 0; number < kPlayers; ++number) {
      players.emplace_back(number, limits.seed * kPlayers + static_cast<std::uint64_t>(number));
    }
    std::vector<std::thread> threads;
    for (Player& player : players) {
      threads.emplace_back([&, share = limits.operations / kPlayers] {
        vorn_thread_attach();
        start.arrive_and_wait();
        playAlone(player, operations, runs, share, end, progress);
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Player& player : players) {
      figures.operations += player.operations;
      figures.faults += player.faults;
    }
  }
  mix.finish();
  if (figures.operations > 100 * operations.size()) {
    for (std::size_t i = 0; i < operations.size(); ++i) {
      if (runs[i].load() == 0) diverge(std::string(operations[i].native) + " was never called");
    }
  }
  figures.collections = collectionsSoFar() - collectionsBefore;
  figures.divergences = divergences() - divergencesBefore;
  return figures;
}

}  // namespace vorn::tests::stress
