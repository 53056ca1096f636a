#include "tests/support/sources.h"

#include <vorn/collections/array.h>
#include <vorn/collections/immutable_list.h>

#include <cstring>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_names.h"
#include "tests/support/lists.h"
#include "tests/support/sequences.h"

namespace vorn::tests {

namespace {

SourceCase sourceCase(const std::string& name, const Handle& source, void* (*at)(void*, long long), long long size) {
  std::vector<Handle> items;
  for (long long i = 0; i < size; ++i) items.emplace_back(at(source, i));
  return {name, source, tupleOf(items)};
}
SourceCase listCase(const std::string& name, const Handle& source) {
  return sourceCase(name, source, vorn_collections_ArrayList_operator_index, vorn_collections_ArrayList_size(source));
}
SourceCase arrayCase(const std::string& name, const Handle& source) {
  return sourceCase(name, source, vorn_collections_Array_operator_index, vorn_collections_Array_size(source));
}

// Unboxed elements whose bytes compiled code wrote: Chars that are no scalars, Booleans other than 0 and 1, the upper
// half of ULong.
Handle writtenList(const char* type, const std::vector<unsigned char>& bytes, long long count) {
  Handle result;
  void* list = nullptr;
  void* const elements = vorn_collections_ArrayList_newPrimitiveData(count, type, &list);
  result = list;
  std::memcpy(elements, bytes.data(), bytes.size());
  return result;
}

}  // namespace

std::vector<SourceCase> unboxedLists(bool synchronised) {
  std::vector<SourceCase> cases;
  const std::string suffix = synchronised ? " synchronised" : "";
  for (const std::string& element : primitiveNames()) {
    cases.push_back(listCase(element + suffix, paletteList(false, synchronised, element)));
  }
  const std::string plain = className(false, synchronised);
  cases.push_back(listCase("Foo" + suffix, rawList(plain, "Foo", {5, 1LL << 40})));
  cases.push_back(listCase("small Foo" + suffix, rawList(plain, "Foo", {5, 6})));
  if (!synchronised) {
    cases.push_back(listCase("no scalars", writtenList("Char", {65, 0, 0, 0, 0, 0xD8, 0, 0}, 2)));
    cases.push_back(listCase("true bytes", writtenList("Boolean", {2, 0, 255}, 3)));
    cases.push_back(listCase("upper half", writtenList("ULong", std::vector<unsigned char>(16, 255), 2)));
    cases.push_back(listCase("none", object("ArrayList<Int>")));
    Handle mirrored;
    void* list = nullptr;
    long long* const integers = vorn_collections_ArrayList_newPrimitiveI64Data(2, "Double", &list);
    mirrored = list;
    integers[0] = 5;
    integers[1] = -6;
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(mirrored, 2);
    cases.push_back(listCase("Long named Double", mirrored));
    double* const doubles = vorn_collections_ArrayList_newDoubleData(2, "Int", &list);
    mirrored = list;
    doubles[0] = 2.5;
    doubles[1] = -3;
    vorn_collections_ArrayList_commitDoubleDataSize(mirrored, 2);
    cases.push_back(listCase("Double named Int", mirrored));
  }
  return cases;
}

std::vector<SourceCase> unboxedImmutables() {
  std::vector<SourceCase> cases;
  for (const SourceCase& from : unboxedLists(false)) {
    const Handle result = object("ImmutableList");
    vorn_collections_ImmutableList_ctor(result, from.source);
    cases.push_back(listCase("immutable " + from.name, result));
  }
  return cases;
}

std::vector<SourceCase> slotArrays(bool synchronised) {
  std::vector<SourceCase> cases;
  for (const std::string& element : primitiveNames()) {
    const Palette palette = paletteOf(element);
    const Handle array = object((synchronised ? "ArraySync<" : "Array<") + element + ">");
    vorn_collections_Array_ctor(array, static_cast<long long>(palette.size()));
    for (std::size_t i = 0; i < palette.size(); ++i) {
      vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), palette[i].value);
    }
    cases.push_back(arrayCase(std::string("array of ") + element + (synchronised ? " synchronised" : ""), array));
  }
  const Handle broken = object("Array<Char>");
  vorn_collections_Array_ctor(broken, 3);
  vorn_collections_Array_setDouble(broken, 1, 0xD800);
  cases.push_back(arrayCase("array of Char with no scalar", broken));
  const Handle odd = object("Array<Int>");
  vorn_collections_Array_ctor(odd, 2);
  getArrayData(odd)->elementType = internRuntimeTypeName("app.Foo");
  vorn_collections_Array_setInt(odd, 0, 3);
  cases.push_back(arrayCase("array of Foo", odd));
  return cases;
}

std::vector<SourceCase> unboxedSources() {
  std::vector<SourceCase> cases = unboxedLists(false);
  for (const std::vector<SourceCase>& more :
       {unboxedLists(true), unboxedImmutables(), slotArrays(false), slotArrays(true)}) {
    cases.insert(cases.end(), more.begin(), more.end());
  }
  return cases;
}

}  // namespace vorn::tests
