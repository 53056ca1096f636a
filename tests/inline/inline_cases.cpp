#include "tests/inline/inline_cases.h"

#include <limits>

namespace vorn::tests {

namespace {

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += " [" + text + "]";
  return all;
}

}  // namespace

std::vector<long long> indexesAround(long long size) {
  return {0, 1, size - 1, size, size + 1, -1, -size, -size - 1, kMost, kLeast, kLeast + 1, 1LL << 32, -(1LL << 32)};
}

const std::vector<long long>& integersToStore() {
  static const std::vector<long long> values = {
      0,        1,        -1,           127,          128,           -128,          -129,         255,          256,
      32767,    32768,    -32768,       65535,        65536,         0xD7FF,        0xD800,       0xDFFF,       0xE000,
      0x10FFFF, 0x110000, 2147483647LL, 2147483648LL, -2147483648LL, -2147483649LL, 4294967295LL, 4294967296LL, kMost,
      kLeast};
  return values;
}

const std::vector<double>& numbersToStore() {
  static const std::vector<double> values = {0.0,
                                             -0.0,
                                             0.1,
                                             1e300,
                                             -1e300,
                                             std::numeric_limits<double>::infinity(),
                                             std::numeric_limits<double>::quiet_NaN(),
                                             std::numeric_limits<double>::denorm_min(),
                                             9.3e18};
  return values;
}

Triplets::Triplets(const Receiver& receiver, std::function<std::string(void*)> stateOf)
    : name_(receiver.name),
      stateOf_(std::move(stateOf)),
      receivers_{receiver.make(), receiver.make(), receiver.make()} {}

void Triplets::expectSame(const std::string& what, const Operation& operation) { expect(what, operation, true); }

void Triplets::expectSameResult(const std::string& what, const Operation& operation) { expect(what, operation, false); }

void Triplets::expect(const std::string& what, const Operation& operation, bool withStates) {
  std::string outcomes[3];
  for (const Form form : kForms) {
    const auto at = static_cast<std::size_t>(form);
    outcomes[at] = operation(form, receivers_[at]);
    outcomes[at] += joined(takeErrors());
    if (withStates && receivers_[at].get() != nullptr) outcomes[at] += ", then " + stateOf_(receivers_[at]);
  }
  EXPECT_EQ(outcomes[1], outcomes[0]) << "inline, " << name_ << ", " << what;
  EXPECT_EQ(outcomes[2], outcomes[0]) << "proven, " << name_ << ", " << what;
}

void Triplets::expectUnlocked(const std::function<bool(void*)>& isUnlocked) {
  for (const Handle& receiver : receivers_) {
    EXPECT_TRUE(receiver.get() == nullptr || isUnlocked(receiver)) << name_;
  }
}

std::string stateOfList(void* list) {
  const ListData& data = *getListData(list);
  const Snapshot snapshot(data);
  std::string state = storageOf(list) + " declared " + snapshot.elementType + ":";
  for (void* handle : snapshot.handles) state += ' ' + describe(handle);
  for (const unsigned char byte : snapshot.bytes) state += ' ' + std::to_string(byte);
  return state + collections::validateListData(data);
}

}  // namespace vorn::tests
