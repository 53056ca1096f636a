#include "console/output.h"

namespace vorn::console {

std::string_view styleStart(Style style) {
  switch (style) {
    case Style::Result:
      return "\033[36m";
    case Style::Error:
      return "\033[31m";
    case Style::Faint:
      return "\033[2m";
    case Style::Heading:
      return "\033[1m";
    case Style::Plain:
      break;
  }
  return {};
}

void StreamOutput::line(std::string_view text, Style style) {
  const auto write = [&](std::string_view part) {
    if (!part.empty()) std::fwrite(part.data(), 1, part.size(), stream_);
  };
  const std::string_view start = coloured_ ? styleStart(style) : std::string_view();
  write(start);
  write(text);
  if (!start.empty()) write(kStyleEnd);
  std::fputc('\n', stream_);
}

void CapturedOutput::line(std::string_view text, Style style) {
  while (true) {
    const std::size_t end = text.find('\n');
    lines_.push_back({std::string(text.substr(0, end)), style});
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace vorn::console
