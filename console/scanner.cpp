#include "console/scanner.h"

#include <algorithm>
#include <array>
#include <utility>

#include "console/problems.h"
#include "console/text.h"

namespace vorn::console {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isOpening(char c) { return c == '(' || c == '[' || c == '{'; }
bool isClosing(char c) { return c == ')' || c == ']' || c == '}'; }

int hexValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

class Scanner {
 public:
  explicit Scanner(std::string_view source) : source_(source) {}

  std::vector<Token> run() {
    while (at_ < source_.size()) step();
    tokens_.push_back({TokenKind::End, source_.size(), {}, {}});
    return std::move(tokens_);
  }

 private:
  [[nodiscard]] char peek(std::size_t ahead = 0) const {
    return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0';
  }

  void add(TokenKind kind, std::size_t offset, std::string text, std::string suffix = {}) {
    tokens_.push_back({kind, offset, std::move(text), std::move(suffix)});
  }

  void step() {
    const char c = peek();
    if (c == ' ' || c == '\t' || c == '\r') {
      ++at_;
    } else if (c == '\n') {
      if (depth_ == 0) add(TokenKind::LineEnd, at_, "\n");
      ++at_;
    } else if (c == '#') {
      while (at_ < source_.size() && peek() != '\n') ++at_;
    } else if (isDigit(c)) {
      number();
    } else if (isLetter(c)) {
      name();
    } else if (c == '"' || c == '\'') {
      quoted(c);
    } else {
      mark();
    }
  }

  void digits() {
    while (isDigit(peek())) ++at_;
  }

  void number() {
    const std::size_t start = at_;
    bool floating = false;
    digits();
    if (peek() == '.' && isDigit(peek(1))) {
      floating = true;
      ++at_;
      digits();
    }
    if ((peek() == 'e' || peek() == 'E') &&
        (isDigit(peek(1)) || ((peek(1) == '-' || peek(1) == '+') && isDigit(peek(2))))) {
      floating = true;
      at_ += 2;
      digits();
    }
    std::string text(source_.substr(start, at_ - start));
    const std::size_t suffixAt = at_;
    while (isLetter(peek()) || isDigit(peek())) ++at_;
    std::string suffix(source_.substr(suffixAt, at_ - suffixAt));
    if (suffix == "f" || (floating && suffix.empty())) {
      add(TokenKind::Floating, start, std::move(text), std::move(suffix));
    } else if (!floating && (suffix.empty() || suffix == "L" || suffix == "u" || suffix == "uL")) {
      add(TokenKind::Integer, start, std::move(text), std::move(suffix));
    } else {
      throw SyntaxError(suffixAt, "no number ends in '" + suffix + "'; there are 3, 3L, 3u, 3uL, 2.5 and 2.5f");
    }
  }

  void name() {
    const std::size_t start = at_;
    while (isLetter(peek()) || isDigit(peek())) ++at_;
    add(TokenKind::Name, start, std::string(source_.substr(start, at_ - start)));
  }

  void quoted(char quote) {
    const std::size_t start = at_++;
    std::string text;
    while (peek() != quote) {
      if (at_ >= source_.size() || peek() == '\n') {
        throw SyntaxError(start, std::string("this ") + quote + " is never closed; expected " + quote +
                                     " before the end of the line");
      }
      if (peek() == '\\') {
        escape(text);
      } else {
        text += source_[at_++];
      }
    }
    ++at_;
    if (text.find('\0') != std::string::npos) throw SyntaxError(start, "a text cannot hold U+0000");
    if (quote == '"') {
      add(TokenKind::Text, start, std::move(text));
    } else if (characterCount(text) == 1) {
      add(TokenKind::Character, start, std::move(text));
    } else {
      throw SyntaxError(start,
                        "a character is one character between ', such as 'c'; expected a text to stand between \"");
    }
  }

  void escape(std::string& text) {
    const std::size_t start = at_++;
    const char c = peek();
    if (at_ < source_.size()) ++at_;
    switch (c) {
      case 'n':
        text += '\n';
        return;
      case 't':
        text += '\t';
        return;
      case 'r':
        text += '\r';
        return;
      case '\\':
      case '"':
      case '\'':
        text += c;
        return;
      case 'u':
        unicodeEscape(text, start);
        return;
      default:
        throw SyntaxError(start, R"(unknown escape; expected \n, \t, \r, \\, \", \' or \u{1F600})");
    }
  }

  void unicodeEscape(std::string& text, std::size_t start) {
    constexpr std::uint32_t kPastLast = 0x110000;
    std::uint32_t character = 0;
    std::size_t count = 0;
    if (peek() == '{') {
      ++at_;
      for (; hexValue(peek()) >= 0; ++at_, ++count) {
        character = std::min(character * 16 + static_cast<std::uint32_t>(hexValue(peek())), kPastLast);
      }
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (count == 0 || peek() != '}' || character == 0 || character == kPastLast || surrogate) {
      throw SyntaxError(start, "expected the number of a character in hexadecimal, as in \\u{1F600}");
    }
    ++at_;
    appendCharacter(text, character);
  }

  void mark() {
    constexpr std::array<std::string_view, 2> kPairs = {"==", "!="};
    constexpr std::string_view kSingle = "()[]{}<>,:.=+-*;";
    for (const std::string_view pair : kPairs) {
      if (source_.substr(at_, 2) == pair) {
        add(TokenKind::Mark, at_, std::string(pair));
        at_ += 2;
        return;
      }
    }
    const char c = peek();
    if (c == '\0' || kSingle.find(c) == std::string_view::npos) {
      throw SyntaxError(at_, "'" + printable(firstCharacters(source_.substr(at_), 1)) + "' means nothing here");
    }
    if (isOpening(c)) ++depth_;
    if (isClosing(c) && depth_ > 0) --depth_;
    add(TokenKind::Mark, at_, std::string(1, c));
    ++at_;
  }

  std::string_view source_;
  std::size_t at_ = 0;
  long depth_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> scan(std::string_view source) {
  if (const std::size_t invalid = invalidUtf8At(source); invalid != std::string_view::npos) {
    throw SyntaxError(invalid, "this byte is no part of UTF-8 text");
  }
  return Scanner(source).run();
}

std::size_t commentStart(std::string_view line) {
  char quote = '\0';
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote != '\0') {
      if (c == '\\') ++i;
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '#') {
      return i;
    }
  }
  return line.size();
}

void BracketCounter::add(std::string_view line) {
  try {
    for (const Token& token : scan(line)) {
      if (token.kind != TokenKind::Mark) continue;
      if (isOpening(token.text[0])) ++depth_;
      if (isClosing(token.text[0])) --depth_;
    }
  } catch (const SyntaxError&) {
    depth_ = 0;
  }
}

std::string describe(const Token& token) {
  switch (token.kind) {
    case TokenKind::Integer:
    case TokenKind::Floating:
      return "the number " + token.text + token.suffix;
    case TokenKind::Character:
      return "a character";
    case TokenKind::Text:
      return "a text";
    case TokenKind::Name:
      return "'" + std::string(firstCharacters(token.text, 40)) + "'";
    case TokenKind::Mark:
      return "'" + token.text + "'";
    case TokenKind::LineEnd:
    case TokenKind::End:
      break;
  }
  return "the end of the line";
}

}  // namespace vorn::console
