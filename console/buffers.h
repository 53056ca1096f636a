// Reading and writing raw elements through the addresses that natives give to compiled loops.
#pragma once

#include "console/session.h"
#include "console/values.h"

namespace vorn::console {

// Both refuse an address that is no longer good and an index outside the buffer; writing also refuses what the element
// type does not hold.
Value readBuffer(const Session& session, const Value& buffer, const Value& index);
void writeBuffer(const Session& session, const Value& buffer, const Value& index, const Value& value);

}  // namespace vorn::console
