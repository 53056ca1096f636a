// Allocations that fail on demand, on the collector's heap and of operator new alike. The test program's own operator
// new stands in faults.cpp.
#pragma once

#include <cstdint>

namespace vorn::tests::nets {

enum class Memory { Collected, OperatorNew };

// Lets the next call of a native (see Native::call) find no memory at its allocation number `after`, counted from 0.
void failAllocation(Memory memory, std::int64_t after);

// Whether that has happened in the last call for which it was asked.
bool allocationFailed();

// The scope of the call: arms what was asked for, and disarms it however the call ends.
class ArmedFaults {
 public:
  ArmedFaults();
  ~ArmedFaults();
  ArmedFaults(const ArmedFaults&) = delete;
  ArmedFaults& operator=(const ArmedFaults&) = delete;
};

}  // namespace vorn::tests::nets
