// All exported natives: a row each, which every net goes through. A native without a row fails exports_test.cpp.
#pragma once

#include <vector>

#include "tests/nets/native.h"

namespace vorn::tests::nets {

constexpr unsigned kLists = familyBit(Family::List);
constexpr unsigned kImmutables = familyBit(Family::Immutable);
// What only reads a list reads an immutable one too.
constexpr unsigned kReadableLists = kLists | kImmutables;
constexpr unsigned kTuples = familyBit(Family::Tuple);
constexpr unsigned kSets = familyBit(Family::Set);
constexpr unsigned kMaps = familyBit(Family::Map);
constexpr unsigned kArrays = familyBit(Family::Array);

constexpr unsigned kEqualityHook = hookBit(Hook::Equality);
constexpr unsigned kOrderHook = hookBit(Hook::Order);
constexpr unsigned kHashHook = hookBit(Hook::Hash);
constexpr unsigned kTextHook = hookBit(Hook::Text);

std::vector<Native> listElementNatives();
std::vector<Native> listConstructionNatives();
std::vector<Native> listBulkNatives();
std::vector<Native> arrayNatives();
std::vector<Native> keyedNatives();
std::vector<Native> immutableNatives();

const std::vector<Native>& allNatives();

}  // namespace vorn::tests::nets
