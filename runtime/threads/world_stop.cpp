#include "runtime/threads/world_stop.h"

#include <errno.h>
#include <linux/futex.h>
#include <sched.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace vorn::runtime {

namespace {

int stopSignal() { return SIGRTMIN + 5; }

// Odd while the world is stopped. A handler waits for the number it found to change, not for a flag to fall: the flag
// could rise again before a slow thread has looked, and that thread would never answer the second signal.
std::atomic<std::uint32_t> epoch{0};
static_assert(sizeof(epoch) == sizeof(std::uint32_t), "the kernel waits on the counter itself");

sem_t acknowledgements;

void waitWhileEpochIs(std::uint32_t value) {
  while (epoch.load(std::memory_order_acquire) == value) {
    syscall(SYS_futex, &epoch, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
  }
}

// The state comes with the signal: a thread that is detaching has already dropped its own pointer to it.
void onStop(int, siginfo_t* info, void*) {
  if (info->si_code != SI_QUEUE || info->si_value.sival_ptr == nullptr) return;
  const int savedErrno = errno;
  auto* const state = static_cast<ThreadState*>(info->si_value.sival_ptr);
  const std::uint32_t stoppedIn = epoch.load(std::memory_order_acquire);
  state->stoppedAt.store(reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)), std::memory_order_release);
  sem_post(&acknowledgements);
  waitWhileEpochIs(stoppedIn);
  errno = savedErrno;
}

// Sends the stop signal. The queue of real-time signals can be full for a moment.
void signalThread(ThreadState& state) {
  sigval value;
  value.sival_ptr = &state;
  int result;
  while ((result = pthread_sigqueue(state.thread, stopSignal(), value)) == EAGAIN) sched_yield();
  if (result != 0) {
    std::fputs("vorn: an attached thread is gone without having been detached\n", stderr);
    std::abort();
  }
}

}  // namespace

bool prepareToStopThreads() {
  struct sigaction action {};
  action.sa_sigaction = onStop;
  action.sa_flags = SA_SIGINFO | SA_RESTART;
  sigfillset(&action.sa_mask);
  return sem_init(&acknowledgements, 0, 0) == 0 && sigaction(stopSignal(), &action, nullptr) == 0;
}

std::uintptr_t stackBaseOfCallingThread() {
  pthread_attr_t attributes;
  void* lowest = nullptr;
  std::size_t bytes = 0;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) std::abort();
  if (pthread_attr_getstack(&attributes, &lowest, &bytes) != 0) std::abort();
  pthread_attr_destroy(&attributes);
  return reinterpret_cast<std::uintptr_t>(lowest) + bytes;
}

StoppedWorld::StoppedWorld(const ThreadState& self) {
  std::size_t others = 0;
  forEachThread([&](const ThreadState& state) { others += &state != &self ? 1 : 0; });
  if (others == 0) return;
  stopped_ = true;
  epoch.fetch_add(1, std::memory_order_acq_rel);
  forEachThread([&](ThreadState& state) {
    if (&state != &self) signalThread(state);
  });
  for (; others != 0; --others) {
    while (sem_wait(&acknowledgements) != 0) {
    }
  }
}

StoppedWorld::~StoppedWorld() {
  if (!stopped_) return;
  epoch.fetch_add(1, std::memory_order_acq_rel);
  syscall(SYS_futex, &epoch, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

}  // namespace vorn::runtime
