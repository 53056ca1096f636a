#include "console/tour.h"

namespace vorn::console {

Tour::Tour() : steps_(parseScript(tourScript())) {}

}  // namespace vorn::console
