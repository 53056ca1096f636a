// Keys of maps and sets. The record of port/collection_key.h says what a key is; here it is filled in.
#include "collections/core/port/keys.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/keyed/map_data.h"
#include "minimal_runtime.h"

using Key = NativeCollectionKey;
using Tag = Key::Tag;
using Number = NativeNumericValue;

KeyHashSeed Vorn_keyHashSeed = [] {
  std::random_device device;
  const auto bits = [&] { return std::uint64_t{device()} << 32 | device(); };
  return KeyHashSeed{bits(), bits(), bits(), bits(), bits()};
}();

namespace {

Key wordKey(Tag tag, std::uint64_t word) {
  Key key;
  key.tag = tag;
  key.words[0] = word;
  return key;
}

Key numberKey(const Number& number) {
  const bool isNegative = (number.payload >> 63) != 0;
  if (number.kind == Number::Kind::Signed) return wordKey(Tag::Integer, number.payload);
  if (number.kind == Number::Kind::Unsigned) return wordKey(isNegative ? Tag::Unsigned : Tag::Integer, number.payload);
  const auto value = std::bit_cast<double>(number.payload);
  if (value == std::trunc(value) && value >= -0x1p63 && value < 0x1p63) {
    return wordKey(Tag::Integer, static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
  }
  if (value >= 0x1p63 && value < 0x1p64) return wordKey(Tag::Unsigned, static_cast<std::uint64_t>(value));
  const double oneNan = std::numeric_limits<double>::quiet_NaN();
  return wordKey(Tag::Floating, std::bit_cast<std::uint64_t>(std::isnan(value) ? oneNan : value));
}

Key textKey(std::string_view text) {
  const bool isShort = text.size() <= Key::kShortText;
  Key key =
      wordKey(isShort ? Tag::ShortText : Tag::LongText, isShort ? 0 : reinterpret_cast<std::uint64_t>(text.data()));
  if (!isShort) key.words[1] = text.size();
  if (isShort) key.shortLength = static_cast<std::uint8_t>(text.size());
  if (isShort && !text.empty()) std::memcpy(key.words, text.data(), text.size());
  return key;
}

// All of a key but its hash.
Key plainKey(void* handle) {
  if (handle == nullptr) return {};
  Number number{};
  if (tryReadNativeNumericValue(handle, number)) return numberKey(number);
  const RuntimeClass& type = *minimal::classOf(handle);
  if (type.kind == ObjectKind::String) return textKey(stringTextFromPtr(handle));
  if (type.kind == ObjectKind::BooleanBox || type.kind == ObjectKind::CharacterBox) {
    const Tag character = type.boxedType == vorn::collections::PrimitiveType::Char ? Tag::Char : Tag::CodeUnit;
    const auto value = static_cast<std::uint64_t>(getRegisteredObjectUnsafe(handle)->integer);
    return wordKey(type.kind == ObjectKind::BooleanBox ? Tag::Boolean : character, value);
  }
  const bool isSequence = type.kind == ObjectKind::Tuple || isImmutableListLike(type.name);
  return wordKey(isSequence ? Tag::Sequence : Tag::Identity, reinterpret_cast<std::uint64_t>(handle));
}

// Sequences of one length share a hash, which is slow in large tables, and correct.
std::uint32_t hashOf(const Key& key) {
  if (key.tag == Tag::Integer) return mixedKeyHash(key.words[0]);
  if (key.tag == Tag::ShortText) return shortTextKeyHash(key.words[0], key.words[1]);
  std::uint64_t hash = Vorn_keyHashSeed.addend;
  if (key.tag == Tag::Sequence) return mixedKeyHash(minimal::elementsOf(key.handle()).size());
  if (key.tag != Tag::LongText) return mixedKeyHash(hash ^ key.words[0], static_cast<std::uint64_t>(key.tag));
  for (const char byte : key.text()) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return mixedKeyHash(hash);  // FNV-1a (Fowler, Noll, Vo), begun with the seed
}

// The numbers share one place in the order of tags, and so do the texts.
Tag placeOf(Tag tag) {
  if (tag == Tag::Unsigned || tag == Tag::Floating) return Tag::Integer;
  return tag == Tag::LongText ? Tag::ShortText : tag;
}

Number numberOf(const Key& key) {
  if (key.tag == Tag::Integer) return {Number::Kind::Signed, key.words[0]};
  return {key.tag == Tag::Unsigned ? Number::Kind::Unsigned : Number::Kind::Floating, key.words[0]};
}

}  // namespace

NativeCollectionKey makeNativeCollectionKey(void* handle) {
  Key key = plainKey(handle);
  key.hash = hashOf(key);
  return key;
}
NativeCollectionKey makeNativeOrderedCollectionKey(void* handle) { return plainKey(handle); }
NativeCollectionKey makeNativeStringCollectionKey(std::string_view text) {
  Key key = textKey(text);
  key.hash = hashOf(key);
  return key;
}
NativeCollectionKey makeNativeSetCollectionKey(void* handle) { return makeNativeCollectionKey(handle); }

// Without hooks of user classes, keys are equal when neither comes before the other.
bool nativeCollectionKeysEqual(const Key& left, const Key& right) {
  return compareNativeCollectionKeys(left, right) == 0;
}

int compareNativeCollectionKeys(const Key& left, const Key& right) {
  const Tag place = placeOf(left.tag);
  if (place != placeOf(right.tag)) return minimal::threeWay(place, placeOf(right.tag));
  if (place == Tag::Integer) return compareNativeNumericValuesForSort(numberOf(left), numberOf(right));
  if (place == Tag::ShortText) return left.text().compare(right.text());
  if (place == Tag::Sequence) return minimal::compare(left.handle(), right.handle(), minimal::Seen::AsKeys);
  return minimal::threeWay(left.words[0], right.words[0]);
}

std::string_view mapKeyRuntimeTypeName(void* key) {
  return key != nullptr ? shortTypeName(minimal::classOf(key)->name) : std::string_view();
}

std::string_view resolveMapKeyTypeName(void* map) {
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return data.keyType.empty() ? "Object" : data.keyType.get();
}

std::string mapKeyString(void* key) {
  const bool isFloating = minimal::as<RegisteredObject>(key, ObjectKind::FloatingBox) != nullptr;
  return isFloating ? formatVornFloat(Vorn_getField_double(key, "_value")) : "";
}
