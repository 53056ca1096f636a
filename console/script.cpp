#include "console/script.h"

#include <algorithm>
#include <utility>

#include "console/scanner.h"
#include "console/text.h"

namespace vorn::console {

namespace {

constexpr std::string_view kExpect = "# expect: ";
constexpr std::string_view kExpectNothing = "# expect:";
constexpr std::string_view kExpectError = "# expect error: ";

class ScriptParser {
 public:
  explicit ScriptParser(std::string_view text) : text_(text) {}

  std::vector<ScriptStatement> run() {
    while (!text_.empty()) {
      const std::size_t end = std::min(text_.find('\n'), text_.size());
      std::string_view line = text_.substr(0, end);
      if (line.ends_with('\r')) line.remove_suffix(1);
      text_.remove_prefix(std::min(end + 1, text_.size()));
      ++number_;
      add(line);
    }
    finish();
    return std::move(statements_);
  }

 private:
  void add(std::string_view line) {
    const std::size_t comment = commentStart(line);
    const std::string_view code = line.substr(0, comment);
    const std::string_view remark = comment < line.size() ? line.substr(comment) : std::string_view();
    if (trimmed(code).empty() && !brackets_.open()) return addRemark(remark);
    if (!brackets_.open()) begin();
    statements_.back().source += code;
    const bool command = trimmed(statements_.back().source).starts_with(':');
    if (!command) brackets_.add(code);
    if (brackets_.open()) {
      statements_.back().source += '\n';
    } else {
      statements_.back().source = trimmedRight(statements_.back().source);
    }
    expectation(remark);
  }

  static std::string trimmedRight(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of(" \t\r\n") + 1));
  }

  void begin() {
    ScriptStatement statement;
    statement.line = number_;
    statement.comment = std::exchange(comment_, {});
    statements_.push_back(std::move(statement));
    brackets_ = {};
  }

  void addRemark(std::string_view remark) {
    if (expectation(remark)) return;
    if (remark.empty()) {
      // A paragraph of comment above nothing, such as the head of the file, stays as a paragraph.
      if (!comment_.empty()) comment_ += '\n';
      return;
    }
    remark.remove_prefix(std::min<std::size_t>(remark.starts_with("# ") ? 2 : 1, remark.size()));
    comment_ += remark;
    comment_ += '\n';
  }

  bool expectation(std::string_view remark) {
    if (statements_.empty()) return false;
    ScriptStatement& statement = statements_.back();
    if (remark.starts_with(kExpectError)) {
      statement.expectsError = true;
      statement.expected.push_back(trimmedRight(remark.substr(kExpectError.size())));
    } else if (remark.starts_with(kExpect)) {
      statement.expected.push_back(trimmedRight(remark.substr(kExpect.size())));
    } else if (remark != kExpectNothing) {
      return false;
    }
    statement.hasExpectation = true;
    return true;
  }

  void finish() {
    if (!statements_.empty()) statements_.back().source = trimmedRight(statements_.back().source);
  }

  std::string_view text_;
  std::size_t number_ = 0;
  BracketCounter brackets_;
  std::string comment_;
  std::vector<ScriptStatement> statements_;
};

}  // namespace

std::vector<ScriptStatement> parseScript(std::string_view text) { return ScriptParser(text).run(); }

bool matchesPattern(std::string_view text, std::string_view pattern) {
  // The usual way: behind the last asterisk, take one character more whenever the rest does not match.
  std::size_t at = 0;
  std::size_t in = 0;
  std::size_t star = std::string_view::npos;
  std::size_t resume = 0;
  while (at < text.size() || in < pattern.size()) {
    const bool escaped = in + 1 < pattern.size() && pattern[in] == '\\' && pattern[in + 1] == '*';
    if (in < pattern.size() && pattern[in] == '*') {
      star = ++in;
      resume = at;
    } else if (at < text.size() && in < pattern.size() && text[at] == pattern[in + (escaped ? 1 : 0)]) {
      ++at;
      in += escaped ? 2 : 1;
    } else if (star != std::string_view::npos && resume < text.size()) {
      in = star;
      at = ++resume;
    } else {
      return false;
    }
  }
  return true;
}

std::string asPattern(std::string_view text) {
  std::string pattern;
  for (const char c : text) {
    if (c == '*') pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace vorn::console
