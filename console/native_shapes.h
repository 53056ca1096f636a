// Rows of the table of natives, made from the functions: their types say how each is called, and one template for each
// shape calls them all.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "console/natives.h"

namespace vorn::console {

template <class T>
consteval Slot slotOf() {
  if constexpr (std::is_void_v<T>) return Slot::Nothing;
  if constexpr (std::is_same_v<T, void*>) return Slot::Handle;
  if constexpr (std::is_same_v<T, long long>) return Slot::Integer;
  if constexpr (std::is_same_v<T, double>) return Slot::Floating;
  if constexpr (std::is_same_v<T, bool>) return Slot::Boolean;
  if constexpr (std::is_same_v<T, const char*>) return Slot::Text;
  if constexpr (std::is_same_v<T, ListData*>) return Slot::Record;
  if constexpr (std::is_same_v<T, void**>) return Slot::Out;
  if constexpr (std::is_same_v<T, long long*>) return Slot::Longs;
  if constexpr (std::is_same_v<T, double*>) return Slot::Doubles;
}

template <class T>
T take(const RawArgument& argument) {
  constexpr Slot slot = slotOf<T>();
  if constexpr (slot == Slot::Handle) return argument.handle;
  if constexpr (slot == Slot::Integer) return argument.integer;
  if constexpr (slot == Slot::Floating) return argument.floating;
  if constexpr (slot == Slot::Boolean) return argument.boolean;
  if constexpr (slot == Slot::Text) return argument.text;
  if constexpr (slot == Slot::Record) return argument.record;
  if constexpr (slot == Slot::Out) return argument.out;
}

template <class T>
void put(RawResult& result, T value) {
  constexpr Slot slot = slotOf<T>();
  if constexpr (slot == Slot::Integer) {
    result.integer = value;
  } else if constexpr (slot == Slot::Floating) {
    result.floating = value;
  } else if constexpr (slot == Slot::Boolean) {
    result.boolean = value;
  } else if constexpr (slot == Slot::Record) {
    result.record = value;
  } else {
    result.pointer = value;
  }
}

// The name of a function as the compiler spells it in the name of a template's instance.
template <auto function>
consteval std::string_view exportedName() {
  const std::string_view spelled = __PRETTY_FUNCTION__;
  const std::size_t start = spelled.find("vorn_collections_");
  std::size_t end = start;
  while (end < spelled.size() &&
         (spelled[end] == '_' || (spelled[end] >= '0' && spelled[end] <= '9') ||
          (spelled[end] >= 'A' && spelled[end] <= 'Z') || (spelled[end] >= 'a' && spelled[end] <= 'z'))) {
    ++end;
  }
  return spelled.substr(start, end - start);
}

consteval std::size_t countNames(std::string_view names) {
  if (names.empty()) return 0;
  std::size_t count = 1;
  for (const char c : names) count += c == ',' ? 1 : 0;
  return count;
}

template <class Function>
struct Shape;

template <class Result, class... Arguments>
struct Shape<Result (*)(Arguments...)> {
  static constexpr std::array<Slot, sizeof...(Arguments)> slots = {slotOf<Arguments>()...};
  static constexpr Slot result = slotOf<Result>();
  static constexpr bool variadic = false;

  template <auto function>
  static void invoke(std::span<const RawArgument> arguments, RawResult& raw) {
    call<function>(arguments, raw, std::index_sequence_for<Arguments...>());
  }

 private:
  template <auto function, std::size_t... index>
  static void call([[maybe_unused]] std::span<const RawArgument> arguments, [[maybe_unused]] RawResult& raw,
                   std::index_sequence<index...>) {
    if constexpr (std::is_void_v<Result>) {
      function(take<Arguments>(arguments[index])...);
    } else {
      put<Result>(raw, function(take<Arguments>(arguments[index])...));
    }
  }
};

// A count and so many values of one type. C passes arguments beyond those that are read at no harm, so that one call
// with all there may be serves every count.
template <class Element>
struct VariadicShape {
  static constexpr std::array<Slot, 2> slots = {Slot::Integer, slotOf<Element>()};
  static constexpr Slot result = Slot::Handle;
  static constexpr bool variadic = true;

  template <auto function>
  static void invoke(std::span<const RawArgument> arguments, RawResult& raw) {
    std::array<Element, kMostVariadic> values = {};
    const std::span<const RawArgument> given = arguments.subspan(1);
    for (std::size_t i = 0; i < given.size(); ++i) values[i] = take<Element>(given[i]);
    raw.pointer = call<function>(arguments[0].integer, values, std::make_index_sequence<kMostVariadic>());
  }

 private:
  template <auto function, std::size_t... index>
  static void* call(long long count, const std::array<Element, kMostVariadic>& values, std::index_sequence<index...>) {
    return function(count, values[index]...);
  }
};

template <auto function, class FunctionShape>
consteval NativeRow makeRow(std::string_view argumentNames, Effect effect, std::string_view description, Gives gives) {
  constexpr std::string_view kPrefix = "vorn_collections_";
  constexpr std::string_view exported = exportedName<function>();
  constexpr std::size_t underscore = exported.find('_', kPrefix.size());
  static_assert(exported.starts_with(kPrefix) && underscore != std::string_view::npos);
  if (countNames(argumentNames) != FunctionShape::slots.size()) throw "a name for each argument";
  NativeRow row;
  row.exportedName = exported;
  row.className = exported.substr(kPrefix.size(), underscore - kPrefix.size());
  row.method = exported.substr(underscore + 1);
  row.argumentNames = argumentNames;
  row.description = description;
  row.slots = FunctionShape::slots;
  row.result = FunctionShape::result;
  row.gives = gives;
  row.effect = effect;
  row.variadic = FunctionShape::variadic;
  row.invoke = &FunctionShape::template invoke<function>;
  return row;
}

// The row of a native.
template <auto function>
consteval NativeRow native(std::string_view argumentNames, Effect effect, std::string_view description,
                           Gives gives = Gives::ByType) {
  return makeRow<function, Shape<decltype(function)>>(argumentNames, effect, description, gives);
}

// The row of a native that takes a count and values of the given type.
template <auto function, class Element>
consteval NativeRow variadicNative(std::string_view argumentNames, std::string_view description) {
  return makeRow<function, VariadicShape<Element>>(argumentNames, Effect::Reads, description, Gives::ByType);
}

}  // namespace vorn::console
