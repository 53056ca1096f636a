// What the rooms of the console ask of texts: whether they are UTF-8, how they are counted, cut and compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorn::console {

// Where the first byte that belongs to no UTF-8 character stands; npos when there is none.
std::size_t invalidUtf8At(std::string_view text);

// The number of characters; a byte outside UTF-8 counts as one.
std::size_t characterCount(std::string_view text);

// The columns that a text takes on a terminal: some characters take two. The locale has to be of UTF-8 for that; in any
// other each takes one.
std::size_t columnCount(std::string_view text);

// The first `count` characters.
std::string_view firstCharacters(std::string_view text, std::size_t count);

// The UTF-8 form of a Unicode scalar value, appended.
void appendCharacter(std::string& text, std::uint32_t character);

// The text with every byte outside UTF-8 and every control character but the line end replaced by U+FFFD, so that it
// can be shown on a terminal.
std::string printable(std::string_view text);

// "1,234,567".
std::string grouped(std::uint64_t number);

// "1 element", "1,000 elements".
std::string counted(std::uint64_t number, std::string_view noun);

std::string_view trimmed(std::string_view text);

// The candidate that is nearest to a mistyped name, by the number of letters to change; empty when none is near.
std::string_view nearest(std::string_view name, std::span<const std::string_view> candidates);

// "; did you mean add?", or nothing when no candidate is near.
std::string suggestion(std::string_view name, std::span<const std::string_view> candidates);

}  // namespace vorn::console
