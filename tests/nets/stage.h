// One call of a native: what it is given, what comes of it, and what must hold before and after.
#pragma once

#include <string>
#include <vector>

#include "tests/nets/samples.h"

namespace vorn::tests::nets {

using Texts = std::vector<std::string>;

// ---- Readable collections -------------------------------------------------------------------------------------------

// The class of a collection; null for any other handle.
const CollectionClass* classOf(void* handle);

// A value, or a collection with its elements and storage, without any address. Runs no user code.
std::string describeWhole(void* handle, int depth = 2);

// The same in which a collection without a lock looks like its twin with one.
std::string withoutLocks(std::string description);

// Everything that a caller can tell apart in a collection, addresses included, to be compared with what it was; "" for
// any other handle.
std::string stateOf(void* handle);

// ---- A call ---------------------------------------------------------------------------------------------------------

struct Ending {
  std::string outcome;  // "" when it threw
  Texts errors;
  std::string threw;  // "" when it returned, "bad_alloc", "length_error", "system_error", or what an exception says

  bool operator==(const Ending&) const = default;
};
std::string textOf(const Ending& ending);

// A new receiver and arguments for it.
class Stage {
 public:
  Stage(const Native& native, const Subject& subject, const Choices& choices);

  // With null in place of the receiver.
  void leaveOutReceiver();

  // Calls the native, and expects that the roots are those of before, that the records of all that was passed and given
  // are whole and unlocked, and that what is not the receiver is as it was.
  Ending run();

  // The same while this thread holds the lock of one of the collections, so that locking it fails.
  Ending runWhileHeld(void* collection);

  // Calls the native once more with the same arguments, for a hook that runs meanwhile.
  void callAgain() { native_.call(arguments_); }

  [[nodiscard]] const Handle& receiver() const { return receiver_; }
  // The argument that is another collection; null where there is none.
  [[nodiscard]] void* other() const;
  [[nodiscard]] const CollectionClass& type() const { return *subject_.type; }

  // What the receiver was before it was used, and is.
  [[nodiscard]] const std::string& stateBefore() const { return stateBefore_; }
  [[nodiscard]] const std::string& elementsBefore() const { return elementsBefore_; }
  [[nodiscard]] std::string state() const { return stateOf(receiver_); }
  [[nodiscard]] std::string elements() const { return describeElements(); }

 private:
  [[nodiscard]] std::string describeElements() const;
  void expectWhole(void* handle) const;

  const Native& native_;
  Subject subject_;
  Handle receiver_;
  std::vector<Argument> arguments_;
  std::vector<std::string> argumentsBefore_;
  std::string stateBefore_;
  std::string elementsBefore_;
  void* held_ = nullptr;
};

// ---- Tests by native ------------------------------------------------------------------------------------------------

// The natives that a net is about, and those that it leaves out, for instantiation.
std::vector<const Native*> nativesWhere(bool (*applies)(const Native&), bool result);

class NativeTest : public RuntimeTest, public ::testing::WithParamInterface<const Native*> {
 protected:
  static const Native& native() { return *GetParam(); }

  // What the catalogue says a native does is seen to happen for some arguments; what it says does not happen, for none.
  static void expectSeen(bool seen, bool promised, const char* what) {
    if (seen || inFull()) {
      EXPECT_EQ(seen, promised) << "whether it " << what << " for any arguments";
    }
  }
};

// A net is two suites: one over the natives that it applies to, and one that checks the reason why it leaves out others.
// Together they must have a test for every native (exports_test.cpp).
#define INSTANTIATE_NET(suite, applies)                                                                           \
  INSTANTIATE_TEST_SUITE_P(Natives, suite, ::testing::ValuesIn(::vorn::tests::nets::nativesWhere(applies, true)), \
                           [](const auto& param) { return std::string(param.param->name); });                     \
  INSTANTIATE_TEST_SUITE_P(Natives, suite##Excuses,                                                               \
                           ::testing::ValuesIn(::vorn::tests::nets::nativesWhere(applies, false)),                \
                           [](const auto& param) { return std::string(param.param->name); });                     \
  GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(suite##Excuses)

}  // namespace vorn::tests::nets
