// What keeps a compiler from leaving out the work that is measured.
#pragma once

namespace vorn::bench {

// The value must have been computed; costs nothing else. The same for every library, so that none is vectorised away.
template <class Value>
inline void keep(Value value) {
  asm volatile("" : : "g"(value) : "memory");
}

inline void keep(double value) { asm volatile("" : : "x"(value) : "memory"); }

inline void keep(float value) { asm volatile("" : : "x"(value) : "memory"); }

}  // namespace vorn::bench
