#include "runtime/objects/builtin_classes.h"

#include <array>

namespace vorn::runtime {
namespace {

constexpr std::uint32_t kFirstField = sizeof(ObjectRecord);

using collections::KindFamily;

constexpr ObjectField::Kind fieldKindOf(KindFamily family) {
  if (family == KindFamily::Floating) return ObjectField::Kind::Floating;
  return family == KindFamily::Boolean ? ObjectField::Kind::Boolean : ObjectField::Kind::Integer;
}

// The one field of boxes.
template <KindFamily kFamily>
constexpr std::array boxField{ObjectField{fieldKindOf(kFamily), kFirstField, "_value"}};
static_assert(kFirstField + sizeof(std::int64_t) == sizeof(SizedObject), "natives write the size without its name");
constexpr std::array sizeField{ObjectField{ObjectField::Kind::Integer, kFirstField, "size"}};
constexpr std::array typeFields{
    ObjectField{ObjectField::Kind::Handle, kFirstField, "_fullName"},
    ObjectField{ObjectField::Kind::Handle, kFirstField + sizeof(void*), "_name"},
};
constexpr std::array<ObjectField, 0> noFields{};

constexpr const RuntimeClass* classOrNull(BuiltinClass type) {
  return type == BuiltinClass::None ? nullptr : &builtinClasses[static_cast<std::size_t>(type)];
}

}  // namespace

static_assert(offsetof(RuntimeClass, head) == 0);

// Constant-initialised, so that values can be boxed before any static initialiser has run.
constinit const RuntimeClass builtinClasses[kBuiltinClasses] = {
#define VORN_BUILTIN_CLASS(name, module, objectKind, baseName, parameterCount, classTraits, ownFields) \
  RuntimeClass{                                                                                        \
      .head = {collections::primitiveTypeNamed(#name)},                                                \
      .fullName = module #name,                                                                        \
      .shortName = #name,                                                                              \
      .kind = ObjectKind::objectKind,                                                                  \
      .builtin = BuiltinClass::name,                                                                   \
      .traits = classTraits,                                                                           \
      .parameters = parameterCount,                                                                    \
      .base = classOrNull(BuiltinClass::baseName),                                                     \
      .fields = ownFields.data(),                                                                      \
      .fieldCount = ownFields.size(),                                                                  \
      .instanceSize = sizeof(ObjectRecord) + ownFields.size() * sizeof(std::uint64_t),                 \
  },
#include "runtime/objects/builtin_classes.def"
#undef VORN_BUILTIN_CLASS
};

const RuntimeClass* findBuiltinClass(std::string_view name) {
  for (const RuntimeClass& candidate : builtinClasses) {
    if (name == candidate.shortName || name == candidate.fullName) return &candidate;
  }
  return nullptr;
}

}  // namespace vorn::runtime
