// pending_errors.h: raising and asking.
#include "collections/core/port/pending_errors.h"
#include "conformance/check.h"

namespace vorn::conformance {

Checks errorChecks() {
  return {
      {"Vorn_raise", "records an error with its class and message and returns",
       [] {
         Vorn_raise("ValueException", "first");
         Vorn_raise("TypeError", "second: two");
         expect("the pending errors", adapter().takeErrors(),
                std::vector<std::string>{"ValueException: first", "TypeError: second: two"});
       }},
      {"Vorn_raise", "copies both texts",
       [] {
         std::string name = "ValueException";
         std::string message = "a message that is longer than what small strings hold in themselves";
         const std::vector<std::string> expected = {name + ": " + message};
         Vorn_raise(name.c_str(), message.c_str());
         name.assign(name.size(), 'x');
         message.assign(message.size(), 'x');
         expect("the pending errors", adapter().takeErrors(), expected);
       }},
      {"Vorn_raise", "records the error for its own thread alone",
       [] {
         Vorn_raise("ValueException", "of this thread");
         int pendingThere = 1;
         std::vector<std::string> errorsThere;
         adapter().startThread([&] {
           pendingThere = Vorn_hasPendingError();
           Vorn_raise("TypeError", "of that thread");
           errorsThere = adapter().takeErrors();
         })();
         expect("whether another thread has an error", pendingThere, 0);
         expect("the errors of another thread", errorsThere, std::vector<std::string>{"TypeError: of that thread"});
         expect("the errors of this thread", adapter().takeErrors(),
                std::vector<std::string>{"ValueException: of this thread"});
       },
       Needs::Threads},
      {"Vorn_hasPendingError", "is 0 without an error, and not 0 from the raise until the error is handled",
       [] {
         expect("before an error", Vorn_hasPendingError(), 0);
         Vorn_raise("ValueException", "an error");
         expectTrue("after an error", Vorn_hasPendingError() != 0);
         expectTrue("when asked again", Vorn_hasPendingError() != 0);
         adapter().takeErrors();
         expect("after it was handled", Vorn_hasPendingError(), 0);
       }},
      {"Vorn_raisedErrorCount", "goes up with every error, also behind one that is pending, and never down",
       [] {
         const unsigned long long before = Vorn_raisedErrorCount();
         const auto raised = [&] { return static_cast<long long>(Vorn_raisedErrorCount() - before); };
         Vorn_raise("ValueException", "first");
         expect("after one error", raised(), 1LL);
         Vorn_raise("ValueException", "second");
         expect("after another", raised(), 2LL);
         adapter().takeErrors();
         expect("after they were handled", raised(), 2LL);
       }},
      {"Vorn_threadsWithPendingErrors", "is not 0 while any thread has a pending error",
       [] {
         Vorn_raise("ValueException", "an error");
         expectTrue("after an error it is not 0", mayHavePendingError());
         Vorn_raise("ValueException", "another");
         expectTrue("after another it is not 0", mayHavePendingError());
         adapter().takeErrors();
         Vorn_raise("ValueException", "an error");
         expectTrue("after one that was handled and one that was not, it is not 0", mayHavePendingError());
         adapter().takeErrors();
       }},
  };
}

}  // namespace vorn::conformance
