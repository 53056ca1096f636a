// What can go wrong with what a person types. All are caught where a statement is run, so that the shell goes on.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace vorn::console {

// Text that is no statement of the console's language.
class SyntaxError : public std::runtime_error {
 public:
  SyntaxError(std::size_t offset, const std::string& message) : std::runtime_error(message), offset_(offset) {}

  // Where in the statement's text, in bytes.
  [[nodiscard]] std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

// A statement that is well formed but cannot be carried out: an unknown name, a wrong argument, a file that is missing.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the language raised: the pending errors, as "Class: message", of which the oldest is first.
class RaisedError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vorn::console
