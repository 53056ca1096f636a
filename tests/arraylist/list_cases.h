// What the list tests share: the texts of their errors.
#pragma once

#include "collections/core/port/object_layout.h"
#include "tests/support/error_texts.h"
#include "tests/support/lists.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

inline constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;
inline constexpr const char* kIntItemError = error_texts::kExpectedIntItem;
inline constexpr const char* kFloatingItemError = error_texts::kExpectedFloatingItem;
inline constexpr const char* kCodeUnitError = error_texts::kCodeUnitOutOfRange;
inline constexpr const char* kCharError = error_texts::kCharNotScalar;
inline constexpr const char* kAddOnNullError = error_texts::kAddOnNull;

}  // namespace vorn::tests
