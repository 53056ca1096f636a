// The smaller rooms of the console: texts, scripts, completion, plots.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "console/completion.h"
#include "console/console.h"
#include "console/output.h"
#include "console/plot.h"
#include "console/script.h"
#include "console/script_runner.h"
#include "console/text.h"
#include "tests/support/runtime_test.h"

namespace vorn::console {
namespace {

using Names = std::vector<std::string>;

TEST(Text, Nearest_IsWithinAThirdOfTheLetters) {
  constexpr std::array<std::string_view, 3> kNames = {"reverse", "reserve", "add"};
  EXPECT_EQ(nearest("revers", kNames), "reverse");
  EXPECT_EQ(nearest("Add", kNames), "add");
  EXPECT_EQ(nearest("addd", kNames), "add");
  EXPECT_EQ(nearest("xyz", kNames), "");
  EXPECT_EQ(nearest("", kNames), "");
}

TEST(Text, Printable_ReplacesControlsAndBytesOutsideUtf8) {
  EXPECT_EQ(printable("a\x1b[1m\x7f\xff\xc2\x9b\tz\n\xc3\xa9"),
            "a\xEF\xBF\xBD[1m\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDz\n\xc3\xa9");
}

TEST(Text, Grouped_HasACommaAtEveryThousand) {
  EXPECT_EQ(grouped(0), "0");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(1000), "1,000");
  EXPECT_EQ(grouped(1234567), "1,234,567");
}

TEST(Script, Pattern_AsteriskStandsForAnyText) {
  EXPECT_TRUE(matchesPattern("abc", "abc"));
  EXPECT_TRUE(matchesPattern("", ""));
  EXPECT_TRUE(matchesPattern("", "*"));
  EXPECT_TRUE(matchesPattern("a-b-c", "a*c"));
  EXPECT_TRUE(matchesPattern("a-b-c", "*b*"));
  EXPECT_TRUE(matchesPattern("aab", "*ab"));
  EXPECT_TRUE(matchesPattern("a*b", "a\\*b"));
  EXPECT_FALSE(matchesPattern("a-b", "a\\*b"));
  EXPECT_FALSE(matchesPattern("abc", "ab"));
  EXPECT_FALSE(matchesPattern("ab", "abc"));
  EXPECT_FALSE(matchesPattern("abd", "*c"));
}

TEST(Script, Pattern_OfAnyText_MatchesItAlone) {
  for (const std::string text : {"", "*", "a*b", "\\", "\\*", "**\\"}) {
    EXPECT_TRUE(matchesPattern(text, asPattern(text))) << text;
  }
  EXPECT_FALSE(matchesPattern("axb", asPattern("a*b")));
}

TEST(Script, Statements_HaveTheirLinesCommentsAndExpectations) {
  const std::vector<ScriptStatement> statements = parseScript(
      "# Head\n\n# About x\nx = [1,  # one\n  2]\n\nx  # expect: [1, 2]\n# expect: second\nx[9]\n"
      "# expect error: IndexException: *\n:type x # expect: T\n\"#\"\n");
  ASSERT_EQ(statements.size(), 5U);
  EXPECT_EQ(statements[0].line, 4U);
  EXPECT_EQ(statements[0].source, "x = [1,  \n  2]");
  EXPECT_EQ(statements[0].comment, "Head\n\nAbout x\n");
  EXPECT_FALSE(statements[0].hasExpectation);
  EXPECT_EQ(statements[1].expected, (Names{"[1, 2]", "second"}));
  EXPECT_TRUE(statements[2].expectsError);
  EXPECT_EQ(statements[3].source, ":type x");
  EXPECT_EQ(statements[3].expected, Names{"T"});
  EXPECT_EQ(statements[4].source, "\"#\"");
}

class RoomsTest : public vorn::tests::RuntimeTest {
 protected:
  ScriptReport report(std::string_view text) {
    Console console;
    CapturedOutput output;
    const ScriptReport result = runScript(console, "test", text, output);
    lines = output.lines();
    return result;
  }

  std::vector<CapturedOutput::Line> lines;
};

TEST_F(RoomsTest, ScriptRunner_CountsDifferences) {
  const ScriptReport result =
      report("1  # expect: 1\n1  # expect: 2\nx\nx  # expect error: Refused: *\n2 # expect error: 2\n");
  EXPECT_EQ(result.statements, 5U);
  EXPECT_EQ(result.expectations, 4U);
  EXPECT_EQ(result.differences, 3U);
}

TEST_F(RoomsTest, ScriptRunner_StopsAtQuit) { EXPECT_EQ(report("1\n:quit\n2\n").statements, 2U); }

TEST_F(RoomsTest, Completion_OfVariablesNativesClassesAndCommands) {
  Console console;
  CapturedOutput output;
  for (const char* line : {"numbers = [1]", "names = {1: 2}", "class Pair(left, right)", "pair = Pair(1, 2)"}) {
    console.run(line, output);
  }
  const auto candidates = [&](std::string_view text) { return complete(console.session(), text).candidates; };
  EXPECT_EQ(candidates("nu"), (Names{"null", "numbers"}));
  EXPECT_EQ(candidates("x + num"), Names{"numbers"});
  EXPECT_EQ(candidates("Immu"), Names{"ImmutableList"});
  EXPECT_EQ(candidates("Pai"), Names{"Pair"});
  EXPECT_EQ(candidates("numbers.rem"), (Names{"remove", "removeAt"}));
  EXPECT_EQ(candidates("names.cont"), Names{"containsValue"});
  EXPECT_EQ(candidates("numbers.cont"), Names{});
  EXPECT_EQ(candidates("pair.l"), Names{"left"});
  EXPECT_EQ(candidates("Tuple.s"), Names{"size"});
  EXPECT_EQ(candidates("f(x).containsV"), Names{"containsValue"});
  EXPECT_EQ(candidates(":sto"), Names{"storage"});
  EXPECT_EQ(candidates(":natives Has"), Names{"HashSet"});
  EXPECT_EQ(candidates(":help bu"), Names{"buffers"});
  EXPECT_EQ(candidates(":watch n"), (Names{"names", "numbers"}));
  EXPECT_EQ(candidates(":time numbers.sumI"), (Names{"sumI64Fast", "sumInt"}));
  EXPECT_EQ(candidates("zzz"), Names{});
  EXPECT_EQ(complete(console.session(), "x + num").start, 4U);
  EXPECT_EQ(commonBeginning({"sumI64Fast", "sumInt"}), "sumI");
}

TEST(Plot, Sizes_AreOneThreeTen) {
  EXPECT_EQ(plotSizes(100), (std::vector<std::uint64_t>{1, 3, 10, 30, 100}));
  EXPECT_EQ(plotSizes(31), (std::vector<std::uint64_t>{1, 3, 10, 30}));
}

TEST(Plot, Chart_GoesFromTheLowerLeftToTheUpperRight) {
  std::vector<PlotPoint> points;
  for (const std::uint64_t size : plotSizes(100000)) points.push_back({size, static_cast<double>(size) * 2});
  const std::string chart = drawChart(points, 80);
  const std::string first = chart.substr(0, chart.find('\n'));
  EXPECT_EQ(first.back(), 'o');
  EXPECT_NE(first.find("200 us"), std::string::npos);
  EXPECT_EQ(std::count(chart.begin(), chart.end(), '\n'), 13);
  std::size_t start = 0;
  while (start < chart.size()) {
    const std::size_t end = std::min(chart.find('\n', start), chart.size());
    EXPECT_LE(end - start, 80U);
    start = end + 1;
  }
  EXPECT_NEAR(growthExponent(points), 1.0, 1e-6);
}

TEST(Plot, GrowthExponent_OfSquares) {
  std::vector<PlotPoint> points;
  for (const std::uint64_t size : plotSizes(1000)) points.push_back({size, static_cast<double>(size * size)});
  EXPECT_NEAR(growthExponent(points), 2.0, 1e-6);
}

TEST(Plot, Chart_OfEqualTimesAndOfZeros) {
  EXPECT_NE(drawChart({{1, 5}, {3, 5}}, 60).find('o'), std::string::npos);
  EXPECT_NE(drawChart({{1, 0}, {3, 0}}, 60).find('o'), std::string::npos);
  EXPECT_NE(drawSvg({{1, 0}, {3, 0}}, "a < b & c").find("a &lt; b &amp; c"), std::string::npos);
}

}  // namespace
}  // namespace vorn::console
