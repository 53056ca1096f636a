// The check of the runtime, made once when the library is loaded.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "collections/core/port/runtime_check.h"
#include "collections/port_facts/port_facts.h"

namespace vorn::collections {

bool agreesWithLibrary(const PortFact* ofRuntime) {
  for (const PortFact* own = kPortFacts; own->name != nullptr; ++own, ++ofRuntime) {
    // Another list of facts comes with another version, which is seen first, unless somebody forgot to raise it.
    if (ofRuntime->name == nullptr || std::strcmp(own->name, ofRuntime->name) != 0) {
      std::fprintf(stderr, "vorn: the runtime and libvorn_collections disagree on version %llu of the port: '%s'\n",
                   kPortVersion, own->name);
      return false;
    }
    if (own->number == ofRuntime->number) continue;
    std::fprintf(stderr,
                 "vorn: %s: %llu in the runtime, %llu in libvorn_collections; compile the runtime with the headers of "
                 "this library\n",
                 own->name, ofRuntime->number, own->number);
    return false;
  }
  return true;
}

namespace {

// Nothing is undone or written on the way out: whatever else was loaded may already be in disorder.
bool runtimeIsChecked() {
  if (!agreesWithLibrary(Vorn_portFacts)) std::_Exit(1);
  return true;
}

}  // namespace

const bool runtimeFits = runtimeIsChecked();

}  // namespace vorn::collections
