// Type names as text: short names, families, arguments, interning; type names of values and instance tests.

#include "collections/core/port/type_names.h"
#include "collections/core/port/objects.h"
#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using TypeNames = RuntimeTest;
using vorn::compiler::ClassLoader;

TEST_F(TypeNames, ShortName_IsWhatFollowsTheModule) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", ""},
      {"Int", "Int"},
      {"vorn.Int", "Int"},
      {"vorn.collections.Map<vorn.String, Int>", "Map<vorn.String, Int>"},
      {"Map<vorn.String, Int>", "Map<vorn.String, Int>"},
      {"a.b.c.D", "D"},
      {"a.", ""},
      {".", ""},
      {"<a.b>", "<a.b>"}};
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(shortTypeName(name), expected) << name;
    EXPECT_EQ(shortTypeNameLocal(name), expected) << name;
  }
}

TEST_F(TypeNames, ShortName_IsASuffixOfItsArgument) {
  const std::string_view name = "vorn.collections.ArrayList<vorn.Int>";
  EXPECT_EQ(shortTypeName(name).data() + shortTypeName(name).size(), name.data() + name.size());
  EXPECT_EQ(shortTypeNameLocal(name).data(), name.data() + 17);
}

TEST_F(TypeNames, BaseName_HasNeitherModuleNorArguments) {
  EXPECT_EQ(runtimeCollectionBaseName("vorn.collections.LinkedList<Int>"), "LinkedList");
  EXPECT_EQ(runtimeCollectionBaseName("vorn.collections.Map<vorn.String,app.Foo>"), "Map");
  EXPECT_EQ(runtimeCollectionBaseName("ArrayListSync"), "ArrayListSync");
  EXPECT_EQ(runtimeCollectionBaseName("app.Point"), "Point");
  EXPECT_EQ(runtimeCollectionBaseName(""), "");
}

// The families that a collection class belongs to, one letter per predicate.
std::string familiesOf(std::string_view name) {
  std::string families;
  if (isArrayListLike(name)) families += "L";
  if (isSyncArrayListLike(name)) families += "s";
  if (isLinkedListLike(name)) families += "k";
  if (isImmutableListLike(name)) families += "I";
  if (isIListLike(name)) families += "i";
  if (isArrayLike(name)) families += "A";
  if (isSyncArrayLike(name)) families += "a";
  if (isTupleLike(name)) families += "T";
  if (isMapLike(name)) families += "M";
  if (isHashSetLike(name)) families += "H";
  if (isSyncHashSetLike(name)) families += "h";
  return families;
}

TEST_F(TypeNames, Families_OfEveryCollectionInEverySpelling) {
  const std::pair<std::string, std::string_view> cases[] = {
      {"ArrayList", "Li"},        {"ArrayListSync", "Lsi"}, {"LinkedList", "Lki"},
      {"LinkedListSync", "Lski"}, {"ImmutableList", "Ii"},  {"Array", "A"},
      {"ArraySync", "Aa"},        {"Tuple", "T"},           {"Map", "M"},
      {"HashMapSync", "M"},       {"SortedMap", "M"},       {"SortedMapSync", "M"},
      {"HashSet", "H"},           {"HashSetSync", "Hh"}};
  for (const auto& [name, families] : cases) {
    EXPECT_EQ(familiesOf(name), families) << name;
    EXPECT_EQ(familiesOf(name + "<app.Foo>"), families) << name;
    EXPECT_EQ(familiesOf("vorn.collections." + name), families) << name;
    EXPECT_EQ(familiesOf("vorn.collections." + name + "<Map<String, vorn.Int>>"), families) << name;
    EXPECT_EQ(familiesOf("app." + name), "") << name;
    EXPECT_EQ(familiesOf("vorn." + name), "") << name;
    EXPECT_EQ(familiesOf("vorn.collections.app." + name), "") << name;
    EXPECT_EQ(familiesOf(name + "X"), "") << name;
    EXPECT_EQ(familiesOf(name.substr(1)), "") << name;
  }
  for (const char* name : {"", "Int", "vorn.Int", "String", "Object", "IList", "List", "<Int>", "vorn.collections.",
                           "HashMap", "ArrayLisp", "SortedMop"}) {
    EXPECT_EQ(familiesOf(name), "") << name;
  }
}

TEST_F(TypeNames, FloatingNumbers_AreFloatAndDoubleByShortName) {
  EXPECT_TRUE(isFloatingNumberShortType("Float"));
  EXPECT_TRUE(isFloatingNumberShortType("Double"));
  for (const char* name : {"", "Int", "vorn.Double", "double", "Floats"}) EXPECT_FALSE(isFloatingNumberShortType(name));
}

TEST_F(TypeNames, GenericArguments_AreSplitAtTheOuterLevel) {
  std::vector<std::string> arguments;
  EXPECT_TRUE(ClassLoader::resolveConcreteGenericArgs("Array<Map<String, Int>>", arguments));
  EXPECT_EQ(arguments, (std::vector<std::string>{"Map<String, Int>"}));
  EXPECT_TRUE(
      ClassLoader::resolveConcreteGenericArgs("vorn.collections.Map< vorn.String ,Array<Array<Int>>>", arguments));
  EXPECT_EQ(arguments, (std::vector<std::string>{"vorn.String", "Array<Array<Int>>"}));
  EXPECT_TRUE(ClassLoader::resolveConcreteGenericArgs("Tuple<A,Map<B,C>,D>", arguments));
  EXPECT_EQ(arguments, (std::vector<std::string>{"A", "Map<B,C>", "D"}));
}

TEST_F(TypeNames, GenericArguments_OfNamesWithoutThem_AreNone) {
  for (const char* name : {"", "Array", "Array<", "Array<>", "Array< >", "Array<Int", "Array<Int,>", "Array<,Int>",
                           "Array<Int>>", "Array<Int>x", "Array<Int>,B<Int>", "<Int>", "Array>Int<"}) {
    std::vector<std::string> arguments = {"left over"};
    EXPECT_FALSE(ClassLoader::resolveConcreteGenericArgs(name, arguments)) << name;
    EXPECT_TRUE(arguments.empty()) << name;
  }
}

TEST_F(TypeNames, InternedNames_AreEqualExactlyWhenTheTextsAre) {
  for (const char* name : {"Int", "Boolean", "CodeUnit", "Object", "app.Foo", "Map<String,Int>", "Inz"}) {
    const std::string copy = name;
    EXPECT_EQ(internRuntimeTypeName(name).name, internRuntimeTypeName(copy).name) << name;
    EXPECT_EQ(internRuntimeTypeName(name).get(), name);
  }
  EXPECT_NE(internRuntimeTypeName("Int").name, internRuntimeTypeName("UInt").name);
  EXPECT_EQ(internRuntimeTypeName("").name, nullptr);
}

TEST_F(TypeNames, NamesMadeByManyThreadsAtOnce_AreOne) {
  constexpr int kThreads = 4;
  constexpr int kNames = 300;
  std::vector<std::vector<const void*>> seen(kThreads);
  runTogether(kThreads, [&](int t) {
    for (int i = 0; i < kNames; ++i) {
      const std::string element = "race.Type" + std::to_string(i);
      seen[t].push_back(internRuntimeTypeName(element).name);
      const Handle list = object("ArrayList<" + element + ">");
      seen[t].push_back(vorn_type_name(list));
    }
  });
  for (int t = 1; t < kThreads; ++t) EXPECT_EQ(seen[t], seen[0]);
}

TEST_F(TypeNames, EveryValue_NamesItsType) {
  const std::pair<Handle, const char*> cases[] = {
      {integer("SByte", 1), "vorn.SByte"},
      {integer("ULong", 1), "vorn.ULong"},
      {integer("Char", 'a'), "vorn.Char"},
      {integer("CodeUnit", 'a'), "vorn.CodeUnit"},
      {boolean(true), "vorn.Boolean"},
      {floating("Float", 1), "vorn.Float"},
      {string("s"), "vorn.String"},
      {text("s"), "vorn.String"},
      {object("Object"), "vorn.Object"},
      {object("Type"), "vorn.Type"},
      {object("ArrayList"), "vorn.collections.ArrayList"},
      {object("vorn.collections.LinkedListSync"), "vorn.collections.LinkedListSync"},
      {object("ArrayList<Int>"), "vorn.collections.ArrayList<Int>"},
      {object("ArrayList< vorn.Int >"), "vorn.collections.ArrayList<Int>"},
      {object("ArrayList<vorn.String>"), "vorn.collections.ArrayList<String>"},
      {object("ArrayList<app.Foo>"), "vorn.collections.ArrayList<app.Foo>"},
      {object("ArrayList<Map<String, vorn.Int>>"), "vorn.collections.ArrayList<Map<String, vorn.Int>>"},
      {plain(1), "app.Plain"}};
  for (const auto& [handle, name] : cases) EXPECT_STREQ(Vorn_objectTypeName(handle), name);
  EXPECT_EQ(Vorn_objectTypeName(nullptr), nullptr);
}

TEST_F(TypeNames, TypeName_IsTheSameTextForAllInstances) {
  EXPECT_EQ(vorn_type_name(object("ArrayList<Int>")), vorn_type_name(object("vorn.collections.ArrayList<vorn.Int>")));
}

TEST_F(TypeNames, InstanceTests_AcceptShortFullAndGenericNames) {
  const Handle list = object("ArrayList<Int>");
  for (const char* name : {"ArrayList<Int>", "vorn.collections.ArrayList<Int>", "ArrayList<vorn.Int>",
                           "ArrayList< Int >", "ArrayList", "vorn.collections.ArrayList", "IList", "IList<Int>",
                           "vorn.collections.IList<vorn.Int>", "Object", "vorn.Object"}) {
    EXPECT_TRUE(Vorn_isInstanceOf(list, name)) << name;
  }
  for (const char* name : {"", "ArrayList<Long>", "ArrayListSync", "LinkedList", "ImmutableList", "app.ArrayList",
                           "vorn.ArrayList", "IList<Long>", "Int", "ArrayList<Int", "ArrayList<Int,Int>"}) {
    EXPECT_FALSE(Vorn_isInstanceOf(list, name)) << name;
  }
}

TEST_F(TypeNames, InstanceTests_SeeThroughSpellingsAtEveryDepth) {
  const Handle list = object("ArrayList<Map<String, ArrayList<vorn.Int>>>");
  EXPECT_TRUE(Vorn_isInstanceOf(list, "vorn.collections.ArrayList<vorn.collections.Map<vorn.String,ArrayList<Int>>>"));
  EXPECT_FALSE(Vorn_isInstanceOf(list, "ArrayList<Map<String,ArrayList<Long>>>"));
  EXPECT_FALSE(Vorn_isInstanceOf(list, "ArrayList<Map<String>>"));
}

TEST_F(TypeNames, InstanceTests_KeepTheListClassesApart) {
  EXPECT_TRUE(Vorn_isInstanceOf(object("ArrayListSync"), "ArrayListSync"));
  EXPECT_FALSE(Vorn_isInstanceOf(object("ArrayListSync"), "ArrayList"));
  EXPECT_FALSE(Vorn_isInstanceOf(object("LinkedList"), "ArrayList"));
  EXPECT_TRUE(Vorn_isInstanceOf(object("ImmutableList"), "IList"));
}

TEST_F(TypeNames, InstanceTests_OfTextsAndNull) {
  for (const Handle& handle : {string("s"), text("s")}) {
    EXPECT_TRUE(Vorn_isInstanceOf(handle, "String"));
    EXPECT_TRUE(Vorn_isInstanceOf(handle, "vorn.String"));
    EXPECT_TRUE(Vorn_isInstanceOf(handle, "Object"));
    EXPECT_FALSE(Vorn_isInstanceOf(handle, "Int"));
  }
  EXPECT_FALSE(Vorn_isInstanceOf(nullptr, "Object"));
  EXPECT_FALSE(Vorn_isInstanceOf(nullptr, "String"));
  EXPECT_FALSE(Vorn_isInstanceOf(string("s"), nullptr));
}

TEST_F(TypeNames, VeryDeepNames_EndTheTestWithoutAnAnswer) {
  std::string name = "Int";
  for (int i = 0; i < 100000; ++i) name = i < 200 ? "ArrayList<" + name + ">" : name;
  const Handle list = object("ArrayList<Int>");
  EXPECT_FALSE(Vorn_isInstanceOf(list, name.c_str()));
  const Handle deep = object(name);
  EXPECT_TRUE(Vorn_isInstanceOf(deep, name.c_str()));
}

}  // namespace
}  // namespace vorn::tests
