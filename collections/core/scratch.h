// Temporary arrays of plain values.
#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace vorn::collections {

// Room for `count` values of a plain type, uninitialised: up to kInline of them without a heap block, where a
// std::vector takes one for any number and clears it first. The collector does not look here: handles in it are
// registered as a root range.
template <class Value, std::size_t kInline = 64>
class Scratch {
 public:
  explicit Scratch(std::size_t count)
      : heap_(count > kInline ? new Value[count] : nullptr), data_(heap_ != nullptr ? heap_.get() : inline_.data()) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  Value* data() { return data_; }
  Value& operator[](std::size_t index) { return data_[index]; }

 private:
  std::array<Value, kInline> inline_;
  std::unique_ptr<Value[]> heap_;
  Value* data_;
};

}  // namespace vorn::collections
