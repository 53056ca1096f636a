#include "runtime/embedding/call_shapes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace vorn::runtime {

namespace {

// The letters of a shape, result first, packed into one word: what is looked up at every call must not take longer than
// the call. No packed shape is zero.
using Letters = std::uint64_t;
constexpr std::size_t kMostLetters = sizeof(Letters);

struct Shape {
  Letters letters = 0;
  CallAs call = nullptr;
};

constexpr Letters with(Letters letters, char letter) { return letters << 8 | static_cast<unsigned char>(letter); }

// The letters of "r(ppp)"; zero for a text of another form, or with too many.
Letters lettersOf(const char* shape) noexcept {
  if (shape[0] == '\0' || shape[1] != '(') return 0;
  Letters letters = with(0, shape[0]);
  const char* next = shape + 2;
  for (; *next != ')' && *next != '\0'; ++next) {
    const bool full = letters >> 8 * (kMostLetters - 1) != 0;
    if (full) return 0;
    letters = with(letters, *next);
  }
  return *next == ')' && next[1] == '\0' ? letters : 0;
}

template <class T>
consteval char letterOf() {
  if (std::is_void_v<T>) return 'v';
  if (std::is_pointer_v<T>) return 'h';
  if (std::is_same_v<T, long long>) return 'i';
  if (std::is_same_v<T, int>) return 'n';
  if (std::is_same_v<T, double>) return 'd';
  return 'b';
}

template <class T>
T valueOf(const vorn_word& word) {
  if constexpr (std::is_pointer_v<T>) {
    return word.handle;
  } else if constexpr (std::is_floating_point_v<T>) {
    return word.floating;
  } else if constexpr (std::is_same_v<T, bool>) {
    return word.integer != 0;
  } else {
    return static_cast<T>(word.integer);
  }
}

template <class T>
void store(T value, vorn_word* result) {
  if (result == nullptr) return;
  if constexpr (std::is_pointer_v<T>) {
    result->handle = value;
  } else if constexpr (std::is_floating_point_v<T>) {
    result->floating = value;
  } else {
    result->integer = value;
  }
}

// A parameter that is a pointer to something else, or an unsigned integer, is passed in the same register as the type
// that stands for it here.
template <class Result, class... Parameters>
struct CallOf {
  static_assert(1 + sizeof...(Parameters) <= kMostLetters);

  static void call(vorn_function function, const vorn_word* arguments, vorn_word* result) {
    [=]<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
      auto* const typed = reinterpret_cast<Result (*)(Parameters...)>(function);
      if constexpr (std::is_void_v<Result>) {
        typed(valueOf<Parameters>(arguments[kIndexes])...);
      } else {
        store<Result>(typed(valueOf<Parameters>(arguments[kIndexes])...), result);
      }
    }
    (std::index_sequence_for<Parameters...>());
  }
};

template <class Result, class... Parameters>
consteval Shape shapeOf() {
  Letters letters = with(0, letterOf<Result>());
  ((letters = with(letters, letterOf<Parameters>())), ...);
  return {letters, &CallOf<Result, Parameters...>::call};
}

using Handle = void*;
using Integer = long long;

consteval auto sortedShapes() {
  std::array shapes = {
      shapeOf<void>(),
      shapeOf<void, Handle>(),
      shapeOf<void, Handle, Handle>(),
      shapeOf<void, Handle, Handle, Handle>(),
      shapeOf<void, Handle, bool>(),
      shapeOf<void, Handle, double, Handle>(),
      shapeOf<void, Handle, Integer>(),
      shapeOf<void, Handle, Integer, Handle>(),
      shapeOf<void, Handle, Integer, Integer>(),
      shapeOf<void, Handle, Integer, double>(),
      shapeOf<void, Handle, Integer, bool>(),
      shapeOf<void, Handle, Integer, Integer, Integer, Handle, Handle, Handle>(),
      shapeOf<Handle>(),
      shapeOf<Handle, Handle>(),
      shapeOf<Handle, Handle, Handle>(),
      shapeOf<Handle, Handle, Handle, Integer>(),
      shapeOf<Handle, Handle, Handle, Handle, Handle, Handle>(),
      shapeOf<Handle, Handle, double>(),
      shapeOf<Handle, Handle, Integer>(),
      shapeOf<Handle, Handle, Integer, Handle>(),
      shapeOf<Handle, Handle, Integer, Integer, Integer, Handle, Handle>(),
      shapeOf<Handle, Integer>(),
      shapeOf<Handle, Integer, Handle, Handle>(),
      shapeOf<Handle, Integer, Integer, Integer, Integer, Integer>(),
      shapeOf<Integer, Handle>(),
      shapeOf<Integer, Handle, Handle>(),
      shapeOf<Integer, Handle, Handle, Integer>(),
      shapeOf<Integer, Handle, Integer>(),
      shapeOf<double, Handle>(),
      shapeOf<double, Handle, Integer>(),
      shapeOf<bool, Handle, Handle>(),
      shapeOf<bool, Handle, Handle, Handle>(),
      shapeOf<int, Handle>(),
      shapeOf<int, Handle, Handle>(),
  };
  std::ranges::sort(shapes, {}, &Shape::letters);
  return shapes;
}

constexpr auto kShapes = sortedShapes();
static_assert(std::ranges::adjacent_find(kShapes, {}, &Shape::letters) == kShapes.end(), "each shape stands once");

}  // namespace

CallAs callAs(const char* shape) noexcept {
  const Letters letters = lettersOf(shape);
  const auto found = std::ranges::lower_bound(kShapes, letters, {}, &Shape::letters);
  return found != kShapes.end() && found->letters == letters ? found->call : nullptr;
}

}  // namespace vorn::runtime
