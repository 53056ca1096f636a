// :help, :tour and :quit.
#include <algorithm>
#include <string>

#include "console/commands/commands.h"
#include "console/functions.h"
#include "console/problems.h"
#include "console/text.h"

namespace vorn::console {

namespace {

void listCommands(Output& output) {
  output.line("Commands", Style::Heading);
  for (const Command* command : allCommands()) {
    constexpr std::size_t kColumn = 20;
    std::string call = ":" + std::string(command->name) + " " + std::string(command->usage);
    if (call.size() > kColumn) {
      output.line("  " + call);
      call.clear();
    }
    call.resize(kColumn, ' ');
    output.line("  " + call + " " + std::string(command->description));
  }
  output.line("");
  std::string topics;
  for (const HelpTopic& topic : helpTopics()) topics += (topics.empty() ? "" : ", ") + std::string(topic.name);
  output.line("Everything else is an expression, an assignment or a class. :help TOPIC tells more: " + topics + ".");
}

void help(Console&, std::string_view text, Output& output) {
  if (text.starts_with(':')) text.remove_prefix(1);
  if (text.empty()) return listCommands(output);
  std::vector<std::string_view> known;
  for (const HelpTopic& topic : helpTopics()) {
    if (topic.name == text) return output.line(topic.text);
    known.push_back(topic.name);
  }
  for (const Command* command : allCommands()) {
    if (command->name == text) {
      return output.line(":" + std::string(command->name) + " " + std::string(command->usage) + "\n" +
                         std::string(command->description));
    }
    known.push_back(command->name);
  }
  throw Refusal("there is no help on " + printable(firstCharacters(text, 40)) + suggestion(text, known));
}

void tour(Console& console, std::string_view, Output& output) {
  console.tour().emplace();
  output.line("The tour has " + std::to_string(console.tour()->count()) +
              " steps. Enter runs the next one; anything else you type is run as ever. :quit leaves.");
}

void quit(Console& console, std::string_view, Output&) { console.end(); }

constexpr Command kHelpCommands[] = {
    {"help", "[TOPIC]", "this, or more on a topic or command", help},
    {"tour", "", "a guided tour of ten minutes", tour},
    {"quit", "", "leaves, as does Ctrl-D", quit},
};

constexpr HelpTopic kTopics[] = {
    {"values",
     R"(Every value type has a literal or a spelled form:
  3  3L  3u  3uL           Int, Long, UInt, ULong
  2.5  2.5f  NaN           Double, Float; Infinity and -Infinity as well
  'c'  true  null  "text"  Char, Boolean, the null, String; \n \t \\ \" \u{1F600} in quotes
  Byte(3)  Short(-1)       any type by name: SByte Byte Short UShort Int UInt Long ULong Float Double
                           Char CodeUnit Boolean; out of range is refused
  String(chars)            the text of an Array<Char> or Array<CodeUnit>
  Text("bare")             a bare text, as compiled code passes constants)"},
    {"collections",
     R"(  [1, 2]  (1, "a")  {1, 2}  {"a": 1}     a list, a tuple, a set, a map; (1,) a tuple of one, {} a map
  ArrayList<Int>()  LinkedListSync<String>()  SortedMap()  HashSetSync()
  Array<Char>(3)  Array<Int>([1, 2])       fixed arrays: of zeros, or a copy
  ImmutableList(xs)  Tuple(xs)             fixed copies of a list
Literals call the natives that compiled code calls for them: [1, 2] is ArrayList.intLiteral.
  range(n)  shuffled(n)  texts(n)          lists to try things on
  same(a, b)                               whether both are one object)"},
    {"natives",
     R"(Every native goes by its name in the language, on its receiver or on its class:
  xs.addAllAt(1, ys)        a method
  ArrayList.add(null, 1)    the same natives by class: how to give a null receiver
  ArrayList.literal(1, "a") natives that make something
:natives lists all with their arguments; :natives Map those of one class. TAB completes them.
A native that raises ends the statement: IndexException: Index out of bounds.)"},
    {"operators",
     R"(  xs[0]  xs[-1]  xs[0] = 5           elements; negative indexes count from the end
  xs[1:3]  xs[:2]  xs[::-1]          slices, every bound given or left out
  xs[1:2] = [7, 8, 9]                slice assignment
  3 in xs  3 not in xs               membership: keys of maps
  a == b  a != b                     by value and content
  xs + ys  xs * 3                    concat and repeat
  x = EXPR  p.field  p.field = 1     variables, and fields of user objects)"},
    {"classes",
     R"(  class Point(x, y)                             fields, equality by identity
  class Money(amount) equals fields order amount
  class Key(id, name) equals id hash id text "key {id}"
  class Child(z) : Point                        a class derived from another
Hooks and their forms, each beside the name of a field:
  equals  fields  always  never  raises
  order   fields  reversed  never  raises       never: cannot be compared
  hash    fields  constant  raises
  text    fields  name  raises  "with {field}s"
:classes shows them and counts how often the library called each hook. Declared again with other
forms of the same hooks, a class behaves otherwise from then on.)"},
    {"buffers",
     R"(Compiled loops fill lists through raw memory, and so can you:
  xs = ArrayList<Int>()
  p = xs.prepareIntData(3)     a buffer with room for three
  p[0] = 7                     writes raw memory; p[0] reads it
  xs.commitIntDataSize(3)      the list takes the values over
  ArrayList.newPrimitiveData(3, "Short").list
  r = xs.dataHandle()          the list's record: r.addIntToData(5), r.getIntFromData(0)
A buffer is good until the next native is called; the console refuses it afterwards.)"},
    {"storage",
     R"(  :storage xs    which storage is live, its kind, size against capacity, bytes, lock
  :watch xs      one line whenever that changes: the moment a list leaves unboxed storage,
                 by which call, and which value did it
  :heap  :collect)"},
    {"measuring",
     R"(  :time xs.indexOf(7)                            repeated until it is stable
  :time xs.sort() with xs = shuffled(1000)       the setup runs before each call, untimed
  :plot range(n).sumInt() over n                 time against size
  :plot xs.sort() over n with xs = shuffled(n) up to 10000 to sort.svg
The time is that of the expression's last native, called directly.)"},
    {"scripts",
     R"(  vorn-console FILE...   runs scripts; the exit status is 1 when something differs
  xs.size()              # expect: 3
  xs[9]                  # expect error: IndexException: Index out of bounds
  # expect: ...          on lines of its own belongs to the statement above; one for each line shown
An asterisk in an expectation stands for any text; \* for itself.
  :save FILE             writes the session as such a script
  :load FILE             runs one inside the session)"},
    {"keys",
     R"(  TAB          completes variables, natives after a dot, commands
  Up, Down     earlier lines; Ctrl-R searches them
  Ctrl-C       drops the line, or stops :time, :plot and scripts; Ctrl-D leaves
  An open bracket goes on in the next line.)"},
};

}  // namespace

std::span<const Command> helpCommands() { return kHelpCommands; }
std::span<const HelpTopic> helpTopics() { return kTopics; }

}  // namespace vorn::console
