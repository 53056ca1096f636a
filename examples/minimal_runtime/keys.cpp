// Keys of maps and sets. The record of port/collection_key.h says what a key is; here it is filled in.
#include "collections/core/port/keys.h"

#include "collections/keyed/map_data.h"
#include "minimal_runtime.h"

using namespace minimal;
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

// Every number that an integer holds is the integer's key, whatever type it has.
Key numberKey(const Number& number) {
  const long double value = exactly(number);
  const bool isWhole = value == std::trunc(value);
  if (isWhole && value >= -0x1p63 && value < 0x1p63) return wordKey(Tag::Integer, static_cast<std::int64_t>(value));
  if (isWhole && value >= 0 && value < 0x1p64) return wordKey(Tag::Unsigned, static_cast<std::uint64_t>(value));
  return wordKey(Tag::Floating, std::isnan(value) ? std::bit_cast<std::uint64_t>(std::nan("")) : number.payload);
}

Key textKey(std::string_view text) {
  Key key = wordKey(Tag::LongText, reinterpret_cast<std::uint64_t>(text.data()));
  key.words[1] = text.size();
  if (text.size() > Key::kShortText) return key;
  key = wordKey(Tag::ShortText, 0);
  key.shortLength = static_cast<std::uint8_t>(text.size());
  if (!text.empty()) std::memcpy(key.words, text.data(), text.size());
  return key;
}

// All of a key but its hash.
Key plainKey(void* handle) {
  if (handle == nullptr) return {};
  Number number{};
  if (tryReadNativeNumericValue(handle, number)) return numberKey(number);
  const RuntimeClass& type = *classOf(handle);
  if (type.kind == ObjectKind::String) return textKey(stringTextFromPtr(handle));
  if (type.kind == ObjectKind::BooleanBox || type.kind == ObjectKind::CharacterBox) {
    const Tag character = type.boxedType == vc::PrimitiveType::Char ? Tag::Char : Tag::CodeUnit;
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
  if (key.tag == Tag::Sequence) return mixedKeyHash(elementsOf(key.handle()).size());
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
  return {static_cast<Number::Kind>(static_cast<int>(key.tag) - static_cast<int>(Tag::Integer)), key.words[0]};
}

Key hashed(Key key) {
  key.hash = hashOf(key);
  return key;
}
}  // namespace

NativeCollectionKey makeNativeCollectionKey(void* handle) { return hashed(plainKey(handle)); }
NativeCollectionKey makeNativeOrderedCollectionKey(void* handle) { return plainKey(handle); }
NativeCollectionKey makeNativeStringCollectionKey(std::string_view text) { return hashed(textKey(text)); }
NativeCollectionKey makeNativeSetCollectionKey(void* handle) { return makeNativeCollectionKey(handle); }

// Without hooks of user classes, keys are equal when neither comes before the other.
bool nativeCollectionKeysEqual(const Key& left, const Key& right) {
  return compareNativeCollectionKeys(left, right) == 0;
}
int compareNativeCollectionKeys(const Key& left, const Key& right) {
  const Tag place = placeOf(left.tag);
  if (place != placeOf(right.tag)) return place < placeOf(right.tag) ? -1 : 1;
  if (place == Tag::Integer) return compareNativeNumericValuesForSort(numberOf(left), numberOf(right));
  if (place == Tag::ShortText) return left.text().compare(right.text());
  if (place == Tag::Sequence) return compare(left.handle(), right.handle(), Seen::AsKeys);
  return (left.words[0] > right.words[0]) - (left.words[0] < right.words[0]);
}
std::string_view mapKeyRuntimeTypeName(void* key) {
  return key != nullptr ? shortTypeName(classOf(key)->name) : std::string_view();
}
std::string_view resolveMapKeyTypeName(void* map) {
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return data.keyType.empty() ? "Object" : data.keyType.get();
}
std::string mapKeyString(void* key) {
  const bool isFloating = as<RegisteredObject>(key, ObjectKind::FloatingBox) != nullptr;
  return isFloating ? formatVornFloat(Vorn_getField_double(key, "_value")) : "";
}
