// Where lines go: to a terminal, a file, or a script's expectations.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::console {

enum class Style : std::uint8_t { Plain, Result, Error, Faint, Heading };

class Output {
 public:
  Output() = default;
  virtual ~Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // A text, which may have several lines, and a line end behind it.
  virtual void line(std::string_view text, Style style) = 0;

  void line(std::string_view text) { line(text, Style::Plain); }
};

// Writes to a stream, with the colours of ANSI terminals or without.
class StreamOutput : public Output {
 public:
  StreamOutput(std::FILE* stream, bool coloured) : stream_(stream), coloured_(coloured) {}
  void line(std::string_view text, Style style) override;
  using Output::line;

  [[nodiscard]] bool coloured() const { return coloured_; }

 private:
  std::FILE* stream_;
  bool coloured_;
};

// Keeps the lines.
class CapturedOutput : public Output {
 public:
  struct Line {
    std::string text;
    Style style;
  };
  void line(std::string_view text, Style style) override;
  using Output::line;

  [[nodiscard]] const std::vector<Line>& lines() const { return lines_; }

 private:
  std::vector<Line> lines_;
};

// What begins and ends a style on an ANSI terminal.
std::string_view styleStart(Style style);
constexpr std::string_view kStyleEnd = "\033[0m";

}  // namespace vorn::console
