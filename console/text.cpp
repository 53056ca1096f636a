#include "console/text.h"

#include <algorithm>
#include <cctype>
#include <cwchar>
#include <vector>

namespace vorn::console {

namespace {

unsigned char byteAt(std::string_view text, std::size_t offset) { return static_cast<unsigned char>(text[offset]); }

// The length of the UTF-8 character that begins at the offset, as the table of well-formed byte sequences of the
// Unicode standard has it; 0 when there is none.
std::size_t characterLength(std::string_view text, std::size_t offset) {
  const unsigned char lead = byteAt(text, offset);
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (text.size() - offset < length) return 0;
  if (byteAt(text, offset + 1) < low || byteAt(text, offset + 1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if ((byteAt(text, offset + i) & 0xC0) != 0x80) return 0;
  }
  return length;
}

std::size_t editDistance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t j = 0; j <= right.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const bool same = std::tolower(byteAt(left, i - 1)) == std::tolower(byteAt(right, j - 1));
      const std::size_t replaced = diagonal + (same ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[right.size()];
}

}  // namespace

std::size_t invalidUtf8At(std::string_view text) {
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t length = characterLength(text, offset);
    if (length == 0) return offset;
    offset += length;
  }
  return std::string_view::npos;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t offset = 0; offset < text.size(); ++count) {
    offset += std::max<std::size_t>(characterLength(text, offset), 1);
  }
  return count;
}

std::size_t columnCount(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const std::string_view character = firstCharacters(text, 1);
    wchar_t wide = 0;
    std::mbstate_t state = {};
    const bool known = std::mbrtowc(&wide, character.data(), character.size(), &state) == character.size();
    const int width = known ? ::wcwidth(wide) : 1;
    columns += width >= 0 ? static_cast<std::size_t>(width) : 1;
    text.remove_prefix(character.size());
  }
  return columns;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  while (count-- != 0 && offset < text.size()) offset += std::max<std::size_t>(characterLength(text, offset), 1);
  return text.substr(0, offset);
}

void appendCharacter(std::string& text, std::uint32_t character) {
  const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  } else {
    add(0xF0 | character >> 18);
    add(0x80 | (character >> 12 & 0x3F));
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

std::string printable(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t length = characterLength(text, offset);
    const unsigned char lead = byteAt(text, offset);
    const bool control = (lead < 0x20 && lead != '\n') || lead == 0x7F ||
                         (lead == 0xC2 && length == 2 && byteAt(text, offset + 1) < 0xA0);
    if (length == 0 || control) {
      shown += kReplacement;
    } else {
      shown += text.substr(offset, length);
    }
    offset += std::max<std::size_t>(length, 1);
  }
  return shown;
}

std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return digits;
}

std::string counted(std::uint64_t number, std::string_view noun) {
  std::string text = grouped(number) + ' ' + std::string(noun);
  if (number != 1) text += 's';
  return text;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::string_view nearest(std::string_view name, std::span<const std::string_view> candidates) {
  // A third of the letters may differ: enough for a slip of the finger, too little for another word. The names that
  // people mistype are short, and the time taken grows with their length.
  constexpr std::size_t kLongestName = 64;
  if (name.size() > kLongestName) return {};
  std::string_view best;
  std::size_t bestDistance = std::max<std::size_t>(name.size() / 3, 1) + 1;
  for (const std::string_view candidate : candidates) {
    const std::size_t distance = editDistance(name, candidate);
    if (distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

std::string suggestion(std::string_view name, std::span<const std::string_view> candidates) {
  const std::string_view near = nearest(name, candidates);
  return near.empty() ? std::string() : "; did you mean " + std::string(near) + "?";
}

}  // namespace vorn::console
