#include "collections/keyed/ordered_table.h"

#include <cstring>

#include "collections/core/pending_error_watch.h"
#include "collections/keyed/key_words.h"
#include "collections/keyed/user_compared_key.h"

namespace vorn::collections {

namespace {

// The order of keys without user code, for the search of last resort.
int orderByIdentity(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  if (left.tag != right.tag || !left.comparesByUserCode()) return orderOfKeys(left, right);
  return (left.words[0] > right.words[0]) - (left.words[0] < right.words[0]);
}

}  // namespace

void OrderedTable::makePlace() {
  chunks_.grow();
  ++changes_;
}

void OrderedTable::insert(const Place& place, const NativeCollectionKey& key, const NativeMapEntry& entry) {
  Node& node = at(tree_.nextPlace());
  KeyWords(key).storeTo(node.key);
  node.entry = entry;
  tree_.add(place.gap, orderWordOf(key));
  if (const KeySort sort = sortOfKey(key); sort != sort_) sort_ = count_ == 0 ? sort : KeySort::Mixed;
  ++count_;
  ++changes_;
}

void OrderedTable::remove(const Place& found) {
  tree_.remove(found.place);
  std::memset(static_cast<void*>(found.node), 0, sizeof(Node));
  found.node->key.tag = kVacant;
  --count_;
  ++changes_;
}

void OrderedTable::clear() {
  tree_.clear();
  chunks_.clear();
  count_ = 0;
  ++changes_;
}

auto OrderedTable::locateText(const NativeCollectionKey& key) const -> Place {
  const std::int64_t word = orderWordOfText(key);
  const Link* const links = tree_.links();
  Place result;
  for (std::uint32_t place = tree_.root(); place != 0; place = links[place].children[result.gap.side]) {
    const std::int64_t order = links[place].order;
    bool toTheRight = word > order;
    if (order == word) {
      Node& node = at(place);
      const int longOrder = key.text().compare(node.key.text());
      if (longOrder == 0) return {&node, place};
      toTheRight = longOrder > 0;
    }
    result.descend(place, toTheRight);
  }
  return result;
}

auto OrderedTable::locateByOrder(const NativeCollectionKey& key) const -> Place {
  if (sort_ == KeySort::Text && sortOfKey(key) == KeySort::Text) return locateText(key);
  Place result;
  for (std::uint32_t place = tree_.root(); place != 0; place = tree_.at(place).children[result.gap.side]) {
    Node& node = at(place);
    const int order = orderOfKeys(key, node.key);
    if (order == 0) return {&node, place};
    result.descend(place, order > 0);
  }
  return result;
}

auto OrderedTable::findByUserCode(const NativeCollectionKey& key) const -> Place {
  const PendingErrorWatch watch;
  UserComparedKey compared;
  for (int restarts = 0; restarts <= kMaxRestarts; ++restarts) {
    const std::uint64_t changesBefore = changes_;
    Place result;
    for (std::uint32_t place = tree_.root(); place != 0; place = tree_.at(place).children[result.gap.side]) {
      const int order = orderOfKeys(key, compared.copy(at(place).key));
      if (watch.raised()) return {.failed = true};
      if (changes_ != changesBefore) break;
      if (order == 0) return {&at(place), place};
      result.descend(place, order > 0);
    }
    if (changes_ == changesBefore) return result;
  }
  return findIdentical(key);
}

auto OrderedTable::findIdentical(const NativeCollectionKey& key) const -> Place {
  // The tree is not ordered by identity, so that a descent alone could miss the key.
  for (std::uint32_t place = tree_.first(); place != 0; place = tree_.at(place).next) {
    if (identicalKeys(at(place).key, key)) return {&at(place), place};
  }
  Place result;
  for (std::uint32_t place = tree_.root(); place != 0; place = tree_.at(place).children[result.gap.side]) {
    result.descend(place, orderByIdentity(key, at(place).key) > 0);
  }
  return result;
}

}  // namespace vorn::collections
