#include "tests/stress/mix.h"

namespace vorn::tests::stress {

std::vector<Topic> topics() {
  return {listTopic("ArrayListSync"),
          listTopic("LinkedListSync"),
          arrayTopic(),
          mapTopic("HashMapSync"),
          mapTopic("SortedMapSync"),
          setTopic(),
          immutableTopic(),
          tupleTopic(),
          pairsTopic(),
          runtimeTopic()};
}

}  // namespace vorn::tests::stress
