// What this runtime was compiled for, which the library compares with itself when it is loaded.
#include "collections/port_facts/port_facts.h"

constinit const PortFact* const Vorn_portFacts = vorn::collections::kPortFacts;
