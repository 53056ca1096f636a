// The inline forms of the natives of arrays and tuples beside the natives themselves.
#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "tests/inline/inline_cases.h"

namespace vorn::tests {
namespace {

class ArrayForms : public RuntimeTest {};

Handle arrayOf(const std::string& type, long long size, const std::string& element) {
  Handle result = object(type);
  vorn_collections_Array_ctor(result, size);
  const Palette palette = paletteOf(element);
  for (long long i = 0; i < size; ++i) {
    vorn_collections_Array_operator_index_eq(result, i, palette[static_cast<std::size_t>(i) % palette.size()].value);
  }
  return result;
}

std::string stateOfArray(void* array) {
  const ArrayData& data = *getArrayData(array);
  std::string state = std::string(data.elementType.get()) + ":";
  if (data.isUnboxed()) {
    const std::uint64_t bytes = data.primitive.size * data.primitive.elementSize;
    for (std::uint64_t i = 0; i < bytes; ++i) state += ' ' + std::to_string(data.primitive.data[i]);
  } else {
    for (std::uint64_t i = 0; i < data.objects.size; ++i) state += ' ' + describe(data.objects.data[i]);
  }
  return state + collections::validateArrayData(data);
}

bool isArrayUnlocked(void* array) { return !isRecordLocked(*getArrayData(array)); }

std::vector<Receiver> arrayReceivers() {
  std::vector<Receiver> all{{"null", [] { return Handle(nullptr); }}};
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"Object", "app.Item", "vorn.Char", "vorn.UInt"});
  for (const std::string& element : elements) {
    for (const char* const name : {"Array", "ArraySync"}) {
      const std::string type = std::string(name) + "<" + element + ">";
      const std::string values = element == "Object" ? "" : element.starts_with("vorn.") ? element.substr(5) : element;
      all.push_back({type + " without a constructor", [=] { return object(type); }});
      for (const long long size : {0, 3, 70}) {
        if (size == 70 && element != "Int" && element != "Object") continue;
        all.push_back({type + " of " + std::to_string(size), [=] { return arrayOf(type, size, values); }});
      }
    }
  }
  all.push_back({"copy", [] {
                   Handle result = object("Array<Object>");
                   vorn_collections_Array_copyCtor(result, arrayOf("Array<Short>", 3, "Short"));
                   return result;
                 }});
  all.push_back({"synchronised copy", [] {
                   Handle result = object("ArraySync<Object>");
                   vorn_collections_Array_copyCtor(result, arrayOf("Array<Short>", 3, "Short"));
                   return result;
                 }});
  return all;
}

TEST_F(ArrayForms, Reads_AnyReceiverTypeAndIndex_AreThoseOfTheNatives) {
  for (const Receiver& receiver : arrayReceivers()) {
    Triplets arrays(receiver, stateOfArray);
    long long size = 0;
    arrays.expectSame("size", [&](Form form, void* array) {
      size = form == Form::Native   ? vorn_collections_Array_size(array)
             : form == Form::Inline ? vorn_inline_Array_size(array)
                                    : vorn_proven_Array_size(array);
      return std::to_string(size);
    });
    for (const long long index : indexesAround(size)) {
      const std::string at = " at " + std::to_string(index);
      arrays.expectSameResult("element" + at, [&](Form form, void* array) {
        const Handle element = form == Form::Native   ? vorn_collections_Array_operator_index(array, index)
                               : form == Form::Inline ? vorn_inline_Array_operator_index(array, index)
                                                      : vorn_proven_Array_operator_index(array, index);
        return describe(element);
      });
      for (const vorn_element_type type : kTypes) {
        arrays.expectSameResult(nameOf(type) + at, [&](Form form, void* array) {
          return std::to_string(form == Form::Native   ? vorn_collections_Array_getInt(array, index)
                                : form == Form::Inline ? vorn_inline_Array_getInt(array, index, type)
                                                       : vorn_proven_Array_getInt(array, index, type));
        });
        arrays.expectSameResult(nameOf(type) + at + ", as double", [&](Form form, void* array) {
          return describeNumber(form == Form::Native   ? vorn_collections_Array_getDouble(array, index)
                                : form == Form::Inline ? vorn_inline_Array_getDouble(array, index, type)
                                                       : vorn_proven_Array_getDouble(array, index, type));
        });
      }
    }
    arrays.expectUnlocked(isArrayUnlocked);
  }
}

TEST_F(ArrayForms, Writes_AnyReceiverTypeValueAndIndex_AreThoseOfTheNatives) {
  for (const Receiver& receiver : arrayReceivers()) {
    Triplets arrays(receiver, stateOfArray);
    for (const vorn_element_type type : kTypes) {
      const auto setInteger = [&](long long index, long long value) {
        arrays.expectSame(std::string(nameOf(type)) + " " + std::to_string(value) + " to " + std::to_string(index),
                          [&](Form form, void* array) {
                            if (form == Form::Native) vorn_collections_Array_setInt(array, index, value);
                            if (form == Form::Inline) vorn_inline_Array_setInt(array, index, value, type);
                            if (form == Form::Proven) vorn_proven_Array_setInt(array, index, value, type);
                            return "";
                          });
      };
      const auto setNumber = [&](long long index, double value) {
        arrays.expectSame(std::string(nameOf(type)) + " " + describeNumber(value) + " to " + std::to_string(index),
                          [&](Form form, void* array) {
                            if (form == Form::Native) vorn_collections_Array_setDouble(array, index, value);
                            if (form == Form::Inline) vorn_inline_Array_setDouble(array, index, value, type);
                            if (form == Form::Proven) vorn_proven_Array_setDouble(array, index, value, type);
                            return "";
                          });
      };
      for (const long long value : integersToStore()) setInteger(0, value);
      for (const double value : numbersToStore()) setNumber(1, value);
      for (const long long index : indexesAround(3)) {
        setInteger(index, 65);
        setNumber(index, 2.5);
      }
    }
    for (const long long index : indexesAround(3)) {
      for (const bool value : {true, false}) {
        arrays.expectSame("Boolean to " + std::to_string(index), [&](Form form, void* array) {
          if (form == Form::Native) vorn_collections_Array_setBool(array, index, value);
          if (form == Form::Inline) vorn_inline_Array_setBool(array, index, value);
          if (form == Form::Proven) vorn_proven_Array_setBool(array, index, value);
          return "";
        });
      }
    }
    arrays.expectUnlocked(isArrayUnlocked);
  }
}

// What forms of a type call for an array of that type.
std::vector<std::string> callsOfForms(void* array, vorn_element_type type) {
  takeCalls();
  vorn_inline_Array_size(array);
  vorn_proven_Array_size(array);
  if (type == VORN_HANDLES) {
    vorn_inline_Array_operator_index(array, 1);
    vorn_proven_Array_operator_index(array, 1);
  } else if (isFloating(type)) {
    vorn_inline_Array_getDouble(array, 1, type);
    vorn_proven_Array_getDouble(array, 1, type);
    vorn_inline_Array_setDouble(array, 1, 2.5, type);
    vorn_proven_Array_setDouble(array, 1, 2.5, type);
  } else {
    vorn_inline_Array_getInt(array, 1, type);
    vorn_proven_Array_getInt(array, 1, type);
    vorn_inline_Array_setInt(array, 1, 65, type);
    vorn_proven_Array_setInt(array, 1, 65, type);
    if (type == VORN_BOOLEAN) {
      vorn_inline_Array_setBool(array, 1, true);
      vorn_proven_Array_setBool(array, 1, true);
    }
  }
  return takeCalls();
}

TEST_F(ArrayForms, QuickCases_PlainArray_CallNothing) {
  for (const vorn_element_type type : kTypes) {
    const std::string name = nameOf(type);
    const Handle array = arrayOf("Array<" + name + ">", 3, name);
    EXPECT_EQ(callsOfForms(array, type), std::vector<std::string>{}) << name;
  }
  const Handle array = arrayOf("Array<Object>", 3, "");
  EXPECT_EQ(callsOfForms(array, VORN_HANDLES), std::vector<std::string>{});
}

TEST_F(ArrayForms, QuickCases_SynchronisedArray_CallTheNatives) {
  for (const vorn_element_type type : kTypes) {
    const std::string name = nameOf(type);
    const Handle array = arrayOf("ArraySync<" + name + ">", 3, name);
    EXPECT_EQ(callsOfForms(array, type).size(), type == VORN_BOOLEAN ? 8U : 6U) << name;
  }
  const Handle array = arrayOf("ArraySync<Object>", 3, "");
  EXPECT_EQ(callsOfForms(array, VORN_HANDLES).size(), 4U);
}

// ---- Tuples ---------------------------------------------------------------------------------------------------------

Handle tupleOf(const std::vector<Handle>& items, long long size) {
  std::vector<void*> handles(items.begin(), items.end());
  Handle result = vorn_tuple_new("Tuple", handles.data(), handles.size());
  vorn_field_set_integer(result, "size", size);
  return result;
}

TEST_F(ArrayForms, Items_AnyTupleAndIndex_AreThoseOfTheNative) {
  const Handle one = integer("Int", 1);
  const Handle two = string("two");
  const std::vector<Receiver> tuples = {
      {"null", [] { return Handle(nullptr); }},
      {"empty", [] { return tupleOf({}, 0); }},
      {"pair",
       [&] {
         return tupleOf({one, two}, 2);
       }},
      {"six",
       [&] {
         return tupleOf({one, two, one, two, one, two}, 6);
       }},
      {"with a null",
       [&] {
         return tupleOf({one, Handle(), two}, 3);
       }},
      {"that says it is longer",
       [&] {
         return tupleOf({one, two}, 1'000'000);
       }},
      {"that says it is shorter",
       [&] {
         return tupleOf({one, two}, 1);
       }},
      {"of a negative size",
       [&] {
         return tupleOf({one, two}, -2);
       }},
      {"of the least size",
       [&] {
         return tupleOf({one, two}, kLeast);
       }},
      {"of the largest size",
       [&] {
         return tupleOf({one, two}, kMost);
       }},
  };
  for (const Receiver& receiver : tuples) {
    Triplets triplets(receiver, [](void*) { return ""; });
    for (const long long size : {0, 2, 6, 1'000'000}) {
      for (const long long index : indexesAround(size)) {
        triplets.expectSame("item " + std::to_string(index), [&](Form form, void* tuple) {
          return describe(form == Form::Native   ? vorn_collections_Tuple_operator_index(tuple, index)
                          : form == Form::Inline ? vorn_inline_Tuple_operator_index(tuple, index)
                                                 : vorn_proven_Tuple_operator_index(tuple, index));
        });
      }
    }
  }
}

TEST_F(ArrayForms, Item_InRange_CallsNothing) {
  const Handle tuple = tupleOf({integer("Int", 1), string("two")}, 2);
  takeCalls();
  EXPECT_EQ(describe(vorn_inline_Tuple_operator_index(tuple, 1)), "String two");
  EXPECT_EQ(describe(vorn_proven_Tuple_operator_index(tuple, 0)), "Int 1");
  EXPECT_EQ(takeCalls(), std::vector<std::string>{});
}

}  // namespace
}  // namespace vorn::tests
