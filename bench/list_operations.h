// The operations on single elements of lists, and searches, that are measured, and who implements them.
#pragma once

#include "bench/measurement.h"

namespace vorn::bench {

// The natives, called through the shared libraries.
namespace natives {
void addInt(benchmark::State& state, std::int64_t elements);
void addLong(benchmark::State& state, std::int64_t elements);
void addDouble(benchmark::State& state, std::int64_t elements);
void addIntSynchronised(benchmark::State& state, std::int64_t elements);
void addBoxed(benchmark::State& state, std::int64_t elements);
void addHandle(benchmark::State& state, std::int64_t elements);
void addAtEnd(benchmark::State& state, std::int64_t elements);
void addLinked(benchmark::State& state, std::int64_t elements);
void iterateLinked(benchmark::State& state, std::int64_t elements);
void getInt(benchmark::State& state, std::int64_t elements);
void getIntFast(benchmark::State& state, std::int64_t elements);
void getDouble(benchmark::State& state, std::int64_t elements);
void operatorIndex(benchmark::State& state, std::int64_t elements);
void operatorIndexEq(benchmark::State& state, std::int64_t elements);
void removeAtEnd(benchmark::State& state, std::int64_t elements);
void size(benchmark::State& state, std::int64_t elements);
void sizeFast(benchmark::State& state, std::int64_t elements);
void indexOfAbsentInt(benchmark::State& state, std::int64_t elements);
void countAbsentInt(benchmark::State& state, std::int64_t elements);
void operatorInAbsentInt(benchmark::State& state, std::int64_t elements);
void indexOfAbsentDouble(benchmark::State& state, std::int64_t elements);
void countAbsentDouble(benchmark::State& state, std::int64_t elements);
void operatorInAbsentDouble(benchmark::State& state, std::int64_t elements);
void indexOfAbsentBoxed(benchmark::State& state, std::int64_t elements);

// Prints what an `ArrayList<Int>` of so many elements occupies, by the runtime's own account.
void printMemory(std::int64_t elements);
}  // namespace natives

// std::vector; std::list for the linked list.
namespace standard {
void append(benchmark::State& state, std::int64_t elements);
void appendLocked(benchmark::State& state, std::int64_t elements);
void appendFromBox(benchmark::State& state, std::int64_t elements);
void appendPointer(benchmark::State& state, std::int64_t elements);
void insertFromBoxAtEnd(benchmark::State& state, std::int64_t elements);
void appendLinked(benchmark::State& state, std::int64_t elements);
void iterateLinked(benchmark::State& state, std::int64_t elements);
void read(benchmark::State& state, std::int64_t elements);
void readDouble(benchmark::State& state, std::int64_t elements);
void readIntoBox(benchmark::State& state, std::int64_t elements);
void writeFromBox(benchmark::State& state, std::int64_t elements);
void removeLast(benchmark::State& state, std::int64_t elements);
void size(benchmark::State& state, std::int64_t elements);
void findInt(benchmark::State& state, std::int64_t elements);
void countInt(benchmark::State& state, std::int64_t elements);
void findDouble(benchmark::State& state, std::int64_t elements);
void countDouble(benchmark::State& state, std::int64_t elements);
void findBox(benchmark::State& state, std::int64_t elements);
}  // namespace standard

// GArray and GPtrArray; GQueue for the linked list. GArray has no search of its own: the loop is the user's.
namespace glib {
void append(benchmark::State& state, std::int64_t elements);
void appendLocked(benchmark::State& state, std::int64_t elements);
void appendFromBox(benchmark::State& state, std::int64_t elements);
void appendPointer(benchmark::State& state, std::int64_t elements);
void insertFromBoxAtEnd(benchmark::State& state, std::int64_t elements);
void appendLinked(benchmark::State& state, std::int64_t elements);
void iterateLinked(benchmark::State& state, std::int64_t elements);
void read(benchmark::State& state, std::int64_t elements);
void readDouble(benchmark::State& state, std::int64_t elements);
void readIntoBox(benchmark::State& state, std::int64_t elements);
void writeFromBox(benchmark::State& state, std::int64_t elements);
void removeLast(benchmark::State& state, std::int64_t elements);
void size(benchmark::State& state, std::int64_t elements);
void findInt(benchmark::State& state, std::int64_t elements);
void countInt(benchmark::State& state, std::int64_t elements);
void findDouble(benchmark::State& state, std::int64_t elements);
void countDouble(benchmark::State& state, std::int64_t elements);
void findBox(benchmark::State& state, std::int64_t elements);
}  // namespace glib

}  // namespace vorn::bench
