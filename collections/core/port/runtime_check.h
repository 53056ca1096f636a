// What a runtime was compiled for, which the library looks at once, when it is loaded.
//
// Linkers see operations that are missing, but not a record that the two sides lay out differently: it would corrupt
// memory much later. So the process ends at once, with one line that names both numbers.
#pragma once

// A number on which the two sides have to agree. The end of a list of them has no name.
struct PortFact {
  const char* name;
  unsigned long long number;
};

#pragma GCC visibility push(default)

// Defined by the runtime, in a unit that is compiled as all of it is, as
//   constinit const PortFact* const Vorn_portFacts = vorn::collections::kPortFacts;
// with collections/port_facts/port_facts.h. It is read before main, hence constinit.
extern "C" {
extern const PortFact* const Vorn_portFacts;
}

#pragma GCC visibility pop

namespace vorn::collections {

// True once the library is loaded: the process ends before that when the runtime was compiled for another one.
extern const bool runtimeFits;

}  // namespace vorn::collections
