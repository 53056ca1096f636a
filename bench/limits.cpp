#include "bench/limits.h"

namespace vorn::bench {

namespace {

constexpr std::int64_t kSmall = 1'000;
constexpr std::int64_t kLarge = 1'000'000;

constexpr LimitedRow kListLimits[] = {
    {"addInt", kSmall, {2.1, floor(kEmptyCall)}},
    {"addInt", kLarge, {2.1, floor(kEmptyCall)}},
    {"add boxed Int, unboxing", kSmall, {10, floor(kEmptyCall)}},
    {"add boxed Int, unboxing", kLarge, {10, floor(kEmptyCall)}},
    {"add boxed Int, as handle", kSmall, {10, floor(kEmptyCall)}},
    {"add boxed Int, as handle", kLarge, {10, floor(kEmptyCall)}},
    {"add to linked list", kSmall, {1.0, peer("C++")}},
    {"add to linked list", kLarge, {1.0, peer("C++")}},
    {"iterate linked list", kSmall, {1.0, peer("C++")}},
    {"iterate linked list", kLarge, {1.0, peer("C++")}},
    {"getInt", kSmall, {2.5, floor(kEmptyCall)}},
    {"getInt", kLarge, {2.5, floor(kEmptyCall)}},
    {"getIntFast", kSmall, {1.7, floor(kEmptyCall)}},
    {"getIntFast", kLarge, {1.7, floor(kEmptyCall)}},
    {"operator_index, new box", kSmall, {1.3, floor(kMallocAndFree)}},
    {"operator_index, new box", kLarge, {1.3, floor(kMallocAndFree)}},
    {"count absent Int", kSmall, {2.0, floor(kReadMemory)}},
    {"count absent Int", kLarge, {1.3, floor(kReadMemory)}},
    {"operator_in absent Int", kSmall, {2.0, floor(kReadMemory)}},
    {"operator_in absent Int", kLarge, {1.3, floor(kReadMemory)}},
    {"indexOf absent Int", kSmall, {2.0, floor(kReadMemory)}},
    {"indexOf absent Int", kLarge, {1.3, floor(kReadMemory)}},
    {"sumInt", kSmall, {2.5, floor(kReadMemory)}},
    {"sumInt", kLarge, {1.3, floor(kReadMemory)}},
    {"slice [1:-1]", kLarge, {1.5, floor(kCopyMemory)}},
    {"concat", kLarge, {1.5, floor(kCopyMemory)}},
    {"commitIntDataSize", kSmall, {1.5, peer("C++")}},
    {"commitIntDataSize", kLarge, {1.2, peer("C++")}},
    {"i64DataPtr", kSmall, {1.2, peer("C++")}},
    {"i64DataPtr", kLarge, {1.2, peer("C++")}},
    {"sort Int", kSmall, {1.5, peer("vqsort")}},
    {"sort Int", kLarge, {1.2, peer("vqsort")}},
    {"sort Long", kLarge, {1.2, peer("vqsort")}},
    {"sort Float", kLarge, {1.2, peer("vqsort")}},
    {"sort Double", kLarge, {1.2, peer("vqsort")}},
    {"sort Byte", kLarge, {0.1, peer("C++")}},
    {"sort String", kSmall, {2.0, peer("C++")}},
};

constexpr LimitedRow kArrayLimits[] = {
    {"getInt", kSmall, {2.5, floor(kEmptyCall)}},         {"getInt", kLarge, {2.5, floor(kEmptyCall)}},
    {"setInt", kSmall, {2.5, floor(kEmptyCall)}},         {"setInt", kLarge, {2.5, floor(kEmptyCall)}},
    {"loop over rawDataPtr", kSmall, {1.1, peer("C++")}}, {"loop over rawDataPtr", kLarge, {1.1, peer("C++")}},
    {"Char ASCII to String", kSmall, {1.0, peer("C++")}}, {"Char ASCII to String", kLarge, {1.0, peer("C++")}},
    {"Char mixed to String", kSmall, {2.0, peer("C++")}}, {"Char mixed to String", kLarge, {2.0, peer("C++")}},
};

// Keys are boxed before the clock starts, but where the name says otherwise.
constexpr LimitedRow kKeyedLimits[] = {
    {"get Int", kSmall, {2.0, peer("Abseil")}},
    {"get Int", kLarge, {1.3, peer("Abseil")}},
    {"get absent Int", kSmall, {2.0, peer("Abseil")}},
    {"get absent Int", kLarge, {1.5, peer("Abseil")}},
    {"put Int", kSmall, {1.2, peer("GLib")}},
    {"put Int", kLarge, {1.0, peer("GLib")}},
    {"get String", kSmall, {1.7, peer("Abseil")}},
    {"get String", kLarge, {1.4, peer("Abseil")}},
    {"get absent String", kSmall, {1.7, peer("Abseil")}},
    {"get absent String", kLarge, {1.5, peer("Abseil")}},
    {"get boxed Int", kSmall, {1.5, peer("Go")}},
    {"get boxed Int", kLarge, {1.3, peer("Go")}},
    // As compiled code looks numbers up.
    {"get borrowed Int", kSmall, {1.5, peerRow("Go", "get boxed Int")}},
    {"get borrowed Int", kLarge, {1.3, peerRow("Go", "get boxed Int")}},
    {"set contains borrowed Int", kSmall, {1.5, peerRow("Go", "set contains boxed Int")}},
    {"set contains borrowed Int", kLarge, {1.3, peerRow("Go", "set contains boxed Int")}},
    {"set add boxed Int", kSmall, {1.2, peer("Go")}},
    {"set add boxed Int", kLarge, {1.3, peer("Go")}},
    {"set contains boxed Int", kSmall, {1.5, peer("Go")}},
    {"set contains boxed Int", kLarge, {1.3, peer("Go")}},
    {"sorted put Int", kSmall, {1.0, peer("C++")}},
    {"sorted put Int", kLarge, {1.0, peer("C++")}},
    {"sorted get Int", kSmall, {1.0, peer("C++")}},
    {"sorted get Int", kLarge, {1.0, peer("C++")}},
    {"sorted walk", kSmall, {1.0, peer("C++")}},
    {"sorted walk", kLarge, {1.0, peer("C++")}},
    {"values", kSmall, {1.5, peer("PyPy")}},
    {"values", kLarge, {1.2, peer("PyPy")}},
    // No way to empty a set, no history and no choice of keys may make a row slower by an order.
    {"set drain from the front", kLarge, {2.0, ownRow("set drain from the end")}},
    {"keys of ten left", kLarge, {2.0, ownRow("keys of ten")}},
    {"put chosen Int", 40'000, {2.0, ownRow("put random Int")}},
    {"put tuple of depth 16", 40'000, {16, ownRow("put flat tuple")}},
};

constexpr LimitedRow kDisplayLimits[] = {
    {"display Int", kSmall, {0.9, peer("C++")}},
    {"display Int", kLarge, {0.9, peer("C++")}},
    {"join Int", kSmall, {0.9, peer("C++")}},
    {"join Int", kLarge, {0.9, peer("C++")}},
};

constexpr LimitedRow kHeapLimits[] = {
    {"box Int", kSmall, {1.0, floor(kMallocAndFree)}},
    {"box Int", kLarge, {1.0, floor(kMallocAndFree)}},
    {"box Double", kSmall, {1.0, floor(kMallocAndFree)}},
    {"box Double", kLarge, {1.0, floor(kMallocAndFree)}},
    {"operator_index, new box", kSmall, {1.3, floor(kMallocAndFree)}},
    {"operator_index, new box", kLarge, {1.3, floor(kMallocAndFree)}},
    {"slice [1:-1]", kLarge, {1.5, floor(kCopyMemory)}},
    {"concat", kLarge, {1.5, floor(kCopyMemory)}},
    {"repeat 10 times", kLarge, {1.5, floor(kCopyMemory)}},
};

constexpr LimitedRow kSortLimits[] = {
    {"sort int32", kSmall, {1.5, peer("vqsort")}},      {"sort int32", kLarge, {1.2, peer("vqsort")}},
    {"sort int64", kSmall, {1.5, peer("vqsort")}},      {"sort int64", kLarge, {1.2, peer("vqsort")}},
    {"sort float", kLarge, {1.2, peer("vqsort")}},      {"sort double", kLarge, {1.2, peer("vqsort")}},
    {"sort int8", kLarge, {0.1, peer("C++")}},          {"sort int32, sorted", kLarge, {0.2, peer("C++")}},
    {"sort by comparison", kLarge, {2.0, peer("C++")}},
};

constexpr LimitedRow kKernelLimits[] = {
    {"sum Int", kSmall, {2.5, floor(kReadMemory)}},   {"sum Int", kLarge, {1.3, floor(kReadMemory)}},
    {"find Int", kSmall, {2.0, floor(kReadMemory)}},  {"find Int", kLarge, {1.3, floor(kReadMemory)}},
    {"count Int", kSmall, {2.0, floor(kReadMemory)}}, {"count Int", kLarge, {1.3, floor(kReadMemory)}},
    {"sum Double", kSmall, {1.1, peer("C++")}},       {"sum Double", kLarge, {1.1, peer("C++")}},
    {"reverse int32", kSmall, {1.0, peer("C++")}},    {"reverse int32", kLarge, {1.1, peer("C++")}},
};

// What a compiler inlines, beside checked accesses of C++; and nothing slower than the native that it stands for.
constexpr LimitedRow kInlineLimits[] = {
    {"get Int, any receiver", kSmall, {1.0, ownRow("get Int, native")}},
    {"get Int, any receiver", kLarge, {1.0, ownRow("get Int, native")}},
    {"get Int, proven", kSmall, {1.5, peer("C++")}},
    {"get Int, proven", kLarge, {1.5, peer("C++")}},
    {"get Int, hoisted", kSmall, {1.1, peer("C++")}},
    {"get Int, hoisted", kLarge, {1.1, peer("C++")}},
    {"set Int, proven", kSmall, {0.5, ownRow("set Int, native with a box")}},
    {"set Int, proven", kLarge, {0.5, ownRow("set Int, native with a box")}},
    {"get handle, proven", kSmall, {0.5, ownRow("get handle, native")}},
    {"get handle, proven", kLarge, {1.0, ownRow("get handle, native")}},
    {"append Int, proven", kSmall, {2.0, peer("C++")}},
    {"append Int, proven", kLarge, {2.0, peer("C++")}},
    {"array get Int, proven", kSmall, {1.5, peer("C++")}},
    {"array get Int, proven", kLarge, {1.5, peer("C++")}},
    {"array set Int, proven", kSmall, {1.5, peer("C++")}},
    {"array set Int, proven", kLarge, {1.5, peer("C++")}},
    {"map get Int, borrowed key", kSmall, {2.0, peer("C++")}},
    {"map get Int, borrowed key", kLarge, {1.0, ownRow("map get Int, native with a box")}},
    {"map get Int, proven", kSmall, {1.5, peer("C++")}},
    {"map get Int, proven", kLarge, {1.0, ownRow("map get Int, native with a box")}},
    {"map get text, proven", kSmall, {1.0, peer("C++")}},
    {"map get text, proven", kLarge, {1.0, ownRow("map get text, native with a String")}},
    {"sieve", 100'000, {0.4, ownRow("sieve, natives")}},
    {"word count", 20'000, {0.5, ownRow("word count, natives")}},
    {"matrix product", 100, {0.1, ownRow("matrix product, natives")}},
    {"sort of records", 20'000, {0.4, ownRow("sort of records, natives")}},
};

}  // namespace

std::span<const LimitedRow> limitsOf(std::string_view topic) {
  if (topic == "list") return kListLimits;
  if (topic == "array") return kArrayLimits;
  if (topic == "keyed") return kKeyedLimits;
  if (topic == "display") return kDisplayLimits;
  if (topic == "heap") return kHeapLimits;
  if (topic == "sort") return kSortLimits;
  if (topic == "inline") return kInlineLimits;
  if (topic == "kernels") return kKernelLimits;
  return {};
}

}  // namespace vorn::bench
