// The console apart from where its input comes from: runs statements and commands, shows what they give, and keeps what
// a session has done.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/output.h"
#include "console/session.h"
#include "console/tour.h"
#include "console/watch.h"

namespace vorn::console {

// A statement that changed or showed something, for saving the session as a script.
struct Accepted {
  std::string source;
  std::vector<std::string> shown;
  bool raised = false;
};

class Console {
 public:
  explicit Console(Limits limits = {});

  // Runs one statement or command. Nothing that it does ends the console; a failure is shown as an error line, and the
  // result is false.
  bool run(std::string_view source, Output& output);

  // Runs a text as a script whose expectations are not looked at, and shows its lines as if they were typed.
  void runShown(std::string_view script, Output& output);

  Session& session() { return session_; }
  [[nodiscard]] const Session& session() const { return session_; }
  Watches& watches() { return watches_; }
  [[nodiscard]] const std::vector<Accepted>& accepted() const { return accepted_; }

  // How many statements have failed, those of loaded scripts included.
  [[nodiscard]] std::size_t failures() const { return failures_; }

  // Whether :quit was given, and how: the shell looks after each statement.
  [[nodiscard]] bool ended() const { return ended_; }
  void end() { ended_ = true; }

  // The guided tour, when one has begun; a shell offers its steps one by one.
  std::optional<Tour>& tour() { return tour_; }
  // The width of lines that drawings may take.
  void setWidth(std::size_t width) { width_ = width; }
  [[nodiscard]] std::size_t width() const { return width_; }

 private:
  void runStatement(std::string_view source, Output& output);
  void showWatches(Output& output);

  Session session_;
  Watches watches_;
  std::vector<Accepted> accepted_;
  std::optional<Tour> tour_;
  std::size_t failures_ = 0;
  bool ended_ = false;
  std::size_t width_ = 80;
  int loadDepth_ = 0;
};

// The line of a syntax error and a caret below its column.
std::string markedLine(std::string_view source, std::size_t offset);

}  // namespace vorn::console
