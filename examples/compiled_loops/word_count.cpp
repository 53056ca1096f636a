#include <vorn/collections/array_list.h>
#include <vorn/collections/inline.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.hpp>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workloads.h"

namespace compiled_loops {
namespace {

// Words that come from 1,000 different ones, the lower numbers oftener.
const std::string& textOf(long long words) {
  static std::string text;
  static long long made = -1;
  if (made == words) return text;
  text.clear();
  std::uint64_t state = 1;
  for (long long i = 0; i < words; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const std::uint64_t high = state >> 33;
    text += "word" + std::to_string(high % 1000 * (high / 1000 % 1000) / 1000) + ' ';
  }
  made = words;
  return text;
}

// Calls visit(begin, length) for every word of the text.
template <class Visit>
void forEachWord(const std::string& text, Visit visit) {
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find(' ', begin);
    visit(text.data() + begin, end - begin);
    begin = end + 1;
  }
}

std::int32_t unboxed(void* box) {
  std::int32_t value = 0;
  vorn_unbox_int(box, &value);
  return value;
}

}  // namespace

// A word is made a String before it is looked up, and a count is made a box before it is stored.
std::uint64_t wordCountByNatives(long long size) {
  const vorn::Handle numbers = vorn_object_new("Map<String, Int>");
  const vorn::Handle counts = vorn_object_new("ArrayList<Int>");
  forEachWord(textOf(size), [&](const char* word, std::size_t length) {
    void* const key = vorn_string_new(word, length);
    void* number = nullptr;
    if (vorn_collections_Map_tryGet(numbers, key, &number)) {
      const long long at = unboxed(number);
      const long long count = vorn_collections_ArrayList_getInt(counts, at) + 1;
      vorn_collections_ArrayList_operator_index_eq(counts, at, vorn_box_int(static_cast<std::int32_t>(count)));
      return;
    }
    const vorn::Handle kept = key;
    const auto next = static_cast<std::int32_t>(vorn_collections_ArrayList_size(counts));
    vorn_collections_Map_put(numbers, kept, vorn_box_int(next));
    vorn_collections_ArrayList_addInt(counts, 1);
  });
  std::uint64_t result = 0;
  for (long long i = 0; i < vorn_collections_ArrayList_size(counts); ++i) {
    result = folded(result, static_cast<std::uint64_t>(vorn_collections_ArrayList_getInt(counts, i)));
  }
  return result;
}

// A word is looked up where it stands in the text, and becomes a String when it is new.
std::uint64_t wordCountInlined(long long size) {
  const vorn::Handle numbersRoot = vorn_object_new("Map<String, Int>");
  const vorn::Handle countsRoot = vorn_object_new("ArrayList<Int>");
  void* const numbers = numbersRoot;
  void* const counts = countsRoot;
  forEachWord(textOf(size), [&](const char* word, std::size_t length) {
    void* number = nullptr;
    if (vorn_proven_Map_tryGet_text(numbers, word, length, &number)) {
      const long long at = unboxed(number);
      const long long count = vorn_proven_ArrayList_getInt(counts, at, VORN_INT) + 1;
      vorn_proven_ArrayList_setInt(counts, at, count, VORN_INT);
      return;
    }
    const vorn::Handle key = vorn_string_new(word, length);
    const auto next = static_cast<std::int32_t>(vorn_proven_ArrayList_size(counts));
    vorn_collections_Map_put(numbers, key, vorn_box_int(next));
    vorn_proven_ArrayList_addInt(counts, 1);
  });
  std::uint64_t result = 0;
  for (long long i = 0; i < vorn_proven_ArrayList_size(counts); ++i) {
    result = folded(result, static_cast<std::uint64_t>(vorn_proven_ArrayList_getInt(counts, i, VORN_INT)));
  }
  return result;
}

std::uint64_t wordCountStandard(long long size) {
  std::unordered_map<std::string, std::int32_t> numbers;
  std::vector<std::int32_t> counts;
  std::string key;
  forEachWord(textOf(size), [&](const char* word, std::size_t length) {
    key.assign(word, length);
    const auto found = numbers.find(key);
    if (found != numbers.end()) {
      ++counts.at(static_cast<std::size_t>(found->second));
      return;
    }
    numbers.emplace(key, static_cast<std::int32_t>(counts.size()));
    counts.push_back(1);
  });
  std::uint64_t result = 0;
  for (const std::int32_t count : counts) result = folded(result, static_cast<std::uint64_t>(count));
  return result;
}

}  // namespace compiled_loops
