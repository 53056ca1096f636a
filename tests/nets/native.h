// How a test calls any native: what its parameters are for, and what is promised of it. The rows stand in catalogue.h.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/nets/faults.h"
#include "tests/support/collections.h"
#include "tests/support/user_objects.h"

namespace vorn::tests::nets {

// What a parameter is for; from this follows what a test passes.
enum class Role {
  Receiver,
  Record,         // the receiver's ListData
  Value,          // a handle that is stored or looked for
  Key,            // the same in a map
  Other,          // another collection, or anything else
  OtherList,      // another list or null
  Index,          // of one element
  Start,          // where a search begins
  Bound,          // of a slice
  Mark,           // whether a bound is given: null or not
  Step,           // of a slice
  Count,          // of elements there shall be
  Written,        // of elements in a data buffer
  ArgumentCount,  // of the handles or integers that follow
  Number,         // a raw element
  Real,
  Truth,
  TypeName,
  Separator,
  Slot  // where a handle goes
};

constexpr bool isIndex(Role role) {
  return role == Role::Index || role == Role::Start || role == Role::Bound || role == Role::Step ||
         role == Role::Count || role == Role::Written || role == Role::ArgumentCount || role == Role::Number;
}

// What is passed for a parameter; which member counts is a matter of the parameter's type.
struct Argument {
  Handle handle;
  long long integer = 0;
  double real = 0.0;
  bool truth = false;
  const char* text = nullptr;
};

// What a native gives. A handle is rooted, a raw pointer is not looked into.
struct Result {
  enum class Sort { Nothing, Handle, Pointer, Integer, Real, Truth };
  Sort sort = Sort::Nothing;
  Handle handle;
  bool pointer = false;  // whether it is one
  long long integer = 0;
  double real = 0.0;
};

// ---- Calling --------------------------------------------------------------------------------------------------------

template <class T>
constexpr bool roleFits(Role role) {
  switch (role) {
    case Role::Receiver:
    case Role::Value:
    case Role::Key:
    case Role::Other:
    case Role::OtherList:
    case Role::Mark:
      return std::is_same_v<T, void*>;
    case Role::Record:
      return std::is_same_v<T, ListData*>;
    case Role::Real:
      return std::is_same_v<T, double>;
    case Role::Truth:
      return std::is_same_v<T, bool>;
    case Role::TypeName:
    case Role::Separator:
      return std::is_same_v<T, const char*>;
    case Role::Slot:
      return std::is_same_v<T, void**>;
    default:
      return std::is_same_v<T, long long>;
  }
}

template <class T>
T passed(Argument& argument) {
  if constexpr (std::is_same_v<T, void*>) return argument.handle.get();
  if constexpr (std::is_same_v<T, void**>) return argument.handle.out();
  if constexpr (std::is_same_v<T, long long>) return argument.integer;
  if constexpr (std::is_same_v<T, double>) return argument.real;
  if constexpr (std::is_same_v<T, bool>) return argument.truth;
  if constexpr (std::is_same_v<T, const char*>) return argument.text;
  if constexpr (std::is_same_v<T, ListData*>) {
    return argument.handle.get() != nullptr ? getListData(argument.handle) : nullptr;
  }
}

// Calls it. Faults that are armed end with the call itself, so that none hits what the test does with the result.
template <auto kFunction, class R, class... P, std::size_t... kPlaces>
Result callWith(R (*)(P...), [[maybe_unused]] std::vector<Argument>& arguments, std::index_sequence<kPlaces...>) {
  Result result;
  const std::tuple<P...> passing{passed<P>(arguments[kPlaces])...};
  const auto call = [&] {
    const ArmedFaults faults;
    return kFunction(std::get<kPlaces>(passing)...);
  };
  if constexpr (std::is_void_v<R>) {
    call();
  } else if constexpr (std::is_same_v<R, void*>) {
    result.sort = Result::Sort::Handle;
    result.handle = call();
  } else if constexpr (std::is_pointer_v<R>) {
    result.sort = Result::Sort::Pointer;
    result.pointer = call() != nullptr;
  } else if constexpr (std::is_same_v<R, bool>) {
    result.sort = Result::Sort::Truth;
    result.integer = call() ? 1 : 0;
  } else if constexpr (std::is_same_v<R, double>) {
    result.sort = Result::Sort::Real;
    result.real = call();
  } else {
    result.sort = Result::Sort::Integer;
    result.integer = call();
  }
  return result;
}

// The name of a function as the compiler spells it, which no row can get wrong.
template <auto kFunction>
constexpr std::string_view nameOf() {
  std::string_view name = __PRETTY_FUNCTION__;
  name.remove_prefix(name.find("Function = ") + 11);
  if (name.front() == '&') name.remove_prefix(1);
  return name.substr(0, name.find_first_of(";]"));
}

// ---- What is promised -----------------------------------------------------------------------------------------------

constexpr unsigned familyBit(Family family) { return 1U << static_cast<unsigned>(family); }
constexpr unsigned hookBit(Hook hook) { return 1U << static_cast<unsigned>(hook); }

enum class Locks { WholeBody, Never };

struct Native {
  std::string_view name;
  std::vector<Role> roles;
  Result (*call)(std::vector<Argument>& arguments);

  unsigned receivers = 0;               // bits of families; none for what makes a collection of its arguments
  const char* ofNull = "";              // what a null receiver gives,
  const char* raisedForNull = nullptr;  // and raises
  Locks locks = Locks::WholeBody;
  unsigned hooks = 0;               // which of user code's it can reach
  bool reads = false;               // leaves the receiver's elements alone,
  bool restores = false;            // though maybe not their storage
  bool random = false;              // what it does differs from call to call
  bool rawPointer = false;          // gives an address in the collection, or refuses to when it is synchronised
  bool keepsPart = false;           // an error in the middle leaves what was done before
  bool constructor = false;         // fills a new collection, and may leave a used one empty or half filled
  bool doesWithout = false;         // gives the same when memory it would have liked is not there
  bool raises = true;               // there are arguments for which it raises
  bool locksOther = false;          // the other collection's lock too
  bool looksAtSourceFirst = false;  // and raises for a bad one even when the receiver is null
  bool allocates = true;            // there are arguments for which it allocates

  [[nodiscard]] bool has(Role role) const {
    for (const Role one : roles) {
      if (one == role) return true;
    }
    return false;
  }
  [[nodiscard]] bool takesReceiver() const { return has(Role::Receiver) || has(Role::Record); }
  // Whether its result is the address of a data buffer, and the collection goes to a slot.
  [[nodiscard]] bool isBuffer() const { return has(Role::Slot) && !takesReceiver(); }
  [[nodiscard]] bool takesIndex() const {
    for (const Role one : roles) {
      if (isIndex(one)) return true;
    }
    return false;
  }
  [[nodiscard]] bool takesReceiverOf(Family family) const { return (receivers & familyBit(family)) != 0; }

  // ---- A row reads as a sentence.

  Native on(unsigned families) && { return receivers = families, *this; }
  Native nullGives(const char* outcome) && { return ofNull = outcome, *this; }
  Native nullRaises(const char* error) && { return raisedForNull = error, *this; }
  Native neverLocks() && { return locks = Locks::Never, *this; }
  Native runs(unsigned hookBits) && { return hooks = hookBits, *this; }
  Native onlyReads() && { return reads = true, *this; }
  Native mayBox() && { return restores = true, *this; }
  Native isRandom() && { return random = true, *this; }
  Native givesAddress() && { return rawPointer = true, *this; }
  Native mayStopHalfway() && { return keepsPart = true, *this; }
  Native constructs() && { return constructor = true, *this; }
  Native canDoWithout() && { return doesWithout = true, *this; }
  Native neverRaises() && { return raises = false, *this; }
  Native neverAllocates() && { return allocates = false, *this; }
  Native refusesBadSourcesFirst() && { return looksAtSourceFirst = true, *this; }
  Native locksBoth() && { return locksOther = true, *this; }
};

template <auto kFunction, Role... kRoles, class R, class... P>
Native nativeOf(std::string_view name, R (*)(P...)) {
  static_assert(sizeof...(kRoles) == sizeof...(P), "a role for each parameter");
  static_assert((roleFits<P>(kRoles) && ...), "a role is that of another type");
  Native native;
  native.name = name;
  native.roles = {kRoles...};
  native.call = [](std::vector<Argument>& arguments) {
    return callWith<kFunction>(kFunction, arguments, std::index_sequence_for<P...>{});
  };
  return native;
}

template <auto kFunction, Role... kRoles>
Native native() {
  return nativeOf<kFunction, kRoles...>(nameOf<kFunction>(), kFunction);
}

// A native of a count and as many arguments, called with at most three of them.
template <auto kFunction, class T>
void* withThree(long long count, T a, T b, T c) {
  return kFunction(count, a, b, c);
}
template <auto kFunction, class T, Role kRole>
Native variadicNative() {
  return nativeOf<withThree<kFunction, T>, Role::ArgumentCount, kRole, kRole, kRole>(nameOf<kFunction>(),
                                                                                     withThree<kFunction, T>);
}

}  // namespace vorn::tests::nets
