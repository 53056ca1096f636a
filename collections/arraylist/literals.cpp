// List literals.

#include <vorn/collections/array_list.h>

#include <algorithm>
#include <cstdarg>

#include "collections/arraylist/creation.h"
#include "collections/core/scratch.h"

namespace vc = vorn::collections;

namespace {

template <std::size_t kCount>
void* literalOf(void* (&&values)[kCount]) {
  return createArrayListLiteralFromValues(false, values, kCount);
}

template <std::size_t kCount>
void* intLiteralOf(const long long (&values)[kCount]) {
  return createArrayListLiteralFromIntValues(values, kCount);
}

// The variable arguments, of which there are max(count, 0), in a temporary array. Nothing allocates collected memory
// between their arrival and the root range that the literal registers over the array.
template <class Value>
class Arguments {
 public:
  Arguments(long long count, std::va_list& list)
      : count_(static_cast<unsigned long>(std::max(count, 0LL))), values_(count_) {
    for (unsigned long i = 0; i < count_; ++i) values_[i] = va_arg(list, Value);
  }
  Value* data() { return values_.data(); }
  [[nodiscard]] unsigned long count() const { return count_; }

 private:
  unsigned long count_;
  vc::Scratch<Value> values_;
};

void* literalOfArguments(bool synchronised, long long count, std::va_list& list) {
  Arguments<void*> values(count, list);
  return createArrayListLiteralFromValues(synchronised, values.data(), values.count());
}

}  // namespace

void* vorn_collections_ArrayList_literal0(void) { return createArrayListLiteralFromValues(false, nullptr, 0); }

void* vorn_collections_ArrayListSync_literal0(void) { return createArrayListLiteralFromValues(true, nullptr, 0); }

void* vorn_collections_ArrayList_literal1(void* a) { return literalOf({a}); }

void* vorn_collections_ArrayList_literal5(void* a, void* b, void* c, void* d, void* e) {
  return literalOf({a, b, c, d, e});
}

void* vorn_collections_ArrayList_literal10(void* a, void* b, void* c, void* d, void* e, void* f, void* g, void* h,
                                           void* i, void* j) {
  return literalOf({a, b, c, d, e, f, g, h, i, j});
}

void* vorn_collections_ArrayList_literal(long long count, ...) {
  std::va_list list;
  va_start(list, count);
  void* result = literalOfArguments(false, count, list);
  va_end(list);
  return result;
}

void* vorn_collections_ArrayListSync_literal(long long count, ...) {
  std::va_list list;
  va_start(list, count);
  void* result = literalOfArguments(true, count, list);
  va_end(list);
  return result;
}

void* vorn_collections_ArrayList_intLiteral0(void) { return createArrayListPrimitiveEmpty("Int", false); }

void* vorn_collections_ArrayListSync_intLiteral0(void) { return createArrayListPrimitiveEmpty("Int", true); }

void* vorn_collections_ArrayList_intLiteral1(long long a) { return intLiteralOf({a}); }

void* vorn_collections_ArrayList_intLiteral5(long long a, long long b, long long c, long long d, long long e) {
  return intLiteralOf({a, b, c, d, e});
}

void* vorn_collections_ArrayList_intLiteral10(long long a, long long b, long long c, long long d, long long e,
                                              long long f, long long g, long long h, long long i, long long j) {
  return intLiteralOf({a, b, c, d, e, f, g, h, i, j});
}

void* vorn_collections_ArrayList_intLiteral20(long long a, long long b, long long c, long long d, long long e,
                                              long long f, long long g, long long h, long long i, long long j,
                                              long long k, long long l, long long m, long long n, long long o,
                                              long long p, long long q, long long r, long long s, long long t) {
  return intLiteralOf({a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t});
}

void* vorn_collections_ArrayList_intLiteral(long long count, ...) {
  std::va_list list;
  va_start(list, count);
  Arguments<long long> values(count, list);
  va_end(list);
  return createArrayListLiteralFromIntValues(values.data(), values.count());
}

void* vorn_collections_ArrayList_primitiveLiteral0(const char* typeName) {
  return createArrayListPrimitiveEmpty(typeName, false);
}

void* vorn_collections_ArrayListSync_primitiveLiteral0(const char* typeName) {
  return createArrayListPrimitiveEmpty(typeName, true);
}
