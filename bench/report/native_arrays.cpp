// Fixed arrays, and texts made of them.
#include <vorn/collections/array.h>

#include "bench/report/native_rows.h"

namespace vorn::bench::report {

namespace {

void* arrayOf(std::int64_t n) {
  const Handle array = vorn_object_new("Array<Int>");
  vorn_collections_Array_ctor(array, n);
  for (std::int64_t i = 0; i < n; ++i) vorn_collections_Array_setInt(array, i, numberAt(i));
  return array;
}

std::uint32_t digestOfArray(void* array) {
  Digest digest;
  const std::int64_t size = vorn_collections_Array_size(array);
  for (std::int64_t i = 0; i < size; ++i) digest.add(std::int64_t{vorn_collections_Array_getInt(array, i)});
  return digest.value();
}

// `work(array, n)` on one array again and again.
template <auto work>
Ready changing(std::int64_t n) {
  const Shared array = share(arrayOf(n));
  return {n, [=] { work(array->get(), n); }, [=] { return digestOfArray(*array); }};
}

template <auto work>
Ready summing(std::int64_t n) {
  const Shared array = share(arrayOf(n));
  const auto result = std::make_shared<std::int64_t>();
  return {n, [=] { *result = work(array->get(), n); }, [=] { return digestOfNumber(*result); }};
}

Int* elementsOfArray(void* array) {
  vorn_span span;
  if (!vorn_inline_Array_span(array, VORN_INT, &span)) std::abort();
  return static_cast<Int*>(const_cast<void*>(static_cast<const void*>(span.data)));
}

template <auto set>
void writeBy(void* array, std::int64_t n) {
  for (std::int64_t i = 0; i < n; ++i) set(array, i, i);
}
void setInline(void* array, long long i, long long value) { vorn_proven_Array_setInt(array, i, value, VORN_INT); }
void writeBuffer(void* array, std::int64_t n) {
  Int* const elements = elementsOfArray(array);
  for (std::int64_t i = 0; i < n; ++i) elements[i] = static_cast<Int>(i);
}

template <auto get>
std::int64_t readBy(void* array, std::int64_t n) {
  std::int64_t sum = 0;
  for (std::int64_t i = 0; i < n; ++i) sum += get(array, i);
  return sum;
}
long long getInline(void* array, long long i) { return vorn_proven_Array_getInt(array, i, VORN_INT); }
std::int64_t readBuffer(void* array, std::int64_t n) {
  const Int* const elements = elementsOfArray(array);
  std::int64_t sum = 0;
  for (std::int64_t i = 0; i < n; ++i) sum += elements[i];
  return sum;
}

// Sums wrap, as those of the language do.
template <auto get, auto set>
void addUpBy(void* array, std::int64_t n) {
  for (std::int64_t i = 1; i < n; ++i) {
    set(array, i,
        static_cast<Int>(static_cast<std::uint32_t>(get(array, i)) + static_cast<std::uint32_t>(get(array, i - 1))));
  }
}
void addUpBuffer(void* array, std::int64_t n) {
  auto* const elements = reinterpret_cast<std::uint32_t*>(elementsOfArray(array));
  for (std::int64_t i = 1; i < n; ++i) elements[i] += elements[i - 1];
}

Ready textOfChars(std::int64_t n) {
  const Shared array = share(vorn_object_new("Array<Char>"));
  vorn_collections_Array_ctor(*array, n);
  for (std::int64_t i = 0; i < n; ++i) vorn_collections_Array_setInt(*array, i, charAt(i));
  const Shared text = share();
  return {n, [=] { *text = Vorn_stringFromCharArray(*array); },
          [=] {
            Digest digest;
            digest.add(std::string_view(vorn_string_text(*text)));
            return digest.value();
          }};
}

}  // namespace

void addNativeArrays(Rows& rows) {
  rows.add(kNatives, "array-write", "Int", changing<writeBy<vorn_collections_Array_setInt>>);
  rows.add(kInline, "array-write", "Int", changing<writeBy<setInline>>);
  rows.add(kBuffer, "array-write", "Int", changing<writeBuffer>);
  rows.add(kNatives, "array-read", "Int", summing<readBy<vorn_collections_Array_getInt>>);
  rows.add(kInline, "array-read", "Int", summing<readBy<getInline>>);
  rows.add(kBuffer, "array-read", "Int", summing<readBuffer>);
  rows.add(kNatives, "array-prefix-sums", "Int",
           changing<addUpBy<vorn_collections_Array_getInt, vorn_collections_Array_setInt>>);
  rows.add(kInline, "array-prefix-sums", "Int", changing<addUpBy<getInline, setInline>>);
  rows.add(kBuffer, "array-prefix-sums", "Int", changing<addUpBuffer>);
  rows.add(kNatives, "text-of-chars", "Char", textOfChars);
}

}  // namespace vorn::bench::report
