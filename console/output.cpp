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
  const std::string_view start = coloured_ ? styleStart(style) : std::string_view();
  std::fwrite(start.data(), 1, start.size(), stream_);
  std::fwrite(text.data(), 1, text.size(), stream_);
  if (!start.empty()) std::fwrite(kStyleEnd.data(), 1, kStyleEnd.size(), stream_);
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
