// The tokens of the console's language.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::console {

enum class TokenKind : std::uint8_t {
  Integer,    // text: the digits; suffix: "", "L", "u" or "uL"
  Floating,   // text: the number; suffix: "" or "f"
  Character,  // text: the character's own bytes, escapes resolved
  Text,       // text: the text, escapes resolved
  Name,
  Mark,  // a bracket, a separator or an operator
  LineEnd,
  End,
};

struct Token {
  TokenKind kind = TokenKind::End;
  std::size_t offset = 0;
  std::string text;
  std::string suffix;

  [[nodiscard]] bool isMark(std::string_view mark) const { return kind == TokenKind::Mark && text == mark; }
  [[nodiscard]] bool isName(std::string_view name) const { return kind == TokenKind::Name && text == name; }
};

// Every token up to the end, which is the last. A comment runs from # to the end of its line. Line ends inside brackets
// are left out. Throws SyntaxError for bytes outside UTF-8, an unclosed quote, an unknown escape and the like.
std::vector<Token> scan(std::string_view source);

// Where the comment of a line begins; its end when it has none. Quotes are minded, also unclosed ones.
std::size_t commentStart(std::string_view line);

// Follows the brackets of a statement that comes line by line, to tell when it is whole.
class BracketCounter {
 public:
  // The next line of the statement.
  void add(std::string_view line);
  // Whether a bracket is open. A line that cannot be scanned closes everything: reading on would not mend it.
  [[nodiscard]] bool open() const { return depth_ > 0; }

 private:
  long depth_ = 0;
};

// What a token is called in messages: "')'", "the end of the line", "a number".
std::string describe(const Token& token);

}  // namespace vorn::console
