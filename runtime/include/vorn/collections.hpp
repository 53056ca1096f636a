// The collections for C++20: lists, arrays, maps, sets and tuples of the language as typed handles that look after
// roots, boxes and errors. Header only, over <vorn/runtime.hpp> and the C headers, with which it may be mixed freely:
//
//   vorn::RuntimeScope runtime;
//   vorn::map<std::string, int> ages{{"Ada", 36}};
//   ages["Grace"] = 45;
//   for (const auto& [name, age] : ages) std::cout << name << ' ' << age << '\n';
//
//   list<T>, linked_list<T>, immutable_list<T>    <vorn/cpp/list.hpp>
//   array<T>                                      <vorn/cpp/array.hpp>
//   map<K, V>, sorted_map<K, V>                   <vorn/cpp/map.hpp>
//   set<T>                                        <vorn/cpp/set.hpp>
//   tuple<T...>                                   <vorn/cpp/tuple.hpp>
//   value, string                                 <vorn/cpp/value.hpp>
//   which C++ types elements may be of            <vorn/cpp/elements.hpp>
//   error, index_error, ...                       <vorn/cpp/errors.hpp>
//
// A second argument `vorn::synchronized` (a third one of maps) names the class with a lock.
//
// All of these objects are handles: a copy refers to the same collection, clone() makes another one. None is ever null.
// from_handle() adopts a handle of the C API after a look at its class, handle() gives one. Threads that share one such
// object must agree on who assigns it and when; what they may do to the collection depends on its class.
//
// Needs exceptions. docs/cpp.md is the guide.
#ifndef VORN_COLLECTIONS_HPP
#define VORN_COLLECTIONS_HPP

#include <vorn/cpp/array.hpp>
#include <vorn/cpp/hash.hpp>
#include <vorn/cpp/list.hpp>
#include <vorn/cpp/map.hpp>
#include <vorn/cpp/set.hpp>
#include <vorn/cpp/tuple.hpp>
#include <vorn/cpp/value.hpp>

#endif
