// Making keys from handles.
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdint>
#include <string_view>

#include "collections/core/port/collection_key.h"
#include "collections/core/port/keys.h"
#include "runtime/keys/key_values.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/object_types.h"
#include "runtime/text/text.h"

namespace vorn::runtime {
namespace {

std::uint32_t folded(std::uint64_t hash) { return static_cast<std::uint32_t>(hash ^ (hash >> 32)); }

std::uint32_t textHash(std::string_view text) {
  return folded(XXH3_64bits_withSeed(text.data(), text.size(), Vorn_keyHashSeed.addend));
}

std::uint32_t textKeyHash(const NativeCollectionKey& key) {
  return key.tag == KeyTag::ShortText ? shortTextKeyHash(key.words[0], key.words[1]) : textHash(key.text());
}

// The tag keeps false, the character NUL and the number 0 apart. Values of different tags may be chosen so that they
// collide, but no more of them than there are tags.
std::uint32_t wordKeyHash(KeyTag tag, std::uint64_t word) {
  return mixedKeyHash(tag == KeyTag::Integer ? word : word ^ (static_cast<std::uint64_t>(tag) << 56));
}

// Written field by field, a key stays in registers until it is returned: 6 instead of 15 ns for a double.
NativeCollectionKey hashedWordKey(KeyTag tag, std::uint64_t word) {
  NativeCollectionKey key = wordKey(tag, word);
  key.hash = wordKeyHash(tag, word);
  return key;
}

// The topmost class of the line of ancestors that has an equality hook. An object and one of a derived class may be
// equal, so that they must share their hash.
const RuntimeClass* rootOfEquality(const RuntimeClass* type) {
  while (type->base != nullptr && type->base->hooks.equals) type = type->base;
  return type;
}

NativeCollectionKey hashedTextKey(std::string_view text) {
  NativeCollectionKey key = unhashedTextKey(text);
  key.hash = textKeyHash(key);
  return key;
}

}  // namespace

NativeCollectionKey unhashedKey(void* handle) {
  if (handle == nullptr) return {};
  if (!hasObjectMagic(handle)) return unhashedTextKey(static_cast<const char*>(handle));
  const auto* object = static_cast<const ObjectRecord*>(handle);
  const auto identity = reinterpret_cast<std::uint64_t>(handle);
  switch (object->kind()) {
    case ObjectKind::IntegerBox: {
      const auto value = static_cast<std::uint64_t>(static_cast<const RegisteredObject*>(object)->integer);
      const bool isUnsigned = boxedTypeOf(*object) == vorn::collections::PrimitiveType::ULong;
      return isUnsigned ? unhashedUnsignedKey(value) : wordKey(KeyTag::Integer, value);
    }
    case ObjectKind::FloatingBox:
      return unhashedFloatingKey(std::bit_cast<double>(static_cast<const RegisteredObject*>(object)->integer));
    case ObjectKind::BooleanBox:
    case ObjectKind::CharacterBox: {
      Scalar scalar;
      readScalar(handle, scalar);
      return unhashedScalarKey(scalar);
    }
    case ObjectKind::String: {
      const auto* string = static_cast<const StringObject*>(object);
      return unhashedTextKey({string->text, string->length});
    }
    case ObjectKind::Tuple:
      return wordKey(KeyTag::Sequence, identity);
    case ObjectKind::List: {
      const bool isImmutable = object->runtimeClass->builtin == BuiltinClass::ImmutableList;
      return wordKey(isImmutable ? KeyTag::Sequence : KeyTag::Identity, identity);
    }
    case ObjectKind::Instance: {
      const ClassHooks& hooks = object->runtimeClass->hooks;
      return wordKey(hooks.hash || hooks.equals || hooks.compare ? KeyTag::Instance : KeyTag::Identity, identity);
    }
    case ObjectKind::Type:
    case ObjectKind::Array:
    case ObjectKind::Map:
    case ObjectKind::Set:
      break;
  }
  return wordKey(KeyTag::Identity, identity);
}

std::uint32_t plainKeyHash(const NativeCollectionKey& key) {
  if (key.tag == KeyTag::ShortText || key.tag == KeyTag::LongText) return textKeyHash(key);
  return wordKeyHash(key.tag, key.words[0]);
}

std::uint32_t instanceKeyHash(void* instance) {
  const RuntimeClass* type = classOf(instance);
  if (const auto& hook = type->hooks.hash) return mixedKeyHash(hook.function(instance, hook.context));
  if (type->hooks.equals) return textHash(rootOfEquality(type)->fullName);
  return plainKeyHash(wordKey(KeyTag::Identity, reinterpret_cast<std::uint64_t>(instance)));
}

std::uint32_t keyHash(const NativeCollectionKey& key) {
  if (key.tag == KeyTag::Sequence) return sequenceKeyHash(key.handle());
  if (key.tag == KeyTag::Instance) return instanceKeyHash(key.handle());
  return plainKeyHash(key);
}

}  // namespace vorn::runtime

NativeCollectionKey makeNativeCollectionKey(void* handle) {
  using namespace vorn::runtime;
  // Numbers and Strings are the most frequent keys by far. Integers mostly do not come here.
  const std::uint64_t header = objectHeaderAt(handle);
  if (header == objectHeaderFor(handle, ObjectKind::String)) {
    const auto* string = static_cast<const StringObject*>(handle);
    return hashedTextKey({string->text, string->length});
  }
  const auto* box = static_cast<const RegisteredObject*>(handle);
  if (header == objectHeaderFor(handle, ObjectKind::IntegerBox)) {
    if (box->integer >= 0 || boxedTypeOf(*box) != vorn::collections::PrimitiveType::ULong)
      return integerCollectionKey(box->integer);
  }
  if (header == objectHeaderFor(handle, ObjectKind::FloatingBox)) {
    const NativeCollectionKey key = unhashedFloatingKey(std::bit_cast<double>(box->integer));
    return hashedWordKey(key.tag, key.words[0]);
  }
  std::string_view text;
  if (readText(handle, text)) return hashedTextKey(text);
  NativeCollectionKey key = unhashedKey(handle);
  key.hash = keyHash(key);
  return key;
}

NativeCollectionKey makeNativeOrderedCollectionKey(void* handle) { return vorn::runtime::unhashedKey(handle); }

NativeCollectionKey makeNativeStringCollectionKey(std::string_view text) { return vorn::runtime::hashedTextKey(text); }

NativeCollectionKey makeNativeSetCollectionKey(void* handle) { return makeNativeCollectionKey(handle); }
