// The guided tour: a script that explains itself, offered step by step.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "console/script.h"

namespace vorn::console {

// The text of tour.vorn, which is built in.
std::string_view tourScript();

class Tour {
 public:
  Tour();

  [[nodiscard]] bool done() const { return next_ == steps_.size(); }
  // What to read before the next step, and the step.
  [[nodiscard]] const std::string& explanation() const { return steps_[next_].comment; }
  [[nodiscard]] const std::string& source() const { return steps_[next_].source; }
  void advance() { ++next_; }

  [[nodiscard]] std::size_t number() const { return next_ + 1; }
  [[nodiscard]] std::size_t count() const { return steps_.size(); }

 private:
  std::vector<ScriptStatement> steps_;
  std::size_t next_ = 0;
};

}  // namespace vorn::console
