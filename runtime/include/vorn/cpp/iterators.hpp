// How collections are walked: by index, or through a listing made at the beginning.
#ifndef VORN_CPP_ITERATORS_HPP
#define VORN_CPP_ITERATORS_HPP

#include <vorn/cpp/elements.hpp>

#include <compare>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <ostream>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::detail {

// An element of a list or array to be read and assigned: what `xs[i]` and `*it` give where the collection may be
// changed. It stands for the index, not for an element, and keeps nothing alive: it is valid as long as something holds
// the collection. `Access` reads and writes elements of one collection by index, and throws.
template <class Access>
class element_reference {
 public:
  using value_type = typename Access::value_type;

  element_reference(Access access, std::ptrdiff_t index) : access_(access), index_(index) {}
  element_reference(const element_reference&) = default;
  ~element_reference() = default;

  [[nodiscard]] value_type get() const { return access_.get(index_); }
  operator value_type() const { return get(); }  // NOLINT(google-explicit-constructor): reads as the element

  // Assigning goes through to the collection, so that a const reference may be assigned, as algorithms on ranges want.
  // NOLINTBEGIN(misc-unconventional-assign-operator,cppcoreguidelines-c-copy-assignment-signature)
  const element_reference& operator=(argument_of<value_type> x) const {
    access_.set(index_, x);
    return *this;
  }
  const element_reference& operator=(const element_reference& other) const {
    access_.set(index_, other.get());
    return *this;
  }
  element_reference& operator=(const element_reference& other) {
    access_.set(index_, other.get());
    return *this;
  }
  // NOLINTEND(misc-unconventional-assign-operator,cppcoreguidelines-c-copy-assignment-signature)

  const element_reference& operator+=(const value_type& x) const requires requires(value_type y) {
    static_cast<value_type>(y + x);
  }
  { return *this = static_cast<value_type>(get() + x); }
  const element_reference& operator-=(const value_type& x) const requires requires(value_type y) {
    static_cast<value_type>(y - x);
  }
  { return *this = static_cast<value_type>(get() - x); }

  // Numbers compare as numbers, by their conversion. Everything else as elements do.
  friend bool operator==(const element_reference& left,
                         const value_type& right) requires(!std::is_arithmetic_v<value_type>) {
    return left.get() == right;
  }
  friend bool operator==(const element_reference& left,
                         const element_reference& right) requires(!std::is_arithmetic_v<value_type>) {
    return left.get() == right.get();
  }
  friend auto operator<=>(const element_reference& left,
                          const value_type& right) requires(!std::is_arithmetic_v<value_type> &&
                                                            std::three_way_comparable<value_type>) {
    return left.get() <=> right;
  }
  friend auto operator<=>(const element_reference& left,
                          const element_reference& right) requires(!std::is_arithmetic_v<value_type> &&
                                                                   std::three_way_comparable<value_type>) {
    return left.get() <=> right.get();
  }
  // NOLINTNEXTLINE(bugprone-exception-escape): it reads and assigns elements
  friend void swap(const element_reference& left, const element_reference& right) {
    const value_type kept = left.get();
    left = right;
    right = kept;
  }
  friend std::ostream& operator<<(std::ostream& out, const element_reference& x) requires requires(value_type y) {
    out << y;
  }
  { return out << x.get(); }

 private:
  Access access_;
  std::ptrdiff_t index_;
};

// A position in a collection that is indexed: random access, whose references are values (of a const collection) or
// element_references. Valid as long as something holds the collection. Changes of the collection do not invalidate it;
// it may be past the end then, and reading throws index_error.
template <class Access, bool Constant>
class index_iterator {
 public:
  using value_type = typename Access::value_type;
  using reference = std::conditional_t<Constant, value_type, element_reference<Access>>;
  using difference_type = std::ptrdiff_t;
  using iterator_concept = std::random_access_iterator_tag;
  using iterator_category = std::input_iterator_tag;

  index_iterator() = default;
  index_iterator(Access access, std::ptrdiff_t index) : access_(access), index_(index) {}
  operator index_iterator<Access, true>() const  // NOLINT(google-explicit-constructor): as containers' iterators
      requires(!Constant) {
    return {access_, index_};
  }

  [[nodiscard]] reference operator*() const { return (*this)[0]; }
  [[nodiscard]] reference operator[](std::ptrdiff_t n) const {
    if constexpr (Constant) {
      return access_.get(index_ + n);
    } else {
      return reference(access_, index_ + n);
    }
  }

  index_iterator& operator+=(std::ptrdiff_t n) {
    index_ += n;
    return *this;
  }
  index_iterator& operator-=(std::ptrdiff_t n) { return *this += -n; }
  index_iterator& operator++() { return *this += 1; }
  index_iterator& operator--() { return *this += -1; }
  index_iterator operator++(int) { return std::exchange(*this, *this + 1); }
  index_iterator operator--(int) { return std::exchange(*this, *this - 1); }
  friend index_iterator operator+(index_iterator at, std::ptrdiff_t n) { return at += n; }
  friend index_iterator operator+(std::ptrdiff_t n, index_iterator at) { return at += n; }
  friend index_iterator operator-(index_iterator at, std::ptrdiff_t n) { return at -= n; }
  friend std::ptrdiff_t operator-(const index_iterator& left, const index_iterator& right) {
    return left.index_ - right.index_;
  }
  // Of one collection.
  friend bool operator==(const index_iterator& left, const index_iterator& right) {
    return left.index_ == right.index_;
  }
  friend auto operator<=>(const index_iterator& left, const index_iterator& right) {
    return left.index_ <=> right.index_;
  }

 private:
  Access access_{};
  std::ptrdiff_t index_ = 0;
};

// A position in a listing, which is made where the walk begins, kept alive by the iterator, and not touched by changes of
// the collection. For what has no index: begin() makes a listing each time, hence input iterators. A `Listing` is a
// vector, or has value_type, size() and at(std::ptrdiff_t).
template <class Listing>
class listing_iterator {
 public:
  using value_type = typename Listing::value_type;
  using difference_type = std::ptrdiff_t;
  using iterator_concept = std::input_iterator_tag;

  listing_iterator() = default;
  explicit listing_iterator(Listing listing)
      : listing_(std::make_shared<const Listing>(std::move(listing))),
        size_(static_cast<std::ptrdiff_t>(listing_->size())) {}

  [[nodiscard]] value_type operator*() const {
    if constexpr (std::same_as<Listing, std::vector<value_type>>) {
      return (*listing_)[static_cast<std::size_t>(index_)];
    } else {
      return listing_->at(index_);
    }
  }
  listing_iterator& operator++() {
    ++index_;
    return *this;
  }
  void operator++(int) { ++index_; }
  friend bool operator==(const listing_iterator& at, std::default_sentinel_t) { return at.index_ >= at.size_; }

 private:
  std::shared_ptr<const Listing> listing_;
  std::ptrdiff_t index_ = 0;
  std::ptrdiff_t size_ = 0;
};

}  // namespace vorn::detail

#endif
