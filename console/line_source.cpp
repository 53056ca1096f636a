#include "console/line_source.h"

#include <cstdlib>

namespace vorn::console {

LineRead PlainLines::read(std::string_view, std::string& line) {
  char* text = nullptr;
  std::size_t room = 0;
  const ssize_t length = ::getline(&text, &room, stream_);
  if (length >= 0) line.assign(text, static_cast<std::size_t>(length));
  std::free(text);
  if (length < 0) return LineRead::End;
  if (line.ends_with('\n')) line.pop_back();
  if (line.ends_with('\r')) line.pop_back();
  return LineRead::Line;
}

}  // namespace vorn::console
