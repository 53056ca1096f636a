// Pending errors: order, copies, lifetime of the texts, one list per thread.
#include <string>

#include "collections/core/pending_error_watch.h"
#include "runtime/errors/pending_errors.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using ErrorsTest = RuntimeTest;

TEST_F(ErrorsTest, NothingPending_AtFirst) {
  EXPECT_EQ(Vorn_hasPendingError(), 0);
  EXPECT_FALSE(runtime::hasPendingErrors());
  EXPECT_EQ(vorn_error_count(), 0u);
  EXPECT_EQ(vorn_error_class(0), nullptr);
  EXPECT_EQ(vorn_error_message(0), nullptr);
  vorn_errors_clear();
}

TEST_F(ErrorsTest, Raise_ListsErrorsOldestFirst) {
  Vorn_raise("TypeError", "first");
  vorn_raise("IndexException", "second");
  runtime::raiseError("Exception", "third");
  EXPECT_NE(Vorn_hasPendingError(), 0);
  ASSERT_EQ(vorn_error_count(), 3u);
  EXPECT_STREQ(vorn_error_class(0), "TypeError");
  EXPECT_STREQ(vorn_error_message(0), "first");
  EXPECT_STREQ(vorn_error_class(2), "Exception");
  EXPECT_STREQ(vorn_error_message(2), "third");
  EXPECT_EQ(vorn_error_class(3), nullptr);
  EXPECT_EQ(vorn_error_message(SIZE_MAX), nullptr);
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"TypeError: first", "IndexException: second", "Exception: third"}));
  EXPECT_EQ(Vorn_hasPendingError(), 0);
}

TEST_F(ErrorsTest, Truncating_TakesTheNewestBackAndKeepsTheOthers) {
  vorn_raise("A", "first");
  const char* const kept = vorn_error_message(0);
  vorn_raise("B", "second");
  vorn_raise("C", "third");
  vorn_errors_truncate(3);
  EXPECT_EQ(vorn_error_count(), 3U);
  vorn_errors_truncate(1);
  EXPECT_EQ(vorn_error_message(0), kept);
  EXPECT_EQ(takeErrors(), std::vector<std::string>{"A: first"});
  vorn_raise("D", "fourth");
  vorn_errors_truncate(0);
  EXPECT_EQ(vorn_error_count(), 0U);
  EXPECT_EQ(Vorn_hasPendingError(), 0);
  vorn_errors_truncate(0);
}

// A hook that handles what its own calls raise has raised nothing for the search that called it.
TEST_F(ErrorsTest, Truncating_IsNotSeenByAWatch) {
  for (const bool older : {false, true}) {
    if (older) vorn_raise("A", "older");
    const collections::PendingErrorWatch watch;
    vorn_raise("B", "handled");
    EXPECT_TRUE(watch.raised());
    vorn_errors_truncate(older ? 1 : 0);
    EXPECT_FALSE(watch.raised());
    vorn_raise("C", "left");
    EXPECT_TRUE(watch.raised());
    vorn_errors_clear();
  }
}

// Who takes back all errors, older ones too, and then raises has raised something.
TEST_F(ErrorsTest, TruncatingToNothing_DoesNotHideALaterError) {
  vorn_raise("A", "older");
  const collections::PendingErrorWatch watch;
  vorn_errors_truncate(0);
  EXPECT_FALSE(watch.raised());
  vorn_raise("B", "new");
  EXPECT_TRUE(watch.raised());
  vorn_errors_clear();
}

TEST_F(ErrorsTest, RaisedErrors_AreCountedForGood) {
  const unsigned long long before = Vorn_raisedErrorCount();
  Vorn_raise("A", "first");
  Vorn_raise("B", "second");
  vorn_errors_clear();
  EXPECT_EQ(Vorn_raisedErrorCount(), before + 2);
  onAnotherThread([] {
    const unsigned long long own = Vorn_raisedErrorCount();
    Vorn_raise("C", "elsewhere");
    EXPECT_EQ(Vorn_raisedErrorCount(), own + 1);
    vorn_errors_clear();
  });
  EXPECT_EQ(Vorn_raisedErrorCount(), before + 2) << "each thread counts its own";
}

// Else the first error of a thread would look like several to whoever counts.
TEST_F(ErrorsTest, RaisedErrors_OfAThreadThatEnded_CountForNoOther) {
  for (int i = 0; i < 3; ++i) {
    onAnotherThread([] {
      EXPECT_EQ(Vorn_raisedErrorCount(), 0U);
      Vorn_raise("A", "once");
      EXPECT_EQ(Vorn_raisedErrorCount(), 1U);
      vorn_errors_clear();
    });
  }
}

TEST_F(ErrorsTest, AWatch_SeesNewErrorsOnlyAndOnTopOfOlderOnes) {
  for (const bool olderPending : {false, true}) {
    SCOPED_TRACE(olderPending);
    if (olderPending) Vorn_raise("Exception", "older");
    const collections::PendingErrorWatch watch;
    EXPECT_FALSE(watch.raised());
    Vorn_raise("Exception", "new");
    EXPECT_TRUE(watch.raised());
    EXPECT_FALSE(collections::PendingErrorWatch().raised());
    vorn_errors_clear();
    EXPECT_FALSE(watch.raised()) << "it has been handled";
  }
}

TEST_F(ErrorsTest, AWatch_SeesANewErrorThatTakesTheOlderOnesPlace) {
  Vorn_raise("Exception", "older");
  const collections::PendingErrorWatch watch;
  vorn_errors_clear();
  Vorn_raise("Exception", "new");
  EXPECT_TRUE(watch.raised());
  vorn_errors_clear();
}

TEST_F(ErrorsTest, Raise_CopiesBothTexts) {
  std::string className = "ValueException";
  std::string message(1000, 'x');
  Vorn_raise(className.c_str(), message.c_str());
  className.assign(className.size(), '?');
  message.assign(message.size(), '?');
  EXPECT_STREQ(vorn_error_class(0), "ValueException");
  EXPECT_EQ(vorn_error_message(0), std::string(1000, 'x'));
  vorn_errors_clear();
}

TEST_F(ErrorsTest, Texts_StayValidWhileMoreErrorsAreRaised) {
  Vorn_raise("A", "short");
  Vorn_raise("B", std::string(500, 'b').c_str());
  const char* shortText = vorn_error_message(0);
  const char* longText = vorn_error_message(1);
  for (int i = 0; i < 5000; ++i) Vorn_raise("More", "of them");
  EXPECT_EQ(vorn_error_message(0), shortText);
  EXPECT_EQ(vorn_error_message(1), longText);
  EXPECT_STREQ(shortText, "short");
  vorn_errors_clear();
}

TEST_F(ErrorsTest, Raise_TakesNullTextsForEmptyOnes) {
  Vorn_raise(nullptr, nullptr);
  EXPECT_RAISED(": ");
}

TEST_F(ErrorsTest, EachThread_HasItsOwnErrors) {
  Vorn_raise("Exception", "here");
  onAnotherThread([] {
    EXPECT_EQ(Vorn_hasPendingError(), 0);
    EXPECT_EQ(vorn_error_count(), 0u);
    Vorn_raise("Exception", "there");
    Vorn_raise("Exception", "there too");
    EXPECT_EQ(vorn_error_count(), 2u);
  });
  EXPECT_RAISED("Exception: here");
}

// Later threads take over the state of earlier ones, but not their errors.
TEST_F(ErrorsTest, ErrorsOfAThreadThatEnded_AreGone) {
  for (int i = 0; i < 20; ++i) {
    onAnotherThread([] {
      vorn_thread_attach();
      EXPECT_EQ(vorn_error_count(), 0u);
      Vorn_raise("Exception", "left behind");
    });
  }
}

TEST_F(ErrorsTest, Detach_DropsTheErrors) {
  onAnotherThread([] {
    Vorn_raise("Exception", "before");
    vorn_thread_detach();
    EXPECT_EQ(Vorn_hasPendingError(), 0);
    EXPECT_EQ(vorn_error_class(0), nullptr);
    vorn_thread_attach();
    EXPECT_EQ(Vorn_hasPendingError(), 0);
  });
}

}  // namespace
}  // namespace vorn::tests
