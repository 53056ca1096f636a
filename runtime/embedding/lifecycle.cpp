// Starting and stopping the runtime, and the threads that use it.
#include <vorn/runtime.h>

#include <charconv>
#include <cstring>
#include <string_view>

#include "runtime/heap/heap_control.h"
#include "runtime/library_versions.h"
#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

namespace {

template <class Number>
bool parseNumber(std::string_view text, Number& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

bool parseHeapKind(std::string_view text, vorn_heap_kind& kind) {
  if (text == "collected") {
    kind = VORN_HEAP_COLLECTED;
  } else if (text == "plain") {
    kind = VORN_HEAP_PLAIN;
  } else if (text == "stress") {
    kind = VORN_HEAP_STRESS;
  } else {
    return false;
  }
  return true;
}

bool parseFlag(std::string_view text, int& flag) {
  if (text != "0" && text != "1") return false;
  flag = text == "1" ? 1 : 0;
  return true;
}

bool isRoom(unsigned megabytes) { return megabytes <= kMostRoomMegabytes; }

bool parseRoom(std::string_view text, unsigned& megabytes) { return parseNumber(text, megabytes) && isRoom(megabytes); }

bool isNumberOfRecentBlocks(unsigned count) { return count <= RecentBlocks::kMost || count == VORN_RECENT_NONE; }

bool parseRecent(std::string_view text, unsigned& count) {
  if (!parseNumber(text, count) || count > RecentBlocks::kMost) return false;
  if (count == 0) count = VORN_RECENT_NONE;
  return true;
}

bool parseHuge(std::string_view text, int& smallPages) {
  int huge = 0;
  if (!parseFlag(text, huge)) return false;
  smallPages = huge == 0 ? 1 : 0;
  return true;
}

// One "name=value".
bool parseOption(std::string_view option, vorn_runtime_options& options) {
  const std::size_t equals = option.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view name = option.substr(0, equals);
  const std::string_view value = option.substr(equals + 1);
  if (name == "heap") return parseHeapKind(value, options.heap);
  if (name == "stacks") return parseFlag(value, options.stress_scans_stacks);
  if (name == "one-in") return parseNumber(value, options.stress_collect_one_in);
  if (name == "seed") return parseNumber(value, options.seed);
  if (name == "room") return parseRoom(value, options.collected_room_megabytes);
  if (name == "divisor") return parseNumber(value, options.collected_free_space_divisor);
  if (name == "huge") return parseHuge(value, options.collected_small_pages);
  if (name == "recent") return parseRecent(value, options.recent_blocks);
  return false;
}

// The caller's struct may be an older, shorter one; what it lacks is the default.
bool readOptions(const vorn_runtime_options* given, vorn_runtime_options& options) {
  options = defaultOptions();
  if (given == nullptr) return true;
  if (given->struct_size < offsetof(vorn_runtime_options, stress_scans_stacks)) return false;
  std::memcpy(&options, given, given->struct_size < sizeof(options) ? given->struct_size : sizeof(options));
  options.struct_size = sizeof(options);
  if (!isRoom(options.collected_room_megabytes) || !isNumberOfRecentBlocks(options.recent_blocks)) return false;
  return options.heap == VORN_HEAP_COLLECTED || options.heap == VORN_HEAP_PLAIN || options.heap == VORN_HEAP_STRESS;
}

}  // namespace

}  // namespace vorn::runtime

using namespace vorn::runtime;

int vorn_runtime_start(const vorn_runtime_options* options) {
  vorn_runtime_options read;
  if (!readOptions(options, read) || !startHeap(read)) return 0;
  attachCurrentThread();
  return 1;
}

const char* vorn_runtime_version(void) { return runtimeVersion(); }

int vorn_runtime_parse_options(const char* text, vorn_runtime_options* options) {
  if (text == nullptr || options == nullptr) return 0;
  vorn_runtime_options parsed = defaultOptions();
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    if (!parseOption(rest.substr(0, comma), parsed)) return 0;
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
    if (rest.empty()) return 0;
  }
  *options = parsed;
  return 1;
}

void vorn_runtime_stop(void) {
  stopHeap();
  if (ThreadState* thread = currentThread) {
    thread->errors.clear();
    thread->roots.clear();
    thread->smallBlocks.drop();
    thread->recentBlocks.clear();
  }
}

void vorn_thread_attach(void) { attachCurrentThread(); }

void vorn_thread_detach(void) { detachCurrentThread(); }
