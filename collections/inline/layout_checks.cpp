// Asserts that <vorn/collections/inline_layout.h> tells where things are, and that programs were compiled with it.
#include <vorn/collections/inline.h>
#include <vorn/collections/version.h>

#include <cstdio>
#include <cstdlib>

#include "collections/inline/layout_digest.h"

namespace {

using vorn::collections::InternedTypeName;

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

// When one of these fails, a record has changed: run tools/make_inline_layout.
#define VORN_INLINE_ROW(name, expression, meaning) static_assert(VORN_INLINE_##name == static_cast<int>(expression));
#include "collections/inline/layout.def"
static_assert(VORN_INLINE_ABI == vorn::collections::inlineLayoutDigest());

#pragma GCC diagnostic pop

static_assert(offsetof(ListData, linked) == VORN_INLINE_LIST_STATE + 1 &&
                  offsetof(ListData, primitiveKind) == VORN_INLINE_LIST_STATE + 2 &&
                  offsetof(ListData, zero) == VORN_INLINE_LIST_STATE + 3,
              "a list's state is read as one word of 32 bits");
static_assert(VORN_INLINE_LIST_STATE + 4 <= sizeof(vorn_inline_no_record) &&
                  VORN_INLINE_ARRAY_SLOT_KIND < sizeof(vorn_inline_no_record) &&
                  VORN_INLINE_RECORD == 2 * sizeof(vorn_inline_no_object[0]),
              "what stands for null is told from lists and arrays");
static_assert(VORN_SBYTE == static_cast<int>(vorn::collections::PrimitiveType::SByte) &&
                  VORN_INT == static_cast<int>(vorn::collections::PrimitiveType::Int) &&
                  VORN_BOOLEAN == static_cast<int>(vorn::collections::PrimitiveType::Boolean) &&
                  VORN_CHAR == static_cast<int>(vorn::collections::PrimitiveType::Char) &&
                  VORN_CODE_UNIT == static_cast<int>(vorn::collections::PrimitiveType::CodeUnit),
              "element types have the library's numbers");
static_assert(static_cast<int>(ArraySlotKind::Int8) == VORN_SBYTE - 1 &&
                  ArrayData::kNotPlain > VORN_INLINE_ARRAY_HANDLE_SLOTS &&
                  static_cast<int>(ArraySlotKind::Bool) == VORN_BOOLEAN - 1,
              "slots are numbered as kinds are, from 0");

}  // namespace

void vorn_inline_require(int abi) {
  if (abi == VORN_INLINE_ABI) return;
  std::fprintf(stderr,
               "vorn: this program was compiled with an inline.h of layout %d, but the collections library in use, %s, "
               "has layout %d; compile it again with that library's headers\n",
               abi, VORN_COLLECTIONS_VERSION, static_cast<int>(VORN_INLINE_ABI));
  std::abort();
}

void vorn_inline_wrong_receiver(void* receiver, int kind) {
  runtimeWrongRecordFamily(receiver, static_cast<ObjectKind>(kind));
}
