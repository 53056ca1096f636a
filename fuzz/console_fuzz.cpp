// Feeds the console statements that nobody meant: whatever they are, the console must refuse or run them, and all that
// the session then holds must be sound and can be shown.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_validation.h"
#include "collections/keyed/keyed_validation.h"
#include "console/console.h"
#include "console/natives.h"
#include "console/output.h"
#include "fuzz/fuzzer.h"

namespace {

using vorn::console::Console;
using vorn::console::Family;

// What statements are made of. Bytes alone seldom come to one that means something; words do.
constexpr std::string_view kWords[] = {"x",
                                       "y",
                                       "z",
                                       "m",
                                       "s",
                                       "p",
                                       "x",
                                       "y",
                                       "xs",
                                       "\n",
                                       "\n",
                                       "\n",
                                       "\n",
                                       "=",
                                       "=",
                                       "==",
                                       "!=",
                                       "in",
                                       "not in",
                                       ".",
                                       ".",
                                       ".",
                                       "(",
                                       ")",
                                       "(",
                                       ")",
                                       "()",
                                       "[",
                                       "]",
                                       "[",
                                       "]",
                                       "{",
                                       "}",
                                       "{}",
                                       "[]",
                                       ",",
                                       ",",
                                       ",",
                                       ":",
                                       ":",
                                       "+",
                                       "*",
                                       "-",
                                       "0",
                                       "1",
                                       "2",
                                       "3",
                                       "-1",
                                       "7",
                                       "100",
                                       "2147483647",
                                       "9223372036854775807L",
                                       "3L",
                                       "5u",
                                       "1.5",
                                       "2.5f",
                                       "NaN",
                                       "'c'",
                                       "\"text\"",
                                       "\"\"",
                                       "null",
                                       "true",
                                       "false",
                                       "Byte(3)",
                                       "Char(65)",
                                       "Text(\"t\")",
                                       "\"Int\"",
                                       "\"Char\"",
                                       "\"Boolean\"",
                                       "ArrayList()",
                                       "ArrayList<Int>()",
                                       "LinkedList<Char>()",
                                       "ArrayListSync<Boolean>()",
                                       "LinkedListSync()",
                                       "ImmutableList(",
                                       "Array<Char>(",
                                       "Array<Int>(",
                                       "Array<P>(",
                                       "ArraySync<Double>(",
                                       "Tuple(",
                                       "Map()",
                                       "SortedMap()",
                                       "HashMapSync()",
                                       "HashSet()",
                                       "HashSetSync()",
                                       "range(",
                                       "shuffled(",
                                       "texts(",
                                       "class P(a, b) equals fields order fields hash fields text fields\n",
                                       "class Q(a) equals raises order raises text a\n",
                                       "class P(a, b) equals always order reversed hash constant text raises\n",
                                       "P(1, 2)",
                                       "P(x, y)",
                                       "Q(x)",
                                       ".a",
                                       ".list",
                                       ":storage ",
                                       ":watch ",
                                       ":type ",
                                       ":natives ",
                                       ":vars\n",
                                       ":heap\n",
                                       ":collect\n",
                                       "#",
                                       "\"",
                                       "'",
                                       "<",
                                       ">",
                                       "x = ",
                                       "y = ",
                                       "x = [1, 2, 3]\n",
                                       "y = {1: 2}\n",
                                       "ArrayList.",
                                       "Map.",
                                       "Array."};

// Half of the bytes pick words, half of them natives.
std::string statementsOf(const std::uint8_t* data, std::size_t size) {
  const auto& natives = vorn::console::allNatives();
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] < 192) {
      text += kWords[data[i] % std::size(kWords)];
    } else if (i + 1 < size) {
      text += "." + std::string(natives[data[++i] % natives.size()]->method) + "(";
    }
  }
  return text;
}

void requireSound(void* handle) {
  std::string problem;
  switch (vorn::console::familyOf(handle)) {
    case Family::List:
    case Family::ImmutableList:
      problem = vorn::collections::validateListData(*getListData(handle));
      break;
    case Family::Map:
      problem = vorn::collections::validateMapData(*getMapData(handle));
      break;
    case Family::HashSet:
      problem = vorn::collections::validateSetData(*getSetData(handle));
      break;
    case Family::Array:
      problem = vorn::collections::validateArrayData(*getArrayData(handle));
      break;
    default:
      break;
  }
  vorn::fuzz::requireSame("the record", problem, "");
}

void requireSoundVariables(Console& console) {
  for (const auto& [name, value] : console.session().variables()) {
    if (value.isObject()) requireSound(value.handle());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vorn::fuzz::startRuntime();
  vorn::fuzz::beginInput();
  if (size == 0) return 0;
  const bool words = data[0] % 8 != 0;
  const std::string text =
      words ? statementsOf(data + 1, size - 1) : std::string(reinterpret_cast<const char*>(data + 1), size - 1);
  Console console(vorn::console::Limits{.mostElements = 500, .computationOnly = true});
  vorn::console::CapturedOutput output;
  std::string_view rest = text;
  while (!rest.empty() && !console.ended()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    vorn::fuzz::noteOperation("a line");
    console.run(rest.substr(0, end), output);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    requireSoundVariables(console);
  }
  console.run(":vars", output);
  return 0;
}
