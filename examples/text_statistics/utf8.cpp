#include "utf8.h"

namespace text_statistics {

namespace {

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

std::size_t utf8SequenceLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return 1;
  // 0xC0 and 0xC1 could only start overlong forms, bytes from 0xF5 on only values above U+10FFFF.
  const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(static_cast<unsigned char>(text[i]))) return 0;
  }
  // The second byte tells the remaining overlong forms, the surrogates and the values above the last plane.
  const auto second = static_cast<unsigned char>(text[1]);
  const bool refused = (first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) ||
                       (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90);
  return refused ? 0 : length;
}

std::uint32_t utf8Decoded(std::string_view sequence) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(sequence[i]); };
  if (sequence.size() == 1) return byte(0);
  std::uint32_t scalar = byte(0) & (0x7FU >> sequence.size());
  for (std::size_t i = 1; i < sequence.size(); ++i) scalar = scalar << 6 | (byte(i) & 0x3F);
  return scalar;
}

long long countCharacters(std::string_view text) {
  long long count = 0;
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    text.remove_prefix(length == 0 ? 1 : length);
    ++count;
  }
  return count;
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    result += length == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result;
}

}  // namespace text_statistics
