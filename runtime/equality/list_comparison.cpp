#include "runtime/equality/list_comparison.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "collections/core/list_data.h"
#include "runtime/equality/list_elements.h"
#include "runtime/equality/visited_pairs.h"

namespace vorn::runtime {
namespace {

Verdict verdictOfSizes(Rule rule, std::size_t left, std::size_t right) {
  if (left == right) return Verdict::Same;
  return rule == Rule::Order && left < right ? Verdict::Less : Verdict::Greater;
}

// Whether a verdict on two elements ends the comparison of their lists.
bool decides(Verdict verdict) {
  return verdict == Verdict::Less || verdict == Verdict::Greater || verdict == Verdict::Raised;
}

Verdict compareUnboxed(Rule rule, const UnboxedElements& left, const UnboxedElements& right) {
  if (rule == Rule::Equality) {
    if (left.size() != right.size()) return Verdict::Greater;
    if (const auto equal = left.equalsAtOnce(right)) return *equal ? Verdict::Same : Verdict::Greater;
  }
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const Verdict verdict = judgeScalars(rule, left.at(i), right.at(i));
    if (decides(verdict)) return verdict;
  }
  return verdictOfSizes(rule, left.size(), right.size());
}

std::size_t sizeOf(void* list) {
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return data.logicalSize();
}

class ListComparison;
thread_local const ListComparison* innermostComparison = nullptr;

class ListComparison {
 public:
  explicit ListComparison(Rule rule) : rule_(rule), outer_(innermostComparison) { innermostComparison = this; }
  ~ListComparison() { innermostComparison = outer_; }
  ListComparison(const ListComparison&) = delete;
  ListComparison& operator=(const ListComparison&) = delete;

  Verdict run(void* left, void* right) {
    Verdict verdict = enter(left, right);
    while (!decides(verdict) && !levels_.empty()) verdict = step();
    return verdict == Verdict::Incomparable ? Verdict::Same : verdict;
  }

 private:
  // Two lists whose elements are being compared.
  struct Level {
    ElementSnapshot left;
    ElementSnapshot right;
    std::size_t firstHandle;  // where the snapshots' handles begin
    std::size_t next = 0;     // the next pair of elements
  };

  // Whether this thread is comparing the pair already, in this comparison or in one whose hook led here.
  bool isVisited(void* left, void* right) const {
    for (const ListComparison* comparison = this; comparison != nullptr; comparison = comparison->outer_) {
      if (comparison->rule_ == rule_ && comparison->visited_.contains(left, right)) return true;
    }
    return false;
  }

  // Starts on two lists; decides at once where that takes no user code.
  Verdict enter(void* left, void* right) {
    if (isVisited(left, right)) return Verdict::Same;
    if (rule_ == Rule::Equality && sizeOf(left) != sizeOf(right)) return Verdict::Greater;
    visited_.add(left, right);

    const std::size_t firstHandle = handles_->size();
    const ListData& leftData = *getListData(left);
    const ListData& rightData = *getListData(right);
    std::optional<ElementSnapshot> leftElements;
    UnboxedElements leftInPlace;
    {
      const ListDataLock lock(leftData);
      if (leftData.primitiveKind == ListData::PrimitiveKind::None) {
        leftElements.emplace(firstHandle, appendHandles(leftData, *handles_));
      } else {
        leftInPlace = UnboxedElements(leftData);
        // Without a lock nobody else may touch the list, and it can stay where it is until user code runs.
        if (leftData.synchronized) leftElements.emplace(leftInPlace);
      }
    }
    const ListDataLock lock(rightData);
    if (rightData.primitiveKind == ListData::PrimitiveKind::None) {
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

  // Compares the next two elements of the innermost lists, or leaves the lists behind them.
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
    return verdict == Verdict::Lists ? enter(left, right) : verdict;
  }

  Rule rule_;
  const ListComparison* outer_;
  VisitedPairs visited_;
  collections::HandleVector handles_;  // the elements of all snapshots, innermost last
  std::vector<Level> levels_;
};

}  // namespace

Verdict compareLists(Rule rule, void* left, void* right) { return ListComparison(rule).run(left, right); }

}  // namespace vorn::runtime
