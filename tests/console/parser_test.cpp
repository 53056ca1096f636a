#include "console/parser.h"

#include <gtest/gtest.h>

#include <string>

#include "console/problems.h"

namespace vorn::console {
namespace {

// The form of a tree: "(Index x 0)".
std::string form(const ExpressionPointer& expression) {
  constexpr const char* kNames[] = {"null", "Boolean", "Integer", "Floating", "Character", "Text",  "List",  "Tuple",
                                    "Set",  "Map",     "Name",    "Call",     "Method",    "Field", "Index", "Slice",
                                    "In",   "NotIn",   "Equal",   "NotEqual", "Add",       "Times"};
  if (expression == nullptr) return "-";
  std::string text = expression->text;
  if (expression->parts.empty() && !text.empty() && expression->kind != ExpressionKind::Call) return text;
  text = std::string("(") + kNames[static_cast<std::size_t>(expression->kind)] + (text.empty() ? "" : " " + text);
  for (const ExpressionPointer& part : expression->parts) text += " " + form(part);
  return text + ")";
}

std::string formOf(std::string_view source) { return form(parseExpression(source)); }

struct Error {
  std::size_t offset = std::string_view::npos;
  std::string message;
};

Error errorOf(std::string_view source) {
  try {
    parseStatement(source);
  } catch (const SyntaxError& error) {
    return {error.offset(), error.what()};
  }
  return {};
}

TEST(Parser, Precedence_ComparisonBelowSumBelowProductBelowPostfix) {
  EXPECT_EQ(formOf("a + b * c == d"), "(Equal (Add a (Times b c)) d)");
  EXPECT_EQ(formOf("a * b[0].m(1)"), "(Times a (Method m (Index b 0) 1))");
  EXPECT_EQ(formOf("1 in a + b"), "(In 1 (Add a b))");
  EXPECT_EQ(formOf("a not in b"), "(NotIn a b)");
}

TEST(Parser, Operators_GroupFromTheLeft) {
  EXPECT_EQ(formOf("a + b + c"), "(Add (Add a b) c)");
  EXPECT_EQ(formOf("a == b != c"), "(NotEqual (Equal a b) c)");
}

TEST(Parser, Slices_EveryBoundMayBeOmitted) {
  EXPECT_EQ(formOf("x[1]"), "(Index x 1)");
  EXPECT_EQ(formOf("x[:]"), "(Slice x - - -)");
  EXPECT_EQ(formOf("x[1:]"), "(Slice x 1 - -)");
  EXPECT_EQ(formOf("x[:2]"), "(Slice x - 2 -)");
  EXPECT_EQ(formOf("x[::3]"), "(Slice x - - 3)");
  EXPECT_EQ(formOf("x[1:2:-3]"), "(Slice x 1 2 -3)");
}

TEST(Parser, Brackets_TuplesListsSetsMaps) {
  EXPECT_EQ(formOf("(1)"), "1");
  EXPECT_EQ(formOf("(1,)"), "(Tuple 1)");
  EXPECT_EQ(formOf("()"), "(Tuple)");
  EXPECT_EQ(formOf("[1, 2,]"), "(List 1 2)");
  EXPECT_EQ(formOf("{1}"), "(Set 1)");
  EXPECT_EQ(formOf("{}"), "(Map)");
  EXPECT_EQ(formOf("{1: 2, 3: 4,}"), "(Map 1 2 3 4)");
}

TEST(Parser, TypeArguments_BelongToTheCall) {
  const ExpressionPointer call = parseExpression("Map< String , ArrayList<Int> >()");
  EXPECT_EQ(call->kind, ExpressionKind::Call);
  EXPECT_EQ(call->text, "Map");
  EXPECT_EQ(call->type, "Map<String,ArrayList<Int>>");
}

TEST(Parser, Statements_AreToldApart) {
  EXPECT_EQ(parseStatement("x = 1").kind, StatementKind::Assignment);
  EXPECT_EQ(parseStatement("x[0] = 1").kind, StatementKind::Store);
  EXPECT_EQ(parseStatement("x[0:1] = y").kind, StatementKind::Store);
  EXPECT_EQ(parseStatement("x.y = 1").kind, StatementKind::Store);
  EXPECT_EQ(parseStatement("x == 1").kind, StatementKind::Expression);
  EXPECT_EQ(parseStatement("  # nothing").kind, StatementKind::Empty);
  EXPECT_EQ(parseStatement("class A").kind, StatementKind::Class);
  const Statement command = parseStatement(" :time x.y() with z = 1 ");
  EXPECT_EQ(command.kind, StatementKind::Command);
  EXPECT_EQ(command.name, "time");
  EXPECT_EQ(command.text, "x.y() with z = 1");
}

TEST(Parser, ClassDeclaration_HasFieldsBaseAndHooks) {
  const ClassDeclaration declaration =
      parseStatement(R"(class A(x, y) : B equals fields, order x hash constant text "{x}")").declaration;
  EXPECT_EQ(declaration.name, "A");
  EXPECT_EQ(declaration.base, "B");
  EXPECT_EQ(declaration.fields, (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(declaration.hooks, (HookForms{"fields", "x", "constant", "\"{x}"}));
}

TEST(Parser, Errors_StandWhereTheyAreAndSayWhatWasExpected) {
  EXPECT_EQ(errorOf("[1, 2)").offset, 5U);
  EXPECT_EQ(errorOf("[1, 2)").message, "found ')', expected ',' or ']'");
  EXPECT_EQ(errorOf("x +").message, "found the end of the line, expected a value");
  EXPECT_EQ(errorOf("x.1").message, "found the number 1, expected the name of a method or field");
  EXPECT_EQ(errorOf("f(1, [2").offset, 5U);
  EXPECT_EQ(errorOf("f(1, [2").message, "this '[' is never closed; expected ']'");
  EXPECT_EQ(errorOf("1 2").offset, 2U);
  EXPECT_EQ(errorOf("1 = 2").offset, 2U);
  EXPECT_EQ(errorOf("class A(x) equals").message,
            "found the end of the line, expected how: a field's name, or a form that :help classes lists");
  EXPECT_EQ(errorOf("class A equals x equals y").message, "'equals' is given twice");
}

TEST(Parser, Nesting_IsBoundedInEveryDirection) {
  const auto nested = [](std::size_t depth, const std::string& opening, const std::string& closing) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) text += opening;
    text += "1";
    for (std::size_t i = 0; i < depth; ++i) text += closing;
    return text;
  };
  EXPECT_EQ(errorOf(nested(kDeepestExpression - 1, "[", "]")).message, "");
  for (const auto& [opening, closing] : {std::pair{"[", "]"},
                                         {"(", ")"},
                                         {"{", "}"},
                                         {"f(", ")"},
                                         {"x[", "]"},
                                         {"", "+1"},
                                         {"", "*1"},
                                         {"", "==1"},
                                         {"", "[0]"},
                                         {"", ".f"},
                                         {"", ".f()"}}) {
    EXPECT_NE(errorOf(nested(kDeepestExpression + 1, opening, closing)).message.find("nested more than"),
              std::string::npos)
        << opening << closing;
  }
}

}  // namespace
}  // namespace vorn::console
