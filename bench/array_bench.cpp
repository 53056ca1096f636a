// The natives of fixed arrays beside plain C++ arrays, and the conversions of arrays to text and bytes, at a size that
// stays in the caches and at a million. For the conversions an element is a byte of text. How to read what it prints
// stands in docs/benchmarks.md.
#include <benchmark/benchmark.h>
#include <vorn/collections/array.h>
#include <vorn/runtime.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench/native_support.h"
#include "bench/program.h"
#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace
using natives::requireNoErrors;
using vorn::Handle;

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};

void* makeArray(Handle& array, const char* type, std::int64_t elements) {
  array = vorn_object_new(type);
  vorn_collections_Array_ctor(array, elements);
  requireNoErrors();
  return array;
}

void* makeInts(Handle& array, const char* type, std::int64_t elements) {
  makeArray(array, type, elements);
  for (std::int64_t i = 0; i < elements; ++i) vorn_collections_Array_setInt(array, i, elementAt(i));
  requireNoErrors();
  return array;
}

std::vector<std::int32_t> plainInts(std::int64_t elements) {
  std::vector<std::int32_t> values(static_cast<std::size_t>(elements));
  for (std::int64_t i = 0; i < elements; ++i) values[static_cast<std::size_t>(i)] = elementAt(i);
  return values;
}

// In no order at all: the sorts would recognise runs.
std::vector<std::int32_t> unorderedInts(std::int64_t elements) {
  std::vector<std::int32_t> values = plainInts(elements);
  std::shuffle(values.begin(), values.end(), std::mt19937(1));
  return values;
}

// ---- Elements -------------------------------------------------------------------------------------------------------

void getInt(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "Array<Int>", elements);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(vorn_collections_Array_getInt(handle, i));
  }
  countElements(state, elements);
}

void getPlainInt(benchmark::State& state, std::int64_t elements) {
  const std::vector<std::int32_t> values = plainInts(elements);
  for (auto _ : state) {
    for (const std::int32_t value : values) keep(value);
  }
  countElements(state, elements);
}

void setInt(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "Array<Int>", elements);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) vorn_collections_Array_setInt(handle, i, i);
  }
  requireNoErrors();
  countElements(state, elements);
}

void setPlainInt(benchmark::State& state, std::int64_t elements) {
  std::vector<std::int32_t> values = plainInts(elements);
  for (auto _ : state) {
    std::int32_t next = 0;
    for (std::int32_t& value : values) {
      value = next++;
      keep(&value);
    }
  }
  countElements(state, elements);
}

void getDouble(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "Array<Double>", elements);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(vorn_collections_Array_getDouble(handle, i));
  }
  countElements(state, elements);
}

void getSynchronisedInt(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "ArraySync<Int>", elements);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(vorn_collections_Array_getInt(handle, i));
  }
  countElements(state, elements);
}

// The same loop over both, as compiled code has it.
std::int64_t sumOf(const std::int32_t* values, std::int64_t elements) {
  std::int64_t sum = 0;
  for (std::int64_t i = 0; i < elements; ++i) sum += values[i];
  return sum;
}

void loopRaw(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "Array<Int>", elements);
  for (auto _ : state) {
    const auto* values = static_cast<const std::int32_t*>(vorn_collections_Array_rawDataPtr(handle));
    keep(sumOf(values, vorn_collections_Array_rawSize(handle)));
  }
  countElements(state, elements);
}

void loopPlain(benchmark::State& state, std::int64_t elements) {
  const std::vector<std::int32_t> values = plainInts(elements);
  for (auto _ : state) {
    const std::int32_t* data = values.data();
    keep(data);
    keep(sumOf(data, elements));
  }
  countElements(state, elements);
}

void sortInts(benchmark::State& state, std::int64_t elements) {
  Handle array;
  void* const handle = makeInts(array, "Array<Int>", elements);
  const std::vector<std::int32_t> values = unorderedInts(elements);
  void* const slots = vorn_collections_Array_rawDataPtr(handle);
  for (auto _ : state) {
    std::memcpy(slots, values.data(), values.size() * sizeof(values[0]));  // a small part of the whole
    vorn_collections_Array_sort(handle);
  }
  countElements(state, elements);
}

void sortPlain(benchmark::State& state, std::int64_t elements) {
  const std::vector<std::int32_t> values = unorderedInts(elements);
  std::vector<std::int32_t> sorted = values;
  for (auto _ : state) {
    sorted = values;
    std::sort(sorted.begin(), sorted.end());
    keep(sorted.data());
  }
  countElements(state, elements);
}

// ---- Conversions ----------------------------------------------------------------------------------------------------

// Characters of about so many bytes of UTF-8 altogether: letters, and in mixed text every fourth one of two, three or
// four bytes.
std::vector<std::uint32_t> characters(std::int64_t bytes, bool mixed) {
  std::vector<std::uint32_t> result;
  constexpr std::uint32_t kOthers[] = {0xE4, 0x20AC, 0x1F600};
  for (std::int64_t written = 0; written < bytes;) {
    const std::size_t at = result.size();
    const bool other = mixed && at % 4 == 3;
    result.push_back(other ? kOthers[at / 4 % 3] : static_cast<std::uint32_t>('a' + at % 26));
    written += other ? 2 + static_cast<std::int64_t>(at / 4 % 3) : 1;
  }
  return result;
}

// The plain C++ way: the bytes of each character appended to a string.
void appendCharacters(benchmark::State& state, std::int64_t bytes, bool mixed) {
  const std::vector<std::uint32_t> scalars = characters(bytes, mixed);
  std::size_t length = 0;
  for (auto _ : state) {
    std::string text;
    for (const std::uint32_t scalar : scalars) {
      const auto following = [scalar](int shift) { return static_cast<char>(0x80 | ((scalar >> shift) & 0x3F)); };
      if (scalar < 0x80) {
        text += static_cast<char>(scalar);
      } else if (scalar < 0x800) {
        text += {static_cast<char>(0xC0 | (scalar >> 6)), following(0)};
      } else if (scalar < 0x10000) {
        text += {static_cast<char>(0xE0 | (scalar >> 12)), following(6), following(0)};
      } else {
        text += {static_cast<char>(0xF0 | (scalar >> 18)), following(12), following(6), following(0)};
      }
    }
    keep(text.data());
    length = text.size();
  }
  countElements(state, static_cast<std::int64_t>(length));
}

void textOfCharacters(benchmark::State& state, std::int64_t bytes, bool mixed, bool asUnits) {
  std::vector<std::uint32_t> slots = characters(bytes, mixed);
  if (asUnits) {
    std::vector<std::uint32_t> units;
    for (const std::uint32_t scalar : slots) {
      if (scalar > 0xFFFF) {
        units.push_back(0xD800 + ((scalar - 0x10000) >> 10));
        units.push_back(0xDC00 + ((scalar - 0x10000) & 0x3FF));
      } else {
        units.push_back(scalar);
      }
    }
    slots = units;
  }
  Handle array;
  makeArray(array, asUnits ? "Array<CodeUnit>" : "Array<Char>", static_cast<std::int64_t>(slots.size()));
  for (std::size_t i = 0; i < slots.size(); ++i) {
    vorn_collections_Array_setInt(array, static_cast<long long>(i), slots[i]);
  }
  Handle text;
  for (auto _ : state) text = asUnits ? Vorn_stringFromCodeUnitArray(array) : Vorn_stringFromCharArray(array);
  requireNoErrors();
  countElements(state, static_cast<std::int64_t>(std::strlen(vorn_string_text(text))));
}

void asciiText(benchmark::State& state, std::int64_t bytes) { textOfCharacters(state, bytes, false, false); }
void mixedText(benchmark::State& state, std::int64_t bytes) { textOfCharacters(state, bytes, true, false); }
void appendAscii(benchmark::State& state, std::int64_t bytes) { appendCharacters(state, bytes, false); }
void appendMixed(benchmark::State& state, std::int64_t bytes) { appendCharacters(state, bytes, true); }
void asciiUnits(benchmark::State& state, std::int64_t bytes) { textOfCharacters(state, bytes, false, true); }
void mixedUnits(benchmark::State& state, std::int64_t bytes) { textOfCharacters(state, bytes, true, true); }

void readBytes(benchmark::State& state, std::int64_t elements) {
  Handle array;
  makeInts(array, "Array<Byte>", elements);
  std::vector<unsigned char> bytes;
  std::string error;
  for (auto _ : state) {
    Vorn_readByteArrayData(array, bytes, error);
    keep(bytes.data());
  }
  countElements(state, elements);
}

void writeBytes(benchmark::State& state, std::int64_t elements) {
  Handle array;
  makeArray(array, "Array<Byte>", elements);
  const std::vector<unsigned char> bytes(static_cast<std::size_t>(elements), 7);
  std::string error;
  for (auto _ : state) keep(Vorn_writeByteArrayData(array, bytes.data(), bytes.size(), error));
  countElements(state, elements);
}

void copyPlainBytes(benchmark::State& state, std::int64_t elements) {
  const std::vector<unsigned char> bytes(static_cast<std::size_t>(elements), 7);
  std::vector<unsigned char> copy(bytes.size());
  for (auto _ : state) {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    keep(copy.data());
  }
  countElements(state, elements);
}

void printMemory(std::int64_t elements) {
  Handle array;
  makeArray(array, "Array<Byte>", elements);
  const SmallPrimitiveBuffer& slots = getArrayData(array)->primitive;
  std::printf("An Array<Byte> of %lld elements holds %.2f bytes an element.\n", static_cast<long long>(elements),
              static_cast<double>(slots.capacity * slots.elementSize) / static_cast<double>(elements));
}

constexpr Operation kOperations[] = {
    {"getInt", getInt, getPlainInt, nullptr},
    {"setInt", setInt, setPlainInt, nullptr},
    {"getDouble", getDouble, nullptr, nullptr},
    {"getInt synchronised", getSynchronisedInt, nullptr, nullptr},
    {"loop over rawDataPtr", loopRaw, loopPlain, nullptr},
    {"sort Int", sortInts, sortPlain, nullptr},
    {"Char ASCII to String", asciiText, appendAscii, nullptr},
    {"Char mixed to String", mixedText, appendMixed, nullptr},
    {"CodeUnit ASCII to String", asciiUnits, nullptr, nullptr},
    {"CodeUnit mixed to String", mixedUnits, nullptr, nullptr},
    {"readByteArrayData", readBytes, copyPlainBytes, nullptr},
    {"writeByteArrayData", writeBytes, copyPlainBytes, nullptr},
};

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  add(benchmarks, kOperations, kSizes);
  return runBenchmarks(
      argc, argv,
      {.topic = "array", .libraries = {"vorn", "C++"}, .benchmarks = std::move(benchmarks), .printMore = [] {
         printMemory(1'000'000);
       }});
}
