#include "runtime/equality/collection_comparison.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "collections/core/storage/list_data.h"
#include "runtime/equality/keyed_matching.h"
#include "runtime/equality/running_hooks.h"
#include "runtime/equality/sequence_elements.h"
#include "runtime/equality/visited_pairs.h"
#include "runtime/keys/key_rules.h"
#include "runtime/objects/tuple_object.h"

namespace vorn::runtime {
namespace {

Verdict verdictOfSizes(Rule rule, std::size_t left, std::size_t right) {
  if (left == right) return Verdict::Same;
  return isOrder(rule) && left < right ? Verdict::Less : Verdict::Greater;
}

// Whether a verdict on two elements ends the comparison of their collections.
bool decides(Verdict verdict) {
  return verdict == Verdict::Less || verdict == Verdict::Greater || verdict == Verdict::Raised;
}

Verdict compareUnboxed(Rule rule, const UnboxedElements& left, const UnboxedElements& right) {
  if (!isOrder(rule) && left.size() != right.size()) return Verdict::Greater;
  if (rule == Rule::Equality) {
    if (const auto equal = left.equalsAtOnce(right)) return *equal ? Verdict::Same : Verdict::Greater;
  }
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const Verdict verdict = judgeScalars(rule, left.at(i), right.at(i));
    if (decides(verdict)) return verdict;
  }
  return verdictOfSizes(rule, left.size(), right.size());
}

std::size_t sizeOf(Family family, void* collection) {
  if (family == Family::Tuple) return tupleOf(collection)->itemCount();
  if (family == Family::Map) return sizeOfMap(collection);
  if (family == Family::Set) return sizeOfSet(collection);
  if (family == Family::Array) {
    const ArrayData& array = *getArrayData(collection);
    const ArrayDataLock lock(array);
    return std::max(array.primitive.size, array.objects.size);
  }
  const ListData& data = *getListData(collection);
  const ListDataLock lock(data);
  return data.logicalSize();
}

class Comparison;
thread_local const Comparison* innermostComparison = nullptr;

class Comparison {
 public:
  explicit Comparison(Rule rule) : rule_(rule), lookup_(LookupScope::current()), outer_(innermostComparison) {
    innermostComparison = this;
  }
  ~Comparison() { innermostComparison = outer_; }
  Comparison(const Comparison&) = delete;
  Comparison& operator=(const Comparison&) = delete;

  Verdict run(void* left, void* right) {
    Verdict verdict = enter(left, right);
    while (!decides(verdict) && !levels_.empty()) verdict = step();
    return verdict == Verdict::Incomparable ? Verdict::Same : verdict;
  }

 private:
  // Two lists, arrays or tuples whose elements are being compared, or two maps, whose values are.
  struct Level {
    ElementSnapshot left;
    ElementSnapshot right;
    std::size_t firstHandle;  // where the snapshots' handles begin
    std::size_t next = 0;     // the next pair of elements
  };

  // Whether this thread is comparing the pair already, in this comparison or in one whose hook led here, but not by a
  // lookup.
  bool isVisited(void* left, void* right) const {
    for (const Comparison* comparison = this; comparison != nullptr; comparison = comparison->outer_) {
      if (comparison->lookup_ != lookup_) break;
      if (comparison->rule_ == rule_ && comparison->visited_.contains(left, right)) return true;
    }
    return false;
  }

  // Starts on two collections; decides at once where that takes no look at the single elements.
  Verdict enter(void* left, void* right) {
    if (isVisited(left, right)) return Verdict::Same;
    const Family family = familyOf(left);
    if (!isOrder(rule_) && sizeOf(family, left) != sizeOf(family, right)) return Verdict::Greater;
    visited_.add(left, right);
    switch (family) {
      case Family::Tuple:
        return enterTuples(*tupleOf(left), *tupleOf(right));
      case Family::Array:
        return enterRecords(*getArrayData(left), *getArrayData(right));
      case Family::Map:
        return enterMaps(left, right);
      case Family::Set:
        return compareSets(left, right);
      default:
        return enterRecords(*getListData(left), *getListData(right));
    }
  }

  Verdict enterTuples(const TupleObject& left, const TupleObject& right) {
    const std::size_t firstHandle = handles_->size();
    ElementSnapshot leftItems(firstHandle, appendItems(left, *handles_));
    const std::size_t rightFirst = handles_->size();
    levels_.push_back({std::move(leftItems), ElementSnapshot(rightFirst, appendItems(right, *handles_)), firstHandle});
    return Verdict::Same;
  }

  // Once every key has its equal, the values stand side by side as the elements of two lists do.
  Verdict enterMaps(void* left, void* right) {
    KeyedSnapshot leftEntries;
    KeyedSnapshot rightEntries;
    snapshotMap(left, leftEntries);
    snapshotMap(right, rightEntries);
    std::vector<std::size_t> places;
    const Matching matching = matchKeys(leftEntries, rightEntries, places);
    if (matching != Matching::Complete) return verdictOf(matching);

    const std::size_t count = places.size();
    const std::size_t firstHandle = handles_->size();
    // No reserve: it gives what is asked for and no more, and would copy all outer levels at each.
    handles_->insert(handles_->end(), leftEntries.values->begin(), leftEntries.values->end());
    for (const std::size_t place : places) handles_->push_back(rightEntries.values->at(place));
    levels_.push_back({ElementSnapshot(firstHandle, count), ElementSnapshot(firstHandle + count, count), firstHandle});
    return Verdict::Same;
  }

  static Verdict compareSets(void* left, void* right) {
    KeyedSnapshot leftElements;
    KeyedSnapshot rightElements;
    snapshotSet(left, leftElements);
    snapshotSet(right, rightElements);
    std::vector<std::size_t> places;
    return verdictOf(matchKeys(leftElements, rightElements, places));
  }

  static Verdict verdictOf(Matching matching) {
    if (matching == Matching::Complete) return Verdict::Same;
    return matching == Matching::Raised ? Verdict::Raised : Verdict::Greater;
  }

  // Lists or arrays, by their records.
  template <class Record>
  Verdict enterRecords(const Record& leftData, const Record& rightData) {
    using Lock = collections::RecordLock<Record>;
    const std::size_t firstHandle = handles_->size();
    std::optional<ElementSnapshot> leftElements;
    UnboxedElements leftInPlace;
    {
      const Lock lock(leftData);
      if (!leftData.isUnboxed()) {
        leftElements.emplace(firstHandle, appendHandles(leftData, *handles_));
      } else {
        leftInPlace = UnboxedElements(leftData);
        // Without a lock nobody else may touch it, and it can stay where it is until user code runs.
        if (leftData.synchronized) leftElements.emplace(leftInPlace);
      }
    }
    const Lock lock(rightData);
    if (!rightData.isUnboxed()) {
      if (!leftElements) leftElements.emplace(leftInPlace);
      const std::size_t rightFirst = handles_->size();
      levels_.push_back(
          {std::move(*leftElements), ElementSnapshot(rightFirst, appendHandles(rightData, *handles_)), firstHandle});
      return Verdict::Same;
    }
    const UnboxedElements rightInPlace(rightData);
    if (!leftElements) return compareUnboxed(rule_, leftInPlace, rightInPlace);
    if (const UnboxedElements* copied = leftElements->unboxed()) return compareUnboxed(rule_, *copied, rightInPlace);
    levels_.push_back({std::move(*leftElements), ElementSnapshot(rightInPlace), firstHandle});
    return Verdict::Same;
  }

  // Compares the next two elements of the innermost collections, or leaves these behind.
  Verdict step() {
    Level& level = levels_.back();
    const std::size_t leftSize = level.left.size();
    const std::size_t rightSize = level.right.size();
    if (level.next == std::min(leftSize, rightSize)) {
      handles_->resize(level.firstHandle);
      levels_.pop_back();
      return verdictOfSizes(rule_, leftSize, rightSize);
    }
    const std::size_t index = level.next++;
    const UnboxedElements* const leftUnboxed = level.left.unboxed();
    const UnboxedElements* const rightUnboxed = level.right.unboxed();
    if (leftUnboxed != nullptr) return compareMixed(*leftUnboxed, index, handleAt(level.right, index), false);
    if (rightUnboxed != nullptr) return compareMixed(*rightUnboxed, index, handleAt(level.left, index), true);
    return comparePair(handleAt(level.left, index), handleAt(level.right, index));
  }

  void* handleAt(const ElementSnapshot& snapshot, std::size_t index) {
    return (*handles_)[snapshot.handleIndex(index)];
  }

  // An unboxed element against a handle; `swapped` when the handle is the left one. A box is needed only where there
  // is user code to show it to.
  Verdict compareMixed(const UnboxedElements& unboxed, std::size_t index, void* handle, bool swapped) {
    Scalar scalar;
    if (readScalar(handle, scalar)) {
      const Scalar own = unboxed.at(index);
      return swapped ? judgeScalars(rule_, scalar, own) : judgeScalars(rule_, own, scalar);
    }
    if (isOfKeys(rule_)) {
      const NativeCollectionKey own = unhashedScalarKey(unboxed.at(index));
      return swapped ? judgeKeys(rule_, unhashedKey(handle), own) : judgeKeys(rule_, own, unhashedKey(handle));
    }
    if (rule_ == Rule::Order) {
      // Null comes before everything; nothing else can be ordered against a value.
      if (handle != nullptr) return Verdict::Incomparable;
      return swapped ? Verdict::Less : Verdict::Greater;
    }
    if (!hasHook(rule_, handle)) return Verdict::Greater;
    const collections::RootedHandle box(unboxed.boxAt(index));
    return swapped ? comparePair(handle, box.get()) : comparePair(box.get(), handle);
  }

  Verdict comparePair(void* left, void* right) {
    const Verdict verdict = judgePair(rule_, left, right);
    return verdict == Verdict::Contents ? enter(left, right) : verdict;
  }

  Rule rule_;
  std::uint32_t lookup_;
  const Comparison* outer_;
  VisitedPairs visited_;
  collections::HandleVector handles_;  // the elements of all snapshots, innermost last
  std::vector<Level> levels_;
};

}  // namespace

Verdict compareContents(Rule rule, void* left, void* right) { return Comparison(rule).run(left, right); }

}  // namespace vorn::runtime
