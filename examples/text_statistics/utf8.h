// UTF-8, as far as counting, decoding and printing need it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace text_statistics {

// Bytes in the well-formed sequence at the start of `text`, which is not empty; 0 when there is none (a stray
// continuation byte, a truncated or overlong sequence, a surrogate, a value above U+10FFFF).
std::size_t utf8SequenceLength(std::string_view text);

// The code point that a well-formed sequence stands for.
std::uint32_t utf8Decoded(std::string_view sequence);

// Number of characters (code points). A byte outside every well-formed sequence counts as one character.
long long countCharacters(std::string_view text);

// The text with U+FFFD in place of every byte outside a well-formed sequence, so that output is always UTF-8.
std::string printable(std::string_view text);

}  // namespace text_statistics
