#include "console/scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/problems.h"

namespace vorn::console {
namespace {

std::vector<std::string> texts(std::string_view source) {
  std::vector<std::string> result;
  for (const Token& token : scan(source)) result.push_back(token.text + token.suffix);
  return result;
}

std::size_t errorOffset(std::string_view source) {
  try {
    scan(source);
  } catch (const SyntaxError& error) {
    return error.offset();
  }
  return std::string_view::npos;
}

TEST(Scanner, Numbers_KeepTheirSuffixes) {
  EXPECT_EQ(texts("3 3L 3u 3uL 2.5 2.5f 1e3 1.5e-3f"),
            (std::vector<std::string>{"3", "3L", "3u", "3uL", "2.5", "2.5f", "1e3", "1.5e-3f", ""}));
}

TEST(Scanner, NumberBeforeAMethod_IsAnInteger) {
  const std::vector<Token> tokens = scan("3.size");
  EXPECT_EQ(tokens[0].kind, TokenKind::Integer);
  EXPECT_TRUE(tokens[1].isMark("."));
}

TEST(Scanner, UnknownSuffix_IsAnErrorAtTheSuffix) {
  EXPECT_EQ(errorOffset("12 34x"), 5U);
  EXPECT_EQ(errorOffset("2.5L"), 3U);
}

TEST(Scanner, Escapes_AreResolved) {
  EXPECT_EQ(scan(R"("a\n\t\"\\\u{41}\u{1F600}")")[0].text, "a\n\t\"\\A\xF0\x9F\x98\x80");
  EXPECT_EQ(scan(R"('\'')")[0].text, "'");
}

TEST(Scanner, BadEscapes_AreErrorsAtTheBackslash) {
  for (const char* source : {R"("ab\q")", R"("ab\u{}")", R"("ab\u{D800}")", R"("ab\u{110000}")", R"("ab\u{0}")",
                             R"("ab\u{41")", R"("ab\u41")", "\"ab\\"}) {
    EXPECT_EQ(errorOffset(source), 3U) << source;
  }
}

TEST(Scanner, UnclosedQuote_IsAnErrorWhereItOpens) {
  EXPECT_EQ(errorOffset("x = \"abc"), 4U);
  EXPECT_EQ(errorOffset("x = \"abc\n\""), 4U);
}

TEST(Scanner, CharacterLiteral_IsOneCharacterOfAnyLength) {
  EXPECT_EQ(scan("'\xC3\xA9'")[0].kind, TokenKind::Character);
  EXPECT_EQ(errorOffset("''"), 0U);
  EXPECT_EQ(errorOffset("'ab'"), 0U);
}

TEST(Scanner, BytesOutsideUtf8_AreAnErrorWhereTheyStand) {
  EXPECT_EQ(errorOffset("ab \xFF"), 3U);
  EXPECT_EQ(errorOffset("\"\xC3\""), 1U);
  EXPECT_EQ(errorOffset("\xED\xA0\x80"), 0U);
  EXPECT_EQ(errorOffset("\xF4\x90\x80\x80"), 0U);
  EXPECT_EQ(errorOffset("\xC0\xAF"), 0U);
}

TEST(Scanner, LineEndsInsideBrackets_AreLeftOut) {
  EXPECT_EQ(texts("[1,\n2]\n3"), (std::vector<std::string>{"[", "1", ",", "2", "]", "\n", "3", ""}));
}

TEST(Scanner, Comment_EndsWithItsLine) {
  EXPECT_EQ(texts("1 # [ \" \n2"), (std::vector<std::string>{"1", "\n", "2", ""}));
}

TEST(CommentStart, QuotesAreMinded) {
  EXPECT_EQ(commentStart("x # y"), 2U);
  EXPECT_EQ(commentStart("\"#\" # y"), 4U);
  EXPECT_EQ(commentStart("\"\\\"#\" # y"), 6U);
  EXPECT_EQ(commentStart("\"open # y"), 9U);
  EXPECT_EQ(commentStart("'#' x"), 5U);
}

TEST(BracketCounter, OpenBracketsGoOnInTheNextLine) {
  BracketCounter counter;
  counter.add("f([1,");
  EXPECT_TRUE(counter.open());
  counter.add("2], \")\"  # )");
  EXPECT_TRUE(counter.open());
  counter.add(")");
  EXPECT_FALSE(counter.open());
}

TEST(BracketCounter, LineThatCannotBeScanned_ClosesEverything) {
  BracketCounter counter;
  counter.add("[1, \"abc");
  EXPECT_FALSE(counter.open());
}

}  // namespace
}  // namespace vorn::console
