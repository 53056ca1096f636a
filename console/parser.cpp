#include "console/parser.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "console/problems.h"
#include "console/scanner.h"
#include "console/text.h"

namespace vorn::console {

namespace {

class Parser {
 public:
  explicit Parser(std::string_view source) : tokens_(scan(source)) {}

  Statement statement() {
    skipLineEnds();
    Statement result;
    if (peek().kind == TokenKind::End) return result;
    if (peek().isName("class") && peek(1).kind == TokenKind::Name) {
      result.kind = StatementKind::Class;
      result.declaration = classDeclaration();
    } else {
      result.value = expression();
      result.kind = StatementKind::Expression;
      if (peek().isMark("=")) assignment(result);
    }
    end();
    return result;
  }

  ExpressionPointer whole() {
    skipLineEnds();
    ExpressionPointer result = expression();
    end();
    return result;
  }

 private:
  [[nodiscard]] const Token& peek(std::size_t ahead = 0) const {
    return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
  }
  const Token& next() { return tokens_[at_ + 1 < tokens_.size() ? at_++ : at_]; }

  bool take(std::string_view mark) {
    if (!peek().isMark(mark)) return false;
    ++at_;
    return true;
  }

  void skipLineEnds() {
    while (peek().kind == TokenKind::LineEnd) ++at_;
  }

  void end() {
    skipLineEnds();
    if (peek().kind != TokenKind::End) fail("an operator or the end of the line");
  }

  [[noreturn]] void fail(const std::string& expected) const {
    throw SyntaxError(peek().offset, "found " + describe(peek()) + ", expected " + expected);
  }

  // Takes the bracket that closes the one at `opened`.
  void close(std::string_view mark, const Token& opened, const char* otherwise) {
    if (take(mark)) return;
    if (peek().kind == TokenKind::End) {
      throw SyntaxError(opened.offset,
                        "this '" + opened.text + "' is never closed; expected '" + std::string(mark) + "'");
    }
    fail(std::string(otherwise) + " or '" + std::string(mark) + "'");
  }

  static ExpressionPointer node(ExpressionKind kind, std::size_t offset, std::string text = {}) {
    auto result = std::make_unique<Expression>();
    result->kind = kind;
    result->offset = offset;
    result->text = std::move(text);
    return result;
  }

  // Adds a part, which may be null, and keeps the depth.
  static void adopt(Expression& parent, ExpressionPointer part) {
    if (part != nullptr) parent.depth = std::max(parent.depth, part->depth + 1);
    if (parent.depth > kDeepestExpression) tooDeep(parent.offset);
    parent.parts.push_back(std::move(part));
  }

  [[noreturn]] static void tooDeep(std::size_t offset) {
    throw SyntaxError(offset, "nested more than " + std::to_string(kDeepestExpression) +
                                  " deep; expected a smaller expression, with a variable for its inner part");
  }

  // ---- Statements ----------------------------------------------------------------------------------------------

  void assignment(Statement& result) {
    const ExpressionKind kind = result.value->kind;
    if (kind == ExpressionKind::Name) {
      result.kind = StatementKind::Assignment;
      result.name = result.value->text;
    } else if (kind == ExpressionKind::Index || kind == ExpressionKind::Slice || kind == ExpressionKind::Field) {
      result.kind = StatementKind::Store;
      result.target = std::move(result.value);
    } else {
      throw SyntaxError(peek().offset,
                        "nothing can be stored there; expected a name, x[i], x[i:j] or x.field before '='");
    }
    next();
    result.value = expression();
  }

  std::string name(const char* expected) {
    if (peek().kind != TokenKind::Name) fail(expected);
    return next().text;
  }

  ClassDeclaration classDeclaration() {
    next();
    ClassDeclaration result;
    result.name = name("the name of the class");
    const Token opened = peek();
    if (take("(")) {
      while (!peek().isMark(")")) {
        result.fields.push_back(name("the name of a field"));
        if (!take(",")) break;
      }
      close(")", opened, "','");
    }
    if (take(":")) result.base = name("the name of the class that it is derived from");
    while (peek().kind == TokenKind::Name) hook(result.hooks);
    return result;
  }

  // One of "equals fields", "order amount", "hash constant", "text \"{x}\"".
  void hook(HookForms& hooks) {
    const std::array<std::pair<std::string_view, std::string*>, 4> places = {
        {{"equals", &hooks.equals}, {"order", &hooks.order}, {"hash", &hooks.hash}, {"text", &hooks.text}}};
    for (const auto& [word, form] : places) {
      if (!peek().isName(word)) continue;
      if (!form->empty()) throw SyntaxError(peek().offset, "'" + std::string(word) + "' is given twice");
      next();
      if (peek().kind == TokenKind::Text && word == "text") {
        *form = '"' + next().text;
      } else {
        *form = name("how: a field's name, or a form that :help classes lists");
      }
      take(",");
      return;
    }
    fail("'equals', 'order', 'hash' or 'text'");
  }

  // ---- Expressions -----------------------------------------------------------------------------------------------

  // Every recursion of the grammar passes here.
  ExpressionPointer expression() {
    if (++nesting_ > kDeepestExpression) tooDeep(peek().offset);
    ExpressionPointer left = sum();
    while (true) {
      ExpressionKind kind;
      if (peek().isMark("==")) {
        kind = ExpressionKind::Equal;
      } else if (peek().isMark("!=")) {
        kind = ExpressionKind::NotEqual;
      } else if (peek().isName("in")) {
        kind = ExpressionKind::In;
      } else if (peek().isName("not") && peek(1).isName("in")) {
        kind = ExpressionKind::NotIn;
        next();
      } else {
        break;
      }
      left = binary(kind, std::move(left), [this] { return sum(); });
    }
    --nesting_;
    return left;
  }

  template <class Operand>
  ExpressionPointer binary(ExpressionKind kind, ExpressionPointer left, Operand operand) {
    ExpressionPointer result = node(kind, next().offset);
    adopt(*result, std::move(left));
    adopt(*result, operand());
    return result;
  }

  ExpressionPointer sum() {
    ExpressionPointer left = product();
    while (peek().isMark("+")) left = binary(ExpressionKind::Add, std::move(left), [this] { return product(); });
    return left;
  }

  ExpressionPointer product() {
    ExpressionPointer left = postfix();
    while (peek().isMark("*")) left = binary(ExpressionKind::Times, std::move(left), [this] { return postfix(); });
    return left;
  }

  ExpressionPointer postfix() {
    ExpressionPointer result = primary();
    while (true) {
      if (peek().isMark(".")) {
        result = member(std::move(result));
      } else if (peek().isMark("[")) {
        result = indexed(std::move(result));
      } else {
        return result;
      }
    }
  }

  ExpressionPointer member(ExpressionPointer receiver) {
    next();
    const std::size_t offset = peek().offset;
    std::string text = name("the name of a method or field");
    const bool method = peek().isMark("(");
    ExpressionPointer result = node(method ? ExpressionKind::Method : ExpressionKind::Field, offset, std::move(text));
    adopt(*result, std::move(receiver));
    if (method) arguments(*result);
    return result;
  }

  void arguments(Expression& call) {
    const Token opened = next();
    elements(call, ")", opened, "','");
  }

  // Expressions with commas between them, up to the closing mark; one more comma at the end is welcome.
  void elements(Expression& parent, std::string_view closing, const Token& opened, const char* otherwise) {
    while (!peek().isMark(closing) && peek().kind != TokenKind::End) {
      adopt(parent, expression());
      if (!take(",")) break;
    }
    close(closing, opened, otherwise);
  }

  ExpressionPointer indexed(ExpressionPointer collection) {
    const Token opened = next();
    ExpressionPointer bounds[3];
    std::size_t colons = 0;
    while (true) {
      if (!peek().isMark(":") && !peek().isMark("]")) bounds[colons] = expression();
      if (colons == 2 || !take(":")) break;
      ++colons;
    }
    if (colons == 0 && bounds[0] == nullptr) fail("an index, or a slice such as 1:3");
    close("]", opened, colons == 2 ? "an operator" : "':'");
    ExpressionPointer result = node(colons == 0 ? ExpressionKind::Index : ExpressionKind::Slice, opened.offset);
    adopt(*result, std::move(collection));
    adopt(*result, std::move(bounds[0]));
    if (colons != 0) {
      adopt(*result, std::move(bounds[1]));
      adopt(*result, std::move(bounds[2]));
    }
    return result;
  }

  ExpressionPointer primary() {
    const Token& token = peek();
    switch (token.kind) {
      case TokenKind::Integer:
      case TokenKind::Floating:
        return number("");
      case TokenKind::Character:
        return node(ExpressionKind::Character, token.offset, next().text);
      case TokenKind::Text:
        return node(ExpressionKind::Text, token.offset, next().text);
      case TokenKind::Name:
        return named();
      case TokenKind::Mark:
        if (token.text == "(") return parenthesised();
        if (token.text == "[") return list();
        if (token.text == "{") return mapOrSet();
        if (token.text == "-") return negative();
        break;
      default:
        break;
    }
    fail("a value");
  }

  ExpressionPointer number(const char* sign) {
    const Token& token = next();
    const bool integer = token.kind == TokenKind::Integer;
    ExpressionPointer result =
        node(integer ? ExpressionKind::Integer : ExpressionKind::Floating, token.offset, sign + token.text);
    if (integer) {
      result->type = token.suffix.empty()  ? "Int"
                     : token.suffix == "L" ? "Long"
                     : token.suffix == "u" ? "UInt"
                                           : "ULong";
    } else {
      result->type = token.suffix.empty() ? "Double" : "Float";
    }
    return result;
  }

  ExpressionPointer negative() {
    next();
    if (peek().kind == TokenKind::Integer || peek().kind == TokenKind::Floating) return number("-");
    if (peek().isName("Infinity")) {
      ExpressionPointer result = node(ExpressionKind::Floating, next().offset, "-Infinity");
      result->type = "Double";
      return result;
    }
    fail("a number");
  }

  ExpressionPointer named() {
    const Token token = next();
    if (token.text == "null") return node(ExpressionKind::Null, token.offset);
    if (token.text == "true" || token.text == "false") return node(ExpressionKind::Boolean, token.offset, token.text);
    if (token.text == "NaN" || token.text == "Infinity") {
      ExpressionPointer result = node(ExpressionKind::Floating, token.offset, token.text);
      result->type = "Double";
      return result;
    }
    std::string type = token.text;
    if (peek().isMark("<")) typeArguments(type);
    if (!peek().isMark("(")) {
      if (type != token.text) fail("'(' behind a type, which makes a new object");
      return node(ExpressionKind::Name, token.offset, token.text);
    }
    ExpressionPointer result = node(ExpressionKind::Call, token.offset, token.text);
    result->type = std::move(type);
    arguments(*result);
    return result;
  }

  // "<String, ArrayList<Int>>", appended without blanks. There is no operator that begins with <, so that this is all
  // it can be.
  void typeArguments(std::string& type) {
    const Token opened = peek();
    std::size_t depth = 0;
    do {
      const Token& token = peek();
      if (token.isMark("<")) {
        if (++depth > kDeepestExpression) tooDeep(token.offset);
      } else if (token.isMark(">")) {
        --depth;
      } else if (token.kind == TokenKind::End || token.kind == TokenKind::LineEnd) {
        throw SyntaxError(opened.offset, "this '<' is never closed; expected '>'");
      } else if (token.kind != TokenKind::Name && !token.isMark(",") && !token.isMark(".")) {
        fail("the name of a type or '>'");
      }
      type += next().text;
    } while (depth > 0);
  }

  ExpressionPointer parenthesised() {
    const Token opened = next();
    ExpressionPointer result = node(ExpressionKind::Tuple, opened.offset);
    bool comma = false;
    while (!peek().isMark(")") && peek().kind != TokenKind::End) {
      adopt(*result, expression());
      if (!take(",")) break;
      comma = true;
    }
    close(")", opened, "','");
    if (result->parts.size() == 1 && !comma) return std::move(result->parts.front());
    return result;
  }

  ExpressionPointer list() {
    const Token opened = next();
    ExpressionPointer result = node(ExpressionKind::List, opened.offset);
    elements(*result, "]", opened, "','");
    return result;
  }

  ExpressionPointer mapOrSet() {
    const Token opened = next();
    ExpressionPointer result = node(ExpressionKind::Map, opened.offset);
    if (peek().isMark("}") || peek().kind == TokenKind::End) {
      close("}", opened, "an element");
      return result;
    }
    adopt(*result, expression());
    if (!peek().isMark(":")) {
      result->kind = ExpressionKind::Set;
      if (take(",")) {
        elements(*result, "}", opened, "','");
      } else {
        close("}", opened, "',' or ':'");
      }
      return result;
    }
    while (true) {
      if (!take(":")) fail("':' between a key and its value");
      adopt(*result, expression());
      if (!take(",") || peek().isMark("}")) break;
      adopt(*result, expression());
    }
    close("}", opened, "','");
    return result;
  }

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::size_t nesting_ = 0;
};

}  // namespace

Statement parseStatement(std::string_view source) {
  const std::string_view text = trimmed(source);
  if (text.starts_with(':')) {
    if (const std::size_t invalid = invalidUtf8At(text); invalid != std::string_view::npos) {
      throw SyntaxError(invalid, "this byte is no part of UTF-8 text");
    }
    const std::size_t nameEnd = std::min(text.find_first_of(" \t\n"), text.size());
    Statement result;
    result.kind = StatementKind::Command;
    result.name = text.substr(1, nameEnd - 1);
    result.text = trimmed(text.substr(nameEnd));
    return result;
  }
  return Parser(source).statement();
}

ExpressionPointer parseExpression(std::string_view source) { return Parser(source).whole(); }

}  // namespace vorn::console
