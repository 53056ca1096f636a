#include "console/interrupt.h"

#include <signal.h>

#include "console/problems.h"

namespace vorn::console {

namespace {

volatile sig_atomic_t mark = 0;

void setMark(int) { mark = 1; }

}  // namespace

void catchInterrupts() {
  // Without SA_RESTART, so that waiting for input ends as well.
  struct sigaction action = {};
  action.sa_handler = setMark;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
}

bool interrupted() { return mark != 0; }
void clearInterrupt() { mark = 0; }

void throwIfInterrupted() {
  if (interrupted()) throw Refusal("interrupted");
}

}  // namespace vorn::console
