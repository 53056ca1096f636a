// Where a shell's lines come from.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace vorn::console {

enum class LineRead : std::uint8_t {
  Line,
  Cancelled,  // the person has dropped the line
  End,
};

class LineSource {
 public:
  LineSource() = default;
  virtual ~LineSource() = default;
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;

  // Reads a line, without its end.
  virtual LineRead read(std::string_view prompt, std::string& line) = 0;
  // How many columns the terminal has.
  [[nodiscard]] virtual std::size_t columns() const { return 80; }
};

// Reads a stream that is no terminal; shows no prompt.
class PlainLines : public LineSource {
 public:
  explicit PlainLines(std::FILE* stream) : stream_(stream) {}
  LineRead read(std::string_view prompt, std::string& line) override;

 private:
  std::FILE* stream_;
};

}  // namespace vorn::console
