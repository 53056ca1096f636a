// The workloads on arrays. A program measures one workload and one kind, so a loop sees elements of one kind only.
import {
  ABSENT_NUMBER, ABSENT_TEXT, GET_ORDER, charAt, digestOf, digestOfDigits, digestOfNumber, digestOfText,
  elementAt, listOf, shuffledOrder, sortBatch, sortInputs} from "./definitions.mjs";

const append = {
  Int: (n) => () => {
    const list = [];
    for (let i = 0; i < n; ++i) list.push(i);
    return list;
  },
  Double: (n) => () => {
    const list = [];
    for (let i = 0; i < n; ++i) list.push(i + 0.0);
    return list;
  },
  Byte: (n) => () => {
    const list = [];
    for (let i = 0; i < n; ++i) list.push(i & 127);
    return list;
  },
  Object: (n) => {
    const items = listOf("Object", n);
    return () => {
      const list = [];
      for (let i = 0; i < n; ++i) list.push(items[i]);
      return list;
    };
  },
};

function appending(kind, n) {
  return {operations: n, run: append[kind](n), checksum: (list) => digestOf(kind, list)};
}

export function adding(kind, n, elements) {
  const ofItems = () => {
    let sum = 0;
    for (let i = 0; i < elements.length; ++i) sum += elements[i].value;
    return sum;
  };
  const ofNumbers = () => {
    let sum = 0;
    for (let i = 0; i < elements.length; ++i) sum += elements[i];
    return sum;
  };
  return {
    operations: n,
    run: kind === "Object" ? ofItems : ofNumbers,
    checksum: (sum) => digestOfNumber(kind, sum),
  };
}

export function writing(kind, n, elements) {
  return {
    operations: n,
    run: () => {
      for (let i = 0; i < elements.length; ++i) elements[i] = i;
      return elements;
    },
    checksum: (list) => digestOf(kind, list),
  };
}

export function addingAtRandom(kind, n, elements) {
  const order = shuffledOrder(n, GET_ORDER);
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (let i = 0; i < order.length; ++i) sum += elements[order[i]];
      return sum;
    },
    checksum: (sum) => digestOfNumber(kind, sum),
  };
}

function appendRemoveLast(kind, n) {
  return {
    operations: n,
    run: () => {
      const list = [];
      for (let i = 0; i < n; ++i) list.push(i);
      for (let i = 0; i < n; ++i) list.pop();
      return list;
    },
    checksum: (list) => list.length,
  };
}

function insertFront(kind, n) {
  return {
    operations: n,
    run: () => {
      const list = [];
      for (let i = 0; i < n; ++i) list.unshift(i);
      return list;
    },
    checksum: (list) => digestOf(kind, list),
  };
}

function removeFront(kind, n) {
  return {
    operations: n,
    run: () => {
      const list = [];
      for (let i = 0; i < n; ++i) list.push(i);
      for (let i = 0; i < n; ++i) list.shift();
      return list;
    },
    checksum: (list) => list.length,
  };
}

export function searching(kind, operations, elements, value) {
  return {operations, run: () => elements.indexOf(value), checksum: (found) => digestOfNumber("Int", found)};
}

function searchHit(kind, n) {
  const at = Math.floor((n * 3) / 4);
  return searching(kind, at + 1, listOf(kind, n), elementAt(kind, at));
}

function searchMiss(kind, n) {
  return searching(kind, n, listOf(kind, n), kind === "String" ? ABSENT_TEXT : ABSENT_NUMBER);
}

export function counting(kind, n, elements) {
  const value = elementAt(kind, Math.floor(n / 2));
  return {
    operations: n,
    run: () => {
      let found = 0;
      for (let i = 0; i < elements.length; ++i) {
        if (elements[i] === value) ++found;
      }
      return found;
    },
    checksum: (found) => digestOfNumber("Int", found),
  };
}

export function reversing(kind, n, elements) {
  return {operations: n, run: () => elements.reverse(), checksum: (list) => digestOf(kind, list)};
}

export function slicing(kind, n, elements) {
  const start = Math.floor(n / 4);
  const half = Math.floor(n / 2);
  return {
    operations: half,
    run: () => elements.slice(start, start + half),
    checksum: (list) => digestOf(kind, list),
  };
}

function sliceStrided(kind, n) {
  const elements = listOf(kind, n);
  return {
    operations: Math.floor((n + 1) / 2),
    run: () => {
      const list = [];
      for (let i = 0; i < elements.length; i += 2) list.push(elements[i]);
      return list;
    },
    checksum: (list) => digestOf(kind, list),
  };
}

function concat(kind, n) {
  const elements = listOf(kind, n);
  const others = listOf(kind, n);
  return {operations: 2 * n, run: () => elements.concat(others), checksum: (list) => digestOf(kind, list)};
}

// A text that was put together of pieces is a tree until it is looked at: reading a character makes it whole.
function whole(text) {
  text.charCodeAt(text.length - 1);
  return text;
}

function display(kind, n) {
  const elements = listOf(kind, n);
  return {operations: n, run: () => whole(JSON.stringify(elements)), checksum: digestOfDigits};
}

function join(kind, n) {
  const elements = listOf(kind, n);
  return {operations: n, run: () => whole(elements.join(", ")), checksum: digestOfText};
}

function textOfChars(kind, n) {
  const characters = [];
  for (let i = 0; i < n; ++i) characters.push(charAt(i));
  return {operations: n, run: () => whole(characters.join("")), checksum: digestOfText};
}

function sort(pattern) {
  return (kind, n) => {
    const inputs = sortInputs(kind, pattern, n);
    const inOrder = kind === "String" ? undefined : (left, right) => left - right;
    let work = [];
    return {
      operations: n * sortBatch(n),
      prepare: () => {
        work = inputs.map((input) => input.slice());
      },
      run: () => {
        for (const list of work) list.sort(inOrder);
        return work[work.length - 1];
      },
      checksum: (list) => digestOf(kind, list),
    };
  };
}

export function prefixSums(kind, n, elements) {
  return {
    operations: n,
    run: () => {
      for (let i = 1; i < elements.length; ++i) elements[i] = (elements[i] + elements[i - 1]) | 0;
      return elements;
    },
    checksum: (list) => digestOf(kind, list),
  };
}

function smallLists(kind, n) {
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (let i = 0; i < n; ++i) {
        const list = [];
        for (let j = 0; j < 8; ++j) list.push(i + j);
        sum += list[7];
      }
      return sum;
    },
    checksum: (sum) => digestOfNumber(kind, sum),
  };
}

const onList = (measure) => (kind, n) => measure(kind, n, listOf(kind, n));

// By workload: its kinds, and what makes it ready for a kind and a size.
export const ROWS = {
  "append": [["Int", "Double", "Byte", "Object"], appending],
  "read": [["Int", "Double", "Byte", "Object"], onList(adding)],
  "sum": [["Int", "Double", "Byte"], onList(adding)],
  "write": [["Int", "Double"], onList(writing)],
  "read-random": [["Int"], onList(addingAtRandom)],
  "append-remove-last": [["Int"], appendRemoveLast],
  "insert-front": [["Int"], insertFront],
  "remove-front": [["Int"], removeFront],
  "search-hit": [["Int", "String"], searchHit],
  "search-miss": [["Int", "Double", "String"], searchMiss],
  "count": [["Int"], onList(counting)],
  "reverse": [["Int"], onList(reversing)],
  "slice": [["Int"], onList(slicing)],
  "slice-strided": [["Int"], sliceStrided],
  "concat": [["Int"], concat],
  "display": [["Int"], display],
  "join": [["Int", "String"], join],
  "text-of-chars": [["Char"], textOfChars],
  "sort": [["Int", "Double", "Byte", "String"], sort("random")],
  "sort-sorted": [["Int"], sort("sorted")],
  "sort-reversed": [["Int"], sort("reversed")],
  "sort-nearly": [["Int"], sort("nearly")],
  "sort-equal": [["Int"], sort("equal")],
  "sort-adversarial": [["Int"], sort("adversarial")],
  "array-write": [["Int"], onList(writing)],
  "array-read": [["Int"], onList(adding)],
  "array-prefix-sums": [["Int"], onList(prefixSums)],
  "small-lists": [["Int"], smallLists],
};
