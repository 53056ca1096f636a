// What a player knows of its own keys in shared maps and sets.
#pragma once

#include <string>
#include <vector>

#include "tests/stress/lists.h"
#include "tests/stress/mix.h"

namespace vorn::tests::stress {

inline constexpr int kKeysOfOne = 8;

// The numbers that only this player uses as keys: its own, that and 8, that and 16, ...
inline long long keyNumber(const Player& player, int which) { return player.number + kPlayers * which; }
inline bool isOwn(const Player& player, long long number) { return number >= 0 && number % kPlayers == player.number; }

// Collections have keys of one sort: numbers, or their digits as texts.
enum class Keys { Numbers, Texts };

// A new key; throws std::bad_alloc where there is no memory.
inline void* keyOf(Keys keys, long long number) {
  if (keys == Keys::Numbers) return boxed(number);
  const std::string digits = "key" + std::to_string(1000 + number);
  void* const text = vorn_string_new(digits.data(), digits.size());
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

// The number that a key was made of.
inline long long numberOf(void* key) {
  std::int64_t number = -1;
  if (vorn_unbox_integer(key, &number) != 0) return number;
  const char* const text = vorn_string_text(key);
  return text != nullptr ? std::stoll(std::string(text).substr(3)) - 1000 : -1;
}

}  // namespace vorn::tests::stress
