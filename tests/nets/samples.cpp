#include "tests/nets/samples.h"

#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>

#include <climits>
#include <cmath>
#include <cstdint>

#include "collections/array/array_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/nets/catalogue.h"
#include "tests/support/sequences.h"

namespace vorn::tests::nets {

// ---- Contents -------------------------------------------------------------------------------------------------------

namespace {

std::vector<Handle> integers(int count) {
  std::vector<Handle> all;
  for (int i = 0; i < count; ++i) all.push_back(integer("Int", (i * 7 + 5) % 67));
  return all;
}

}  // namespace

const std::vector<Content>& contents() {
  static const std::vector<Content> all = {
      {"none", "", [] { return std::vector<Handle>(); }, [] { return integer("Int", 5); }},
      {"Ints", "Int", [] { return integers(5); }, [] { return integer("Int", 5); }},
      // Fills the room inside a record.
      {"many Ints", "Int", [] { return integers(32); }, [] { return integer("Int", 5); }},
      {"Doubles", "Double",
       [] {
         return std::vector<Handle>{floating("Double", 2.5), floating("Double", std::nan("")),
                                    floating("Double", -1.0)};
       },
       [] { return floating("Double", 2.5); }},
      {"many Doubles", "Double",
       [] {
         std::vector<Handle> doubles;
         for (int i = 0; i < 16; ++i) doubles.push_back(floating("Double", i * 0.75 - 3.0));
         return doubles;
       },
       [] { return floating("Double", 0.0); }},
      {"Longs", "Long",
       [] {
         return std::vector<Handle>{integer("Long", LLONG_MAX), integer("Long", 3)};
       },
       [] { return integer("Long", 3); }},
      {"Chars", "Char",
       [] {
         return std::vector<Handle>{integer("Char", 'q'), integer("Char", 'a')};
       },
       [] { return integer("Char", 'a'); }},
      {"CodeUnits", "CodeUnit",
       [] {
         return std::vector<Handle>{integer("CodeUnit", 'q'), integer("CodeUnit", 0xD800)};
       },
       [] { return integer("CodeUnit", 'q'); }},
      {"Strings", "",
       [] {
         return std::vector<Handle>{string("d"), string("b"), string("c"), string("a")};
       },
       [] { return string("b"); }},
      {"Strings of a type", "String",
       [] {
         return std::vector<Handle>{string("d"), string("b")};
       },
       [] { return string("b"); }},
      {"boxed Ints", "",
       [] {
         return std::vector<Handle>{integer("Int", 9), integer("Long", 5), integer("Int", 7), integer("Byte", 1)};
       },
       [] { return integer("Long", 5); }},
      {"a mixture", "",
       [] {
         return std::vector<Handle>{integer("Int", 5), nullptr,  floating("Double", 0.5),
                                    text("bare"),      plain(3), integer("Char", 'x')};
       },
       [] { return floating("Double", 0.5); }},
      {"user objects", "",
       [] { return std::vector<Handle>{userKey(4), userKey(7), userKey(2), userKey(5), userKey(1), userKey(6)}; },
       [] { return userKey(5); }},
      {"tuples of user objects", "",
       [] {
         return std::vector<Handle>{tupleOf({userKey(4)}), tupleOf({userKey(7)}), tupleOf({userKey(5)})};
       },
       [] { return tupleOf({userKey(5)}); }},
  };
  return all;
}

const Content& contentNamed(std::string_view name) {
  const Content* found = contents().data();
  while (found->name != name) ++found;
  return *found;
}

// ---- Receivers ------------------------------------------------------------------------------------------------------

std::string nameOf(const Subject& subject) {
  return subject.type == nullptr ? "no receiver" : std::string(subject.type->name) + " of " + subject.content->name;
}

Handle make(const Subject& subject) {
  const std::vector<Handle> elements = subject.content->elements();
  const std::string element = subject.content->element;
  const std::string generic = element.empty() ? "" : "<" + element + ">";
  switch (subject.type->family) {
    case Family::List: {
      Handle list = object(subject.type->name + generic);
      for (const Handle& one : elements) vorn_collections_ArrayList_add(list, one);
      return list;
    }
    case Family::Immutable: {
      const Handle source = object("ArrayList" + generic);
      for (const Handle& one : elements) vorn_collections_ArrayList_add(source, one);
      Handle list = object(subject.type->name);
      vorn_collections_ImmutableList_ctor(list, source);
      return list;
    }
    case Family::Tuple:
      return tupleOf(elements);
    case Family::Set: {
      Handle set = object(subject.type->name);
      for (const Handle& one : elements) vorn_collections_HashSet_add(set, one);
      return set;
    }
    case Family::Map: {
      Handle map = object(subject.type->name);
      for (const Handle& one : elements) {
        if (one.get() != nullptr) vorn_collections_Map_put(map, one, one);
      }
      return map;
    }
    case Family::Array:
      break;
  }
  Handle array = object(subject.type->name + generic);
  vorn_collections_Array_ctor(array, static_cast<long long>(elements.size()));
  for (std::size_t i = 0; i < elements.size(); ++i) {
    vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), elements[i]);
  }
  return array;
}

const CollectionClass* synchronisedTwin(const CollectionClass& type) {
  const std::string plain = type.name;
  const std::string twin = plain == "Map" ? "HashMapSync" : plain + "Sync";
  for (const CollectionClass& other : kCollectionClasses) {
    if (other.name == twin) return &other;
  }
  return nullptr;
}

bool inFull() { return !underTool() && !onStressHeap(); }

namespace {

// One of each sort of storage: unboxed, handles of all sorts, handles of user objects.
bool isOneOfFew(const Content& content) {
  const std::string name = content.name;
  return name == "Ints" || name == "a mixture" || name == "user objects";
}

}  // namespace

std::vector<Subject> subjectsOf(const Native& native, Which which) {
  std::vector<Subject> subjects;
  if (!native.takesReceiver()) return {{nullptr, &contentNamed("Ints")}, {nullptr, &contentNamed("a mixture")}};
  for (const CollectionClass& type : kCollectionClasses) {
    if (!native.takesReceiverOf(type.family) || type.synchronised != (which == Which::Synchronised)) continue;
    for (const Content& content : contents()) {
      if (!inFull() && !isOneOfFew(content) && !(native.constructor && std::string(content.name) == "none")) continue;
      subjects.push_back({&type, &content});
    }
  }
  return subjects;
}

// ---- Arguments ------------------------------------------------------------------------------------------------------

namespace {

Argument ofHandle(const Handle& handle) {
  Argument argument;
  argument.handle = handle;
  return argument;
}
Argument ofInteger(long long integer) {
  Argument argument;
  argument.integer = integer;
  return argument;
}

Choice fixed(const std::string& name, Handle (*value)()) {
  return {name, [value](const Subject&, void*) { return ofHandle(value()); }};
}
Choice exactly(long long integer) {
  return {std::to_string(integer), [integer](const Subject&, void*) { return ofInteger(integer); }};
}
Choice text(const char* name) {
  return {name != nullptr ? std::string("\"") + name + "\"" : "null", [name](const Subject&, void*) {
            Argument argument;
            argument.text = name;
            return argument;
          }};
}
Choice real(double value) {
  return {std::to_string(value), [value](const Subject&, void*) {
            Argument argument;
            argument.real = value;
            return argument;
          }};
}
Choice truth(bool value) {
  return {value ? "true" : "false", [value](const Subject&, void*) {
            Argument argument;
            argument.truth = value;
            return argument;
          }};
}

long long sizeOf(const Subject& subject, void* receiver) {
  if (subject.type == nullptr || receiver == nullptr) return 5;
  switch (subject.type->family) {
    case Family::List:
    case Family::Immutable:
      return static_cast<long long>(getListData(receiver)->logicalSize());
    case Family::Tuple:
      return sizeField(receiver);
    case Family::Set:
      return static_cast<long long>(getSetData(receiver)->count());
    case Family::Map:
      return static_cast<long long>(getMapData(receiver)->count());
    case Family::Array:
      break;
  }
  return static_cast<long long>(arrayLogicalSize(*getArrayData(receiver)));
}

// The size of the receiver, times a factor, and some more.
Choice size(long long factor, long long more) {
  const std::string sign = factor < 0 ? "-size" : "size";
  return {more == 0 ? sign : sign + (more > 0 ? "+" : "") + std::to_string(more),
          [factor, more](const Subject& subject, void* receiver) {
            return ofInteger(factor * sizeOf(subject, receiver) + more);
          }};
}

std::vector<Choice> values() {
  return {{"a value of it", [](const Subject& subject, void*) { return ofHandle(subject.content->value()); }},
          fixed("an Int", [] { return integer("Int", 300); }),
          fixed("a Double", [] { return floating("Double", 2.5); }),
          fixed("a Char", [] { return integer("Char", 'q'); }),
          fixed("a String", [] { return string("z"); }),
          fixed("a bare text", [] { return tests::text("b"); }),
          fixed("a user object", [] { return userKey(5); }),
          fixed("a list", [] { return list("ArrayList", {userKey(1)}); }),
          fixed("null", [] { return Handle(nullptr); })};
}

// Another collection with the same elements.
Choice another(const char* type) {
  return {std::string("a ") + type, [type](const Subject& subject, void*) {
            return ofHandle(make({&classNamed(type), subject.content}));
          }};
}

std::vector<Choice> otherLists() {
  std::vector<Choice> all;
  for (const char* type : {"ArrayListSync", "ArrayList", "LinkedListSync", "LinkedList", "ImmutableList"}) {
    all.push_back(another(type));
  }
  all.push_back({"itself", [](const Subject&, void* receiver) { return ofHandle(receiver); }});
  all.push_back(fixed("null", [] { return Handle(nullptr); }));
  return all;
}

std::vector<Choice> others(const Subject& subject) {
  std::vector<Choice> all;
  const bool ofAList =
      subject.type == nullptr || subject.type->family == Family::Immutable || subject.type->family == Family::Tuple;
  if (ofAList) {
    all.push_back(another("ArrayListSync"));
  } else {
    all.push_back({"one like it", [](const Subject& of, void*) { return ofHandle(make(of)); }});
  }
  for (const char* type : {"ArrayList", "ArrayListSync", "LinkedListSync", "ImmutableList", "Tuple", "HashSetSync",
                           "ArraySync", "Array", "Map"}) {
    all.push_back(another(type));
  }
  all.push_back({"itself", [](const Subject&, void* receiver) { return ofHandle(receiver); }});
  all.push_back(fixed("a String", [] { return string("z"); }));
  all.push_back(fixed("null", [] { return Handle(nullptr); }));
  return all;
}

std::size_t ordinalOf(const Native& native, std::size_t place) {
  std::size_t before = 0;
  for (std::size_t i = 0; i < place; ++i) before += native.roles[i] == native.roles[place] ? 1 : 0;
  return before;
}

}  // namespace

std::vector<Choice> choicesOf(const Native& native, std::size_t place, const Subject& subject) {
  switch (native.roles[place]) {
    case Role::Receiver:
    case Role::Record:
      return {{"the receiver", [](const Subject&, void* receiver) { return ofHandle(receiver); }}};
    case Role::Value:
    case Role::Key:
      return values();
    case Role::Other:
      return others(subject);
    case Role::OtherList:
      return otherLists();
    case Role::Index:
    case Role::Start:
      return {exactly(0), exactly(-1), exactly(1), size(1, -1), size(1, 0), size(1, 1), size(-1, 0), size(-1, -1)};
    case Role::Bound:
      if (ordinalOf(native, place) == 0) return {exactly(0), exactly(-2), exactly(1), size(1, 0)};
      return {size(1, 0), exactly(-1), exactly(0), exactly(2)};
    case Role::Mark:
      return {fixed("given", [] { return boolean(true); }), fixed("left out", [] { return Handle(nullptr); })};
    case Role::Step:
      return {exactly(1), exactly(2), exactly(-1), exactly(0)};
    case Role::Count:
      return {size(1, 3), exactly(0), exactly(1), exactly(-1), exactly(100)};
    case Role::Written:
      return {size(1, 0), exactly(0), exactly(1), exactly(-1)};
    case Role::ArgumentCount:
      return {exactly(3), exactly(0), exactly(1), exactly(-1)};
    case Role::Number:
      return {exactly(65), exactly(-1), exactly(300), exactly(0xD800), exactly(1LL << 40)};
    case Role::Real:
      return {real(2.5), real(-0.0), real(std::nan("")), real(1e300)};
    case Role::Truth:
      return {truth(true), truth(false)};
    case Role::TypeName:
      return {text("Int"),   text("Double"),  text("Char"),    text("CodeUnit"), text("Byte"), text("vorn.Long"),
              text("Float"), text("Boolean"), text("app.Foo"), text(nullptr),    text("")};
    case Role::Separator:
      return {text(", "), text(""), text(nullptr)};
    case Role::Slot:
      break;
  }
  // What stands there must be gone.
  return {fixed("a slot", [] { return string("from before"); })};
}

std::vector<Choice> extremesOf(const Native& native, std::size_t place, const Subject&) {
  const Role role = native.roles[place];
  if (!isIndex(role)) return {};
  std::vector<Choice> all;
  for (const long long end : {LLONG_MIN, LLONG_MIN + 1, static_cast<long long>(INT32_MIN), -1LL, 0LL}) {
    all.push_back(exactly(end));
  }
  all.push_back(size(-1, 0));
  all.push_back(size(-1, -1));
  if (role == Role::ArgumentCount) return all;
  if (role == Role::Count || role == Role::Written) {
    for (const long long end : {LLONG_MAX, LLONG_MAX - 1, LLONG_MAX / 2 + 1, 1LL << 60}) all.push_back(exactly(end));
  } else {
    for (const long long end : {LLONG_MAX, LLONG_MAX - 1, static_cast<long long>(INT32_MAX), 1LL << 32, 1LL << 31}) {
      all.push_back(exactly(end));
    }
  }
  all.push_back(size(1, -1));
  all.push_back(size(1, 0));
  all.push_back(size(1, 1));
  return all;
}

Choices ordinary(const Native& native, const Subject& subject) {
  Choices choices;
  for (std::size_t place = 0; place < native.roles.size(); ++place) {
    choices.push_back(choicesOf(native, place, subject).front());
  }
  return choices;
}

std::vector<Choices> combinations(const Native& native, const Subject& subject) {
  const std::size_t kMost = inFull() ? 60 : 1;
  std::vector<Choices> all = {Choices()};
  for (std::size_t place = 0; place < native.roles.size(); ++place) {
    std::vector<Choices> longer;
    for (const Choices& one : all) {
      for (const Choice& choice : choicesOf(native, place, subject)) {
        longer.push_back(one);
        longer.back().push_back(choice);
      }
    }
    if (longer.size() > kMost) return oneAtATime(native, subject);
    all = std::move(longer);
  }
  return all;
}

std::vector<Choices> oneAtATime(const Native& native, const Subject& subject,
                                std::vector<Choice> (*others)(const Native&, std::size_t, const Subject&)) {
  const Choices base = ordinary(native, subject);
  std::vector<Choices> all = {base};
  for (std::size_t place = 0; place < native.roles.size(); ++place) {
    for (const Choice& choice : others(native, place, subject)) {
      if (choice.name == base[place].name) continue;
      all.push_back(base);
      all.back()[place] = choice;
    }
  }
  return all;
}

std::string nameOf(const Native& native, const Choices& choices) {
  std::string name(native.name);
  for (std::size_t i = 0; i < choices.size(); ++i) name += (i == 0 ? "(" : ", ") + choices[i].name;
  return name + (choices.empty() ? "()" : ")");
}

}  // namespace vorn::tests::nets
