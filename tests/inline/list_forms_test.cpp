// The inline forms of the natives of lists beside the natives themselves: over all element types, classes and storages,
// indexes and values.
#include <vorn/collections/immutable_list.h>

#include "tests/inline/inline_cases.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class ListForms : public RuntimeTest {};

// ---- Receivers ------------------------------------------------------------------------------------------------------

// A list of the class with as many of the palette's values, over and over, as `count`.
Handle filled(bool linked, bool synchronised, const std::string& element, std::size_t count) {
  Handle result = object(className(linked, synchronised, element));
  const Palette palette = paletteOf(element == "Object" ? "" : element);
  for (std::size_t i = 0; i < count; ++i) vorn_collections_ArrayList_add(result, palette[i % palette.size()].value);
  return result;
}

// One whose next element finds no room.
Handle full(const std::string& element) {
  Handle result = filled(false, false, element, 5);
  const ListData& data = *getListData(result);
  const Handle last = vorn_collections_ArrayList_operator_index(result, 1);
  while (data.isUnboxed() ? data.primitive.size != data.primitive.capacity
                          : data.objects.size != data.objects.capacity) {
    vorn_collections_ArrayList_add(result, last);
  }
  return result;
}

std::vector<Receiver> listReceivers() {
  std::vector<Receiver> all;
  const auto add = [&all](const std::string& name, std::function<Handle()> make) {
    all.push_back({name, std::move(make)});
  };
  add("null", [] { return Handle(nullptr); });
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"", "app.Item"});
  for (const std::string& element : elements) {
    for (const bool linked : {false, true}) {
      if (linked && element != "Int" && element != "Float" && !element.empty()) continue;  // all keep handles
      for (const bool synchronised : {false, true}) {
        const std::string name = className(linked, synchronised, element);
        add("empty " + name, [=] { return object(name); });
        add(name, [=] { return filled(linked, synchronised, element, 4); });
      }
    }
    add("full ArrayList<" + element + ">", [=] { return full(element); });
  }
  // Storage that does not follow from the class.
  for (const vorn_element_type type : kTypes) {
    const char* const name = nameOf(type);
    if (isFloating(type)) {
      add(std::string("untyped, adopted ") + name, [=] { return rawDoubles("ArrayList", name, {1.5, 2.5, -3.0}); });
    } else {
      add(std::string("untyped, adopted ") + name, [=] { return rawList("ArrayList", name, {1, 0, 1}); });
    }
    add(std::string("empty, unboxed ") + name,
        [=] { return Handle(vorn_collections_ArrayList_primitiveLiteral0(name)); });
  }
  add("integers under an unknown name", [] { return rawList("ArrayList", "Foo", {1, -2, 3}); });
  add("doubles under an unknown name", [] { return rawDoubles("ArrayList", "Foo", {1.5, -2.5}); });
  add("Ints in a list that declares Byte", [] { return rawList("ArrayList<Byte>", "Int", {300, 1, 2}); });
  add("Longs in a list that declares Char", [] { return rawList("ArrayList<Char>", "Long", {300, 1, 2}); });
  add("boxed, declares Object", [] { return list("ArrayList<Object>", {integer("Int", 1), string("a"), Handle()}); });
  add("boxed, declares String", [] { return list("ArrayList<String>", {string("a"), string("b")}); });
  add("boxed, declares Int", [] {
    Handle result = filled(false, false, "Int", 3);
    vorn_collections_ArrayList_count(result, string("of another type"));
    return result;
  });
  add("immutable", [] {
    Handle result = object("ImmutableList<Int>");
    vorn_collections_ImmutableList_ctor(result, filled(false, false, "Int", 3));
    return result;
  });
  return all;
}

std::string shown(void* handle) { return describe(handle); }
std::string shown(long long value) { return std::to_string(value); }
std::string shown(double value) { return describeNumber(value); }

// ---- Reads ----------------------------------------------------------------------------------------------------------

TEST_F(ListForms, Reads_AnyReceiverTypeAndIndex_AreThoseOfTheNatives) {
  for (const Receiver& receiver : listReceivers()) {
    Triplets lists(receiver, stateOfList);
    long long size = 0;
    lists.expectSame("size", [&](Form form, void* list) {
      size = form == Form::Native   ? vorn_collections_ArrayList_size(list)
             : form == Form::Inline ? vorn_inline_ArrayList_size(list)
                                    : vorn_proven_ArrayList_size(list);
      return shown(size);
    });
    for (const long long index : indexesAround(size)) {
      const std::string at = " at " + std::to_string(index);
      lists.expectSameResult("element" + at, [&](Form form, void* list) {
        const Handle element = form == Form::Native   ? vorn_collections_ArrayList_operator_index(list, index)
                               : form == Form::Inline ? vorn_inline_ArrayList_operator_index(list, index)
                                                      : vorn_proven_ArrayList_operator_index(list, index);
        return shown(element);
      });
      for (const vorn_element_type type : kTypes) {
        lists.expectSameResult(nameOf(type) + at, [&](Form form, void* list) {
          return shown(form == Form::Native   ? vorn_collections_ArrayList_getInt(list, index)
                       : form == Form::Inline ? vorn_inline_ArrayList_getInt(list, index, type)
                                              : vorn_proven_ArrayList_getInt(list, index, type));
        });
        lists.expectSameResult(nameOf(type) + at + ", as double", [&](Form form, void* list) {
          return shown(form == Form::Native   ? vorn_collections_ArrayList_getDouble(list, index)
                       : form == Form::Inline ? vorn_inline_ArrayList_getDouble(list, index, type)
                                              : vorn_proven_ArrayList_getDouble(list, index, type));
        });
      }
    }
    lists.expectSame("all reads", [](Form, void*) { return ""; });
    lists.expectUnlocked(isUnlocked);
  }
}

// ---- Writes ---------------------------------------------------------------------------------------------------------

std::string set(Form form, void* list, long long index, vorn_element_type type, long long value) {
  if (form == Form::Native) {
    vorn_collections_ArrayList_operator_index_eq(list, index, integer(nameOf(type), value));
  } else if (form == Form::Inline) {
    vorn_inline_ArrayList_setInt(list, index, value, type);
  } else {
    vorn_proven_ArrayList_setInt(list, index, value, type);
  }
  return "set";
}

std::string set(Form form, void* list, long long index, vorn_element_type type, double value) {
  if (form == Form::Native) {
    vorn_collections_ArrayList_operator_index_eq(list, index, floating(nameOf(type), value));
  } else if (form == Form::Inline) {
    vorn_inline_ArrayList_setDouble(list, index, value, type);
  } else {
    vorn_proven_ArrayList_setDouble(list, index, value, type);
  }
  return "set";
}

std::string set(Form form, void* list, long long index, bool value) {
  if (form == Form::Native) {
    vorn_collections_ArrayList_operator_index_eq(list, index, boolean(value));
  } else if (form == Form::Inline) {
    vorn_inline_ArrayList_setBool(list, index, value);
  } else {
    vorn_proven_ArrayList_setBool(list, index, value);
  }
  return "set";
}

// Every value at the first index, then one value at every index: once a list has turned to boxes it stays so.
TEST_F(ListForms, RawReplacements_AnyReceiverTypeValueAndIndex_AreThoseOfTheNativeWithABox) {
  for (const Receiver& receiver : listReceivers()) {
    for (const vorn_element_type type : kTypes) {
      Triplets lists(receiver, stateOfList);
      const auto replace = [&](long long index, auto value) {
        lists.expectSame(std::string(nameOf(type)) + " " + shown(value) + " to " + std::to_string(index),
                         [&](Form form, void* list) { return set(form, list, index, type, value); });
      };
      if (type == VORN_BOOLEAN) {
        for (const bool value : {true, false}) {
          lists.expectSame("Boolean", [&](Form form, void* list) { return set(form, list, 0, value); });
        }
      } else if (isFloating(type)) {
        for (const double value : numbersToStore()) replace(0, value);
      } else {
        for (const long long value : integersToStore()) replace(0, value);
      }
      for (const long long index : indexesAround(4)) {
        if (isFloating(type)) {
          replace(index, 2.5);
        } else {
          replace(index, 1LL);
        }
      }
      lists.expectUnlocked(isUnlocked);
    }
  }
}

TEST_F(ListForms, Replacements_AnyReceiverAndValue_AreThoseOfTheNative) {
  const Palette values = paletteOf("");
  for (const Receiver& receiver : listReceivers()) {
    Triplets lists(receiver, stateOfList);
    for (const PaletteEntry& entry : values) {
      for (const long long index : indexesAround(4)) {
        lists.expectSame(shown(entry.value) + " to " + std::to_string(index), [&](Form form, void* list) {
          if (form == Form::Native) vorn_collections_ArrayList_operator_index_eq(list, index, entry.value);
          if (form == Form::Inline) vorn_inline_ArrayList_operator_index_eq(list, index, entry.value);
          if (form == Form::Proven) vorn_proven_ArrayList_operator_index_eq(list, index, entry.value);
          return "set";
        });
      }
    }
  }
}

// ---- Appends --------------------------------------------------------------------------------------------------------

TEST_F(ListForms, RawAppends_AnyReceiverTypeAndValue_AreThoseOfTheNatives) {
  for (const Receiver& receiver : listReceivers()) {
    for (const vorn_element_type type : kTypes) {
      Triplets lists(receiver, stateOfList);
      const char* const name = nameOf(type);
      for (const long long value : integersToStore()) {
        lists.expectSame(std::string("append ") + name + " " + shown(value), [&](Form form, void* list) {
          if (form == Form::Native) vorn_collections_ArrayList_addPrimitiveI64(list, value, name);
          if (form == Form::Inline) vorn_inline_ArrayList_addPrimitiveI64(list, value, type);
          if (form == Form::Proven) vorn_proven_ArrayList_addPrimitiveI64(list, value, type);
          return "append";
        });
      }
      for (const double value : numbersToStore()) {
        lists.expectSame(std::string("append ") + name + " " + shown(value), [&](Form form, void* list) {
          if (form == Form::Native) vorn_collections_ArrayList_addPrimitiveDouble(list, value, name);
          if (form == Form::Inline) vorn_inline_ArrayList_addPrimitiveDouble(list, value, type);
          if (form == Form::Proven) vorn_proven_ArrayList_addPrimitiveDouble(list, value, type);
          return "append";
        });
      }
      lists.expectUnlocked(isUnlocked);
    }
  }
}

TEST_F(ListForms, AppendsOfIntsBooleansAndHandles_AnyReceiver_AreThoseOfTheNatives) {
  const Palette values = paletteOf("");
  for (const Receiver& receiver : listReceivers()) {
    Triplets ints(receiver, stateOfList);
    for (const long long value : integersToStore()) {
      ints.expectSame("append Int " + shown(value), [&](Form form, void* list) {
        if (form == Form::Native) vorn_collections_ArrayList_addInt(list, value);
        if (form == Form::Inline) vorn_inline_ArrayList_addInt(list, value);
        if (form == Form::Proven) vorn_proven_ArrayList_addInt(list, value);
        return "append";
      });
    }
    Triplets truths(receiver, stateOfList);
    for (const bool value : {true, false, true}) {
      truths.expectSame("append Boolean", [&](Form form, void* list) {
        if (form == Form::Native) vorn_collections_ArrayList_addPrimitiveBool(list, value);
        if (form == Form::Inline) vorn_inline_ArrayList_addPrimitiveBool(list, value);
        if (form == Form::Proven) vorn_proven_ArrayList_addPrimitiveBool(list, value);
        return "append";
      });
    }
    Triplets handles(receiver, stateOfList);
    for (const PaletteEntry& entry : values) {
      handles.expectSame("append " + shown(entry.value), [&](Form form, void* list) {
        if (form == Form::Native) vorn_collections_ArrayList_add(list, entry.value);
        if (form == Form::Inline) vorn_inline_ArrayList_add(list, entry.value);
        if (form == Form::Proven) vorn_proven_ArrayList_add(list, entry.value);
        return "append";
      });
    }
  }
}

// ---- Removals -------------------------------------------------------------------------------------------------------

// Every index around each size that the list comes to have.
TEST_F(ListForms, Removals_AnyReceiverAndIndex_AreThoseOfTheNative) {
  for (const Receiver& receiver : listReceivers()) {
    Triplets lists(receiver, stateOfList);
    const Handle counted = receiver.make();
    for (long long size = vorn_collections_ArrayList_size(counted); size >= 0; --size) {
      std::vector<long long> indexes = {size, size + 1, -size - 1, kLeast, kMost};
      indexes.push_back(size % 3 == 1 ? -1 : size % 3 == 2 ? 0 : size - 1);
      for (const long long index : indexes) {
        lists.expectSame("removal at " + std::to_string(index), [&](Form form, void* list) {
          if (form == Form::Native) vorn_collections_ArrayList_removeAt(list, index);
          if (form == Form::Inline) vorn_inline_ArrayList_removeAt(list, index);
          if (form == Form::Proven) vorn_proven_ArrayList_removeAt(list, index);
          return "removal";
        });
      }
    }
    lists.expectUnlocked(isUnlocked);
  }
}

// ---- What is inline -------------------------------------------------------------------------------------------------

// Every form with its quick case: in the list it is for, and in the same list with a lock.
struct QuickCase {
  const char* native;
  std::function<Handle(bool synchronised)> make;
  std::function<void(void* list)> any;
  std::function<void(void* list)> proven;
};

std::vector<QuickCase> quickCases() {
  std::vector<QuickCase> cases;
  const auto unboxed = [](const char* name) {
    return [name](bool synchronised) { return filled(false, synchronised, name, 3); };
  };
  const auto boxed = [](bool synchronised) { return filled(false, synchronised, "", 2); };
  for (const vorn_element_type type : kTypes) {
    const char* const name = nameOf(type);
    if (isFloating(type)) {
      cases.push_back({"ArrayList_getDouble", unboxed(name),
                       [=](void* list) { vorn_inline_ArrayList_getDouble(list, 2, type); },
                       [=](void* list) { vorn_proven_ArrayList_getDouble(list, 2, type); }});
      cases.push_back({"set_boxed_floating", unboxed(name),
                       [=](void* list) { vorn_inline_ArrayList_setDouble(list, 2, 0.5, type); },
                       [=](void* list) { vorn_proven_ArrayList_setDouble(list, 2, 0.5, type); }});
      cases.push_back({"ArrayList_addPrimitiveDouble", unboxed(name),
                       [=](void* list) { vorn_inline_ArrayList_addPrimitiveDouble(list, 0.5, type); },
                       [=](void* list) { vorn_proven_ArrayList_addPrimitiveDouble(list, 0.5, type); }});
      continue;
    }
    cases.push_back({"ArrayList_getInt", unboxed(name),
                     [=](void* list) { vorn_inline_ArrayList_getInt(list, 2, type); },
                     [=](void* list) { vorn_proven_ArrayList_getInt(list, 2, type); }});
    if (type == VORN_BOOLEAN) continue;
    cases.push_back({"set_boxed_integer", unboxed(name),
                     [=](void* list) { vorn_inline_ArrayList_setInt(list, 2, 5, type); },
                     [=](void* list) { vorn_proven_ArrayList_setInt(list, 2, 5, type); }});
    cases.push_back({"ArrayList_addPrimitiveI64", unboxed(name),
                     [=](void* list) { vorn_inline_ArrayList_addPrimitiveI64(list, 5, type); },
                     [=](void* list) { vorn_proven_ArrayList_addPrimitiveI64(list, 5, type); }});
  }
  cases.push_back({"ArrayList_size", unboxed("Int"), [](void* list) { vorn_inline_ArrayList_size(list); },
                   [](void* list) { vorn_proven_ArrayList_size(list); }});
  cases.push_back({"ArrayList_size", boxed, [](void* list) { vorn_inline_ArrayList_size(list); },
                   [](void* list) { vorn_proven_ArrayList_size(list); }});
  cases.push_back({"set_boxed_integer", unboxed("Boolean"),
                   [](void* list) { vorn_inline_ArrayList_setBool(list, 2, true); },
                   [](void* list) { vorn_proven_ArrayList_setBool(list, 2, true); }});
  cases.push_back({"ArrayList_addPrimitiveBool", unboxed("Boolean"),
                   [](void* list) { vorn_inline_ArrayList_addPrimitiveBool(list, true); },
                   [](void* list) { vorn_proven_ArrayList_addPrimitiveBool(list, true); }});
  cases.push_back({"ArrayList_addInt", unboxed("Int"), [](void* list) { vorn_inline_ArrayList_addInt(list, 1); },
                   [](void* list) { vorn_proven_ArrayList_addInt(list, 1); }});
  cases.push_back({"ArrayList_operator_index", boxed, [](void* list) { vorn_inline_ArrayList_operator_index(list, 1); },
                   [](void* list) { vorn_proven_ArrayList_operator_index(list, 1); }});
  cases.push_back({"ArrayList_operator_index_eq", boxed,
                   [](void* list) { vorn_inline_ArrayList_operator_index_eq(list, 1, nullptr); },
                   [](void* list) { vorn_proven_ArrayList_operator_index_eq(list, 1, nullptr); }});
  cases.push_back({"ArrayList_add", boxed, [](void* list) { vorn_inline_ArrayList_add(list, nullptr); },
                   [](void* list) { vorn_proven_ArrayList_add(list, nullptr); }});
  const auto lastOf = [](void* list) { return static_cast<long long>(getListData(list)->logicalSize()) - 1; };
  const auto removeLast = [=](void* list) { vorn_inline_ArrayList_removeAt(list, lastOf(list)); };
  const auto removeLastProven = [=](void* list) { vorn_proven_ArrayList_removeAt(list, lastOf(list)); };
  for (const char* element : {"Int", "Byte", "Double"}) {
    cases.push_back({"ArrayList_removeAt", unboxed(element), removeLast, removeLastProven});
  }
  cases.push_back({"ArrayList_removeAt", boxed, removeLast, removeLastProven});
  // Lists that declare what every value is, or the class of what they are given.
  const auto declaring = [](const char* element) {
    return [element](bool synchronised) { return filled(false, synchronised, element, 2); };
  };
  const auto addTo = [&cases](std::function<Handle(bool)> make, const Handle& value) {
    cases.push_back({"ArrayList_add", make, [=](void* list) { vorn_inline_ArrayList_add(list, value); },
                     [=](void* list) { vorn_proven_ArrayList_add(list, value); }});
    cases.push_back({"ArrayList_operator_index_eq", std::move(make),
                     [=](void* list) { vorn_inline_ArrayList_operator_index_eq(list, 1, value); },
                     [=](void* list) { vorn_proven_ArrayList_operator_index_eq(list, 1, value); }});
  };
  for (const Handle& value : {Handle(), integer("Int", 1), text("a"), item(1)}) addTo(declaring("Object"), value);
  addTo(declaring("app.Item"), item(1));
  return cases;
}

TEST_F(ListForms, QuickCases_PlainList_CallNothing) {
  for (const QuickCase& quick : quickCases()) {
    const Handle list = quick.make(false);
    takeCalls();
    quick.any(list);
    quick.proven(list);
    EXPECT_EQ(takeCalls(), std::vector<std::string>{}) << quick.native << ", " << vorn_type_name(list);
  }
}

TEST_F(ListForms, QuickCases_SynchronisedList_CallTheNative) {
  for (const QuickCase& quick : quickCases()) {
    const Handle list = quick.make(true);
    for (const auto& form : {quick.any, quick.proven}) {
      takeCalls();
      form(list);
      const std::vector<std::string> calls = takeCalls();
      ASSERT_FALSE(calls.empty()) << quick.native << ", " << vorn_type_name(list);
      EXPECT_TRUE(calls.front().ends_with(quick.native)) << calls.front() << " instead of " << quick.native;
    }
    EXPECT_AT_REST(list);
  }
}

}  // namespace
}  // namespace vorn::tests
