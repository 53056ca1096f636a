// The workloads on Map and Set. JavaScript has no sorted map of its own.
import {GET_ORDER, PUT_ORDER, digestOfEntries, digestOfNumber, keysInOrder, shuffledOrder} from "./definitions.mjs";

// What maps and sets do in their own ways.
const MAPS = {
  make: () => new Map(),
  put: (entries, key, value) => entries.set(key, value),
  sum: (entries) => {
    let sum = 0;
    for (const value of entries.values()) sum += value;
    return sum;
  },
};

const SETS = {
  make: () => new Set(),
  put: (members, key) => members.add(key),
  // Of the elements, or of the lengths of texts.
  sum: (members, kind) => {
    let sum = 0;
    if (kind === "String") {
      for (const text of members) sum += text.length;
    } else {
      for (const number of members) sum += number;
    }
    return sum;
  },
};

// A collection of the first n keys.
function filled(collections, keys, values, n) {
  const collection = collections.make();
  for (let i = 0; i < n; ++i) collections.put(collection, keys[i], values[i]);
  return collection;
}

function collectionOf(collections, kind, n) {
  return filled(collections, keysInOrder(kind, n, PUT_ORDER), shuffledOrder(n, PUT_ORDER), n);
}

function digestOf(collections, kind) {
  return (collection) => digestOfEntries(collection.size, collections.sum(collection, kind));
}

const add = (collections) => (kind, n) => {
  const keys = keysInOrder(kind, n, PUT_ORDER);
  const values = shuffledOrder(n, PUT_ORDER);
  return {operations: n, run: () => filled(collections, keys, values, n), checksum: digestOf(collections, kind)};
};

const mapGet = (present) => (kind, n) => {
  const entries = collectionOf(MAPS, kind, n);
  const keys = keysInOrder(kind, n, GET_ORDER, present);
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (let i = 0; i < keys.length; ++i) {
        const value = entries.get(keys[i]);
        if (value !== undefined) sum += value;
      }
      return sum;
    },
    checksum: (sum) => digestOfNumber("Int", sum),
  };
};

const setContains = (present) => (kind, n) => {
  const members = collectionOf(SETS, kind, n);
  const keys = keysInOrder(kind, n, GET_ORDER, present);
  return {
    operations: n,
    run: () => {
      let found = 0;
      for (let i = 0; i < keys.length; ++i) {
        if (members.has(keys[i])) ++found;
      }
      return found;
    },
    checksum: (found) => digestOfNumber("Int", found),
  };
};

const iterate = (collections) => (kind, n) => {
  const collection = collectionOf(collections, kind, n);
  return {
    operations: n,
    run: () => collections.sum(collection, kind),
    checksum: (sum) => digestOfNumber("Int", sum),
  };
};

const remove = (collections) => (kind, n) => {
  const keys = keysInOrder(kind, n, PUT_ORDER);
  const values = shuffledOrder(n, PUT_ORDER);
  const removed = keysInOrder(kind, n, GET_ORDER);
  return {
    operations: n,
    run: () => {
      const collection = filled(collections, keys, values, n);
      for (let i = 0; i < removed.length; ++i) collection.delete(removed[i]);
      return collection;
    },
    checksum: digestOf(collections, kind),
  };
};

// Of twice as many keys, half are in the collection at any time.
const churn = (collections) => (kind, n) => {
  const keys = keysInOrder(kind, 2 * n, PUT_ORDER);
  const values = shuffledOrder(2 * n, PUT_ORDER);
  const collection = filled(collections, keys, values, n);
  let oldest = 0;
  return {
    operations: n,
    run: () => {
      for (let i = 0; i < n; ++i) {
        const newest = oldest < n ? oldest + n : oldest - n;
        collection.delete(keys[oldest]);
        collections.put(collection, keys[newest], values[newest]);
        oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
      }
      return collection;
    },
    checksum: digestOf(collections, kind),
  };
};

function smallMaps(kind, n) {
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (let i = 0; i < n; ++i) {
        const entries = new Map();
        for (let j = 0; j < 8; ++j) entries.set(i + j, i + j);
        sum += entries.get(i + 7);
      }
      return sum;
    },
    checksum: (sum) => digestOfNumber("Int", sum),
  };
}

const BOTH = ["Int", "String"];

export const ROWS = {
  "map-put": [BOTH, add(MAPS)],
  "map-get": [BOTH, mapGet(true)],
  "map-miss": [BOTH, mapGet(false)],
  "map-iterate": [BOTH, iterate(MAPS)],
  "map-remove": [BOTH, remove(MAPS)],
  "map-churn": [BOTH, churn(MAPS)],
  "set-add": [BOTH, add(SETS)],
  "set-contains": [BOTH, setContains(true)],
  "set-miss": [BOTH, setContains(false)],
  "set-iterate": [BOTH, iterate(SETS)],
  "set-remove": [BOTH, remove(SETS)],
  "set-churn": [BOTH, churn(SETS)],
  "small-maps": [["Int"], smallMaps],
};
