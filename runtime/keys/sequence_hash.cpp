// The hash of tuples and immutable lists.
//
// It is made from the hashes of the elements as keys, in order, and from the class family. Equal sequences may be built
// differently (boxed or unboxed, sharing parts or not, endless by one cycle or by another), so the hash depends on
// nothing but the elements that a walk from the outside meets. The walk ends for every sequence, however deep: below
// kDeepest levels, and when kNestedElements elements of inner sequences have been met, an inner sequence counts as a
// constant. What differs only there collides, and equality tells it apart. The second bound is what sequences cost that
// share parts, whose walk would meet each part once for each way to it.
#include <algorithm>
#include <cstdint>

#include "collections/core/pending_error_watch.h"
#include "collections/core/port/collection_key.h"
#include "collections/core/storage/list_data.h"
#include "runtime/equality/sequence_elements.h"
#include "runtime/keys/key_values.h"
#include "runtime/objects/tuple_object.h"

namespace vorn::runtime {
namespace {

constexpr int kDeepest = 64;
constexpr std::uint64_t kNestedElements = 4096;
constexpr std::uint32_t kUnseen = 0x9E3779B9;

class SequenceHash {
 public:
  std::uint32_t of(void* sequence) {
    const auto* tuple = tupleOf(sequence);
    std::uint64_t state = tuple != nullptr ? 0x7475706C65ULL : 0x6C697374ULL;
    if (tuple != nullptr) {
      addInPlace(state, sequence);
    } else {
      addList(state, sequence);
    }
    return mixedKeyHash(state);
  }

 private:
  static void add(std::uint64_t& state, std::uint32_t hash) {
    state = (state ^ hash) * 0x9E3779B97F4A7C15ULL;
    state ^= state >> 32;
  }

  // Whether one more element may be looked at.
  bool take() {
    if (depth_ == 0) return true;
    if (nestedLeft_ == 0) return false;
    --nestedLeft_;
    return true;
  }

  void addList(std::uint64_t& state, void* list) {
    const ListData& data = *getListData(list);
    collections::HandleVector handles;
    {
      const ListDataLock lock(data);
      if (data.isUnboxed()) return addUnboxed(state, UnboxedElements(data));
      if (data.synchronized || data.linked) appendHandles(data, *handles);
    }
    // A list that has no lock is read where it is.
    if (!data.synchronized && !data.linked) return addInPlace(state, list);
    for (std::size_t i = 0; i < handles->size() && take() && !raised_; ++i) addElement(state, (*handles)[i]);
  }

  // Runs no user code.
  void addUnboxed(std::uint64_t& state, const UnboxedElements& elements) {
    for (std::size_t i = 0; i < elements.size() && take(); ++i) {
      add(state, plainKeyHash(unhashedScalarKey(elements.at(i))));
    }
  }

  // User code may change the sequence: size and place are read anew at each step.
  void addInPlace(std::uint64_t& state, void* sequence) {
    if (const auto* tuple = tupleOf(sequence)) {
      for (std::uint64_t i = 0; i < tuple->itemCount() && take() && !raised_; ++i) addElement(state, tuple->items[i]);
      return;
    }
    const SmallObjectVector& objects = getListData(sequence)->objects;
    for (std::uint64_t i = 0; i < objects.size && take() && !raised_; ++i) addElement(state, objects.data[i]);
  }

  void addElement(std::uint64_t& state, void* element) {
    const NativeCollectionKey key = unhashedKey(element);
    if (!key.comparesByUserCode()) return add(state, plainKeyHash(key));
    // User code may take the element out of the sequence.
    const collections::RootedHandle keep(element);
    if (key.tag == KeyTag::Sequence) return add(state, nested(element));
    const collections::PendingErrorWatch errors;
    add(state, instanceKeyHash(element));
    raised_ = errors.raised();
  }

  std::uint32_t nested(void* sequence) {
    if (depth_ == kDeepest || nestedLeft_ == 0) return kUnseen;
    ++depth_;
    const std::uint32_t hash = of(sequence);
    --depth_;
    return hash;
  }

  int depth_ = 0;
  std::uint64_t nestedLeft_ = kNestedElements;
  bool raised_ = false;
};

}  // namespace

std::uint32_t sequenceKeyHash(void* sequence) { return SequenceHash().of(sequence); }

}  // namespace vorn::runtime
