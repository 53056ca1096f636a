// Walks over collections without a lock that list nothing first.
#ifndef VORN_CPP_WALKS_HPP
#define VORN_CPP_WALKS_HPP

#include <vorn/collections/inline.h>
#include <vorn/cpp/elements.hpp>
#include <vorn/cpp/errors.hpp>
#include <vorn/cpp/value.hpp>

#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

namespace vorn::detail {

// What a walk does, by family: begin(collection, walk), next(walk) and what it came to.
template <class K, class V>
struct map_steps {
  using value_type = std::pair<K, V>;
  static void begin(void* map, vorn_walk& walk) { vorn_inline_Map_walk(map, &walk); }
  static bool next(vorn_walk& walk) { return vorn_inline_Map_next(&walk); }
  static value_type at(const vorn_walk& walk) {
    return {element_traits<K>::from_handle(walk.key), element_traits<V>::from_handle(walk.value)};
  }
};
template <class T, auto begin_walk, auto next_of_walk>
struct element_steps {
  using value_type = T;
  static void begin(void* collection, vorn_walk& walk) { begin_walk(collection, &walk); }
  static bool next(vorn_walk& walk) { return next_of_walk(&walk); }
  static value_type at(const vorn_walk& walk) { return element_traits<T>::from_handle(walk.key); }
};
template <class T>
using set_steps = element_steps<T, vorn_inline_HashSet_walk, vorn_inline_HashSet_next>;
template <class T>
using list_steps = element_steps<T, vorn_inline_ArrayList_walk, vorn_inline_ArrayList_next>;

// A walk over a collection, which it keeps alive: an input range for one loop at a time, since begin() starts anew. The
// program must have been compiled with the headers of the library in use (docs/inline.md); begin() ends it otherwise.
template <class Steps>
class walk_range {
 public:
  class iterator {
   public:
    using value_type = typename Steps::value_type;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::input_iterator_tag;

    iterator() = default;
    explicit iterator(walk_range& range) : range_(&range) {}

    [[nodiscard]] const value_type& operator*() const { return *range_->current_; }
    iterator& operator++() {
      range_->step();
      return *this;
    }
    void operator++(int) { range_->step(); }
    friend bool operator==(const iterator& at, std::default_sentinel_t) { return at.ended(); }

   private:
    [[nodiscard]] bool ended() const { return !range_->current_; }

    walk_range* range_ = nullptr;
  };

  explicit walk_range(object collection) : collection_(std::move(collection)) {}

  [[nodiscard]] iterator begin() {
    vorn_inline_check();
    Steps::begin(collection_.handle(), walk_);
    step();
    return iterator(*this);
  }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  // Reads the element at once, since a change of the collection may be the end of it. Errors are asked for where there
  // may be one.
  void step() {
    current_.reset();
    if (vorn_inline_walk_has_slot(&walk_) ? Steps::next(walk_) : call(vorn_inline_walk_on, &walk_)) {
      current_.emplace(Steps::at(walk_));
    }
  }

  object collection_;
  vorn_walk walk_{};
  std::optional<typename Steps::value_type> current_;
};

}  // namespace vorn::detail

#endif
