// Statements and commands, as a session runs them.
#include "console/console.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/output.h"
#include "console/scalars.h"
#include "tests/support/runtime_test.h"

namespace vorn::console {
namespace {

class ConsoleTest : public vorn::tests::RuntimeTest {
 protected:
  // The lines that a statement shows.
  std::vector<std::string> shown(std::string_view source) {
    CapturedOutput output;
    console.run(source, output);
    std::vector<std::string> lines;
    for (const CapturedOutput::Line& line : output.lines()) lines.push_back(line.text);
    return lines;
  }

  std::string only(std::string_view source) {
    const std::vector<std::string> lines = shown(source);
    return lines.size() == 1 ? lines[0] : std::to_string(lines.size()) + " lines";
  }

  // Which natives a statement calls.
  std::vector<std::string> called(std::string_view source) {
    std::vector<std::string> names;
    const Session::Observer before = console.session().observer();
    console.session().observe([&](const NativeRow& row, std::span<const Value>) {
      names.push_back(std::string(row.className) + "." + std::string(row.method));
    });
    shown(source);
    console.session().observe(before);
    return names;
  }

  Console console;
};

using Names = std::vector<std::string>;

TEST_F(ConsoleTest, Literals_CallTheNativesOfCompiledCode) {
  EXPECT_EQ(called("[]"), Names{"ArrayList.literal0"});
  EXPECT_EQ(called("[1]"), Names{"ArrayList.intLiteral1"});
  EXPECT_EQ(called("[1, 2, 3, 4, 5]"), Names{"ArrayList.intLiteral5"});
  EXPECT_EQ(called("[1, 2]"), Names{"ArrayList.intLiteral"});
  EXPECT_EQ(called("[\"a\"]"), Names{"ArrayList.literal1"});
  EXPECT_EQ(called("[1, \"a\"]"), Names{"ArrayList.literal"});
  EXPECT_EQ(called("(1, \"a\")"), (Names{"ArrayList.literal", "Tuple.ctor"}));
  EXPECT_EQ(called("{1}"), Names{"HashSet.add"});
  EXPECT_EQ(called("{1: 2}"), Names{"Map.put"});
  EXPECT_EQ(called("Array<Int>(3)"), Names{"Array.ctor"});
  EXPECT_EQ(called("ArrayList<Int>()"), Names{});
}

TEST_F(ConsoleTest, Operators_CallTheNativesOfTheirClass) {
  shown("xs = [1, 2]");
  shown("a = Array<Int>(2)");
  shown("m = {1: 2}");
  EXPECT_EQ(called("xs[0]"), Names{"ArrayList.operator_index"});
  EXPECT_EQ(called("xs[0] = 5"), Names{"ArrayList.operator_index_eq"});
  EXPECT_EQ(called("xs[0:1]"), Names{"ArrayList.slice"});
  EXPECT_EQ(called("xs[0:1] = xs"), Names{"ArrayList.sliceAssign"});
  EXPECT_EQ(called("1 in xs"), Names{"ArrayList.operator_in"});
  EXPECT_EQ(called("xs + xs"), Names{"ArrayList.concat"});
  EXPECT_EQ(called("xs * 2"), Names{"ArrayList.repeat"});
  EXPECT_EQ(called("xs == xs"), Names{});
  EXPECT_EQ(called("a[0]"), Names{"Array.operator_index"});
  EXPECT_EQ(called("a == a"), Names{"Array.operator_eq"});
  EXPECT_EQ(called("a != a"), Names{"Array.operator_ne"});
  EXPECT_EQ(called("m == m"), Names{"Map.operator_eq"});
  EXPECT_EQ(called("m[1]"), Names{"Map.operator_index"});
  EXPECT_EQ(called("1 in m"), Names{"Map.operator_in"});
}

TEST_F(ConsoleTest, LiteralOfMoreValuesThanACallTakes_IsWhatASmallerOneWouldBe) {
  std::string ints = "xs = [";
  for (int i = 0; i < 300; ++i) ints += std::to_string(i) + ",";
  shown(ints + "]");
  EXPECT_EQ(only("xs.size()"), "300");
  EXPECT_EQ(only("xs.add(\"x\")"), "TypeError: ArrayList<Int> cannot accept vorn.String");
  shown(ints + "\"a\"]");
  EXPECT_EQ(only("xs[-1]"), "\"a\"");
  EXPECT_EQ(only("xs.add(null)"), "0 lines");
}

TEST_F(ConsoleTest, RaisedError_LeavesTheSessionAsItWas) {
  shown("xs = [1]");
  EXPECT_EQ(only("ys = xs[7]"), "IndexException: Index out of bounds");
  EXPECT_EQ(only("ys"), "Refused: there is no variable ys; did you mean xs?");
  EXPECT_EQ(only("xs"), "[1]");
  EXPECT_EQ(console.failures(), 2U);
}

TEST_F(ConsoleTest, FailedStatement_RunsNoneOfItsRest) {
  shown("xs = [1]");
  EXPECT_EQ(only("[xs[9], xs.add(2)]"), "IndexException: Index out of bounds");
  EXPECT_EQ(only("xs"), "[1]");
}

TEST_F(ConsoleTest, Variables_KeepTheirValuesAlive) {
  shown("xs = [\"a\", [1, 2]]");
  vorn_heap_collect();
  EXPECT_EQ(only("xs"), "[\"a\", [1, 2]]");
}

TEST_F(ConsoleTest, Buffer_IsRefusedAfterTheNextNative) {
  shown("xs = ArrayList<Int>()");
  shown("p = xs.prepareIntData(2)");
  EXPECT_EQ(only("p[0] = 4"), "0 lines");
  EXPECT_EQ(only("p[0]"), "4");
  shown("xs.size()");
  EXPECT_TRUE(only("p[0]").starts_with("Refused: this buffer is no longer good"));
  EXPECT_TRUE(only("p[0] = 1").starts_with("Refused: this buffer is no longer good"));
}

TEST_F(ConsoleTest, BufferOfEveryType_HoldsItsLargestValue) {
  for (const ScalarType& type : scalarTypes()) {
    const std::string name(type.name);
    const std::string value = type.family == ScalarFamily::Floating  ? "2.5"
                              : type.family == ScalarFamily::Boolean ? "true"
                              : name == "ULong"                      ? integerText(type.highest) + "uL"
                                                                     : integerText(type.highest) + "L";
    shown("p = ArrayList.newPrimitiveData(1, \"" + name + "\")");
    shown("p[0] = " + value);
    const std::string expected = only(name + "(" + value + ")");
    EXPECT_EQ(only("p[0]"), expected) << name;
    EXPECT_EQ(only("p.list"), "[" + expected + "]") << name;
  }
}

TEST_F(ConsoleTest, Limits_RefuseCountsAndCollectionsBeyondThem) {
  Console bounded(Limits{.mostElements = 10});
  CapturedOutput output;
  for (const char* line :
       {"x = range(8)", "x.addAll(x)", "x.addAll(x)", "[1].repeat(11)", "Array<Int>(11)", "range(11)"}) {
    bounded.run(line, output);
  }
  EXPECT_EQ(output.lines().size(), 4U);
  for (const CapturedOutput::Line& line : output.lines()) EXPECT_TRUE(line.text.starts_with("Refused: ")) << line.text;
}

TEST_F(ConsoleTest, NoMemoryForANative_IsToldAndTheSessionGoesOn) {
  shown("xs = range(1000)");
  bool refused = false;
  for (int after = 0; after < 4; ++after) {
    vorn_heap_fail_allocation(after);
    refused = only("ys = xs.repeat(100)") == "Refused: repeat: there is not enough memory (std::bad_alloc)" || refused;
    vorn_heap_fail_allocation(-1);
  }
  EXPECT_TRUE(refused);
  EXPECT_EQ(only("xs.size()"), "1000");
}

// Statement by statement with every allocation failing in turn: the console must tell and go on.
TEST_F(ConsoleTest, NoMemoryAtAnyAllocation_NeverEndsTheSession) {
  shown("class Point(x, y) equals fields hash fields text fields");
  const char* const lines[] = {"x = [1, \"a\", 2.5]",
                               "m = {\"a\": 1, (1, 2): [3]}",
                               "s = {Point(1, 2), 'c'}",
                               "x[0:2]",
                               "t = (1, \"a\")",
                               "m.items()",
                               "x.join(\", \")",
                               "s",
                               "Array<Char>(['a'])",
                               "m.tryGet(\"a\")",
                               "shuffled(5)",
                               "texts(3)"};
  for (const char* line : lines) {
    for (int after = 0; after < 200; ++after) {
      vorn_heap_fail_allocation(after);
      shown(line);
      const bool happened = vorn_heap_failure_happened() != 0;
      vorn_heap_fail_allocation(-1);
      vorn_errors_clear();
      if (!happened) break;
    }
    EXPECT_EQ(only("[1]"), "[1]") << line;
  }
}

TEST_F(ConsoleTest, Watch_TellsWhichValueEndedUnboxedStorage) {
  shown("xs = ArrayList()");
  shown("xs.addAll([1, 2])");
  shown(":watch xs");
  EXPECT_EQ(
      only("xs.addAll((3, \"four\", 5))"),
      "watch xs: unboxed Int, inline -> boxed handles, by addAll((3, \"four\", 5)); xs[3] is \"four\", of type String");
  EXPECT_EQ(only("xs.add(6)"), "0 lines");
}

TEST_F(ConsoleTest, Time_IsPositiveAndNamesTheNative) {
  shown("xs = [1, 2, 3]");
  const std::vector<std::string> lines = shown(":time xs.indexOf(3)");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find(" a call of ArrayList.indexOf ("), std::string::npos) << lines[0];
  EXPECT_GT(std::stod(lines[0]), 0.0);
}

TEST_F(ConsoleTest, TimeWithASetup_RunsItBeforeEachCallAndGivesTheVariableBack) {
  EXPECT_EQ(shown(":time xs.removeAt(0) with xs = [1]").size(), 2U);
  EXPECT_EQ(only("xs"), "Refused: there is no variable xs");
  shown("xs = [7]");
  EXPECT_EQ(shown(":time xs.removeAt(0) with xs = [1]").size(), 2U);
  EXPECT_EQ(only("xs"), "[7]");
  EXPECT_EQ(only(":time xs[9] with xs = [1]"), "IndexException: Index out of bounds");
  EXPECT_EQ(only("xs"), "[7]");
}

TEST_F(ConsoleTest, PlotWithASetup_GivesBothVariablesBack) {
  shown("xs = [7]");
  EXPECT_GT(shown(":plot xs.sumInt() over n with xs = range(n) up to 10").size(), 2U);
  EXPECT_EQ(only("xs"), "[7]");
  EXPECT_TRUE(only("n").starts_with("Refused: there is no variable n")) << only("n");
}

TEST_F(ConsoleTest, Time_OfWhatRaises_TellsSo) {
  shown("xs = [1]");
  EXPECT_EQ(only(":time xs[5]"), "IndexException: Index out of bounds");
}

TEST_F(ConsoleTest, MarkedLine_CutsLongLinesAroundThePlace) {
  const std::string line = std::string(500, 'x') + "?" + std::string(500, 'y');
  const std::string marked = markedLine(line, 500);
  const std::size_t end = marked.find('\n');
  EXPECT_LT(end, 130U);
  EXPECT_EQ(marked[marked.rfind('^') - end - 1], '?');
}

}  // namespace
}  // namespace vorn::console
