// The workloads on typed arrays, which hold plain numbers and have one size for life.
import {ABSENT_NUMBER, digestOf, elementAt, sortBatch, sortInputs, typedOf} from "./definitions.mjs";
import {
  adding, addingAtRandom, counting, prefixSums, reversing, searching, slicing, writing} from "./lists.mjs";

const onTyped = (measure) => (kind, n) => measure(kind, n, typedOf(kind, n));

function searchHit(kind, n) {
  const at = Math.floor((n * 3) / 4);
  return searching(kind, at + 1, typedOf(kind, n), elementAt(kind, at));
}

function searchMiss(kind, n) {
  return searching(kind, n, typedOf(kind, n), ABSENT_NUMBER);
}

function sort(pattern) {
  return (kind, n) => {
    const Typed = typedOf(kind, 0).constructor;
    const inputs = sortInputs(kind, pattern, n).map((input) => Typed.from(input));
    const work = inputs.map((input) => input.slice());
    return {
      operations: n * sortBatch(n),
      prepare: () => {
        inputs.forEach((input, i) => work[i].set(input));
      },
      run: () => {
        for (const list of work) list.sort();
        return work[work.length - 1];
      },
      checksum: (list) => digestOf(kind, list),
    };
  };
}

export const ROWS = {
  "read": [["Int", "Double", "Byte"], onTyped(adding)],
  "sum": [["Int", "Double", "Byte"], onTyped(adding)],
  "write": [["Int", "Double"], onTyped(writing)],
  "read-random": [["Int"], onTyped(addingAtRandom)],
  "search-hit": [["Int"], searchHit],
  "search-miss": [["Int", "Double"], searchMiss],
  "count": [["Int"], onTyped(counting)],
  "reverse": [["Int"], onTyped(reversing)],
  "slice": [["Int"], onTyped(slicing)],
  "sort": [["Int", "Double", "Byte"], sort("random")],
  "sort-sorted": [["Int"], sort("sorted")],
  "sort-reversed": [["Int"], sort("reversed")],
  "sort-nearly": [["Int"], sort("nearly")],
  "sort-equal": [["Int"], sort("equal")],
  "sort-adversarial": [["Int"], sort("adversarial")],
  "array-write": [["Int"], onTyped(writing)],
  "array-read": [["Int"], onTyped(adding)],
  "array-prefix-sums": [["Int"], onTyped(prefixSums)],
};
