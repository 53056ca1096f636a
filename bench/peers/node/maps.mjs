// The workloads on Map and Set. JavaScript has no sorted map of its own.
import {GET_ORDER, PUT_ORDER, digestOfMap, digestOfNumber, keyOf, keysInOrder, shuffledOrder} from "./definitions.mjs";

function putAll(keys, values) {
  const entries = new Map();
  for (let i = 0; i < keys.length; ++i) entries.set(keys[i], values[i]);
  return entries;
}

function mapOf(kind, n) {
  return putAll(keysInOrder(kind, n, PUT_ORDER), shuffledOrder(n, PUT_ORDER));
}

function mapPut(kind, n) {
  const keys = keysInOrder(kind, n, PUT_ORDER);
  const values = shuffledOrder(n, PUT_ORDER);
  return {operations: n, run: () => putAll(keys, values), checksum: digestOfMap};
}

const mapGet = (present) => (kind, n) => {
  const entries = mapOf(kind, n);
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

function mapIterate(kind, n) {
  const entries = mapOf(kind, n);
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (const value of entries.values()) sum += value;
      return sum;
    },
    checksum: (sum) => digestOfNumber("Int", sum),
  };
}

function mapRemove(kind, n) {
  const keys = keysInOrder(kind, n, PUT_ORDER);
  const values = shuffledOrder(n, PUT_ORDER);
  const removed = keysInOrder(kind, n, GET_ORDER);
  return {
    operations: n,
    run: () => {
      const entries = putAll(keys, values);
      for (let i = 0; i < removed.length; ++i) entries.delete(removed[i]);
      return entries;
    },
    checksum: digestOfMap,
  };
}

function mapChurn(kind, n) {
  const order = shuffledOrder(2 * n, PUT_ORDER);
  const entries = new Map();
  for (let i = 0; i < n; ++i) entries.set(keyOf(order[i]), order[i]);
  let oldest = 0;
  return {
    operations: n,
    run: () => {
      for (let i = 0; i < n; ++i) {
        const newest = order[oldest < n ? oldest + n : oldest - n];
        entries.delete(keyOf(order[oldest]));
        entries.set(keyOf(newest), newest);
        oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
      }
      return entries;
    },
    checksum: digestOfMap,
  };
}

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

// ---- Sets ----------------------------------------------------------------------------------------------------------

function addAll(keys) {
  const members = new Set();
  for (let i = 0; i < keys.length; ++i) members.add(keys[i]);
  return members;
}

function setAdd(kind, n) {
  const keys = keysInOrder(kind, n, PUT_ORDER);
  return {operations: n, run: () => addAll(keys), checksum: (members) => members.size};
}

function setContains(kind, n) {
  const members = addAll(keysInOrder(kind, n, PUT_ORDER));
  const keys = keysInOrder(kind, n, GET_ORDER);
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
}

function setIterate(kind, n) {
  const members = addAll(keysInOrder(kind, n, PUT_ORDER));
  return {
    operations: n,
    run: () => {
      let sum = 0;
      for (const member of members) sum += member;
      return sum;
    },
    checksum: (sum) => digestOfNumber("Int", sum),
  };
}

export const ROWS = {
  "map-put": [["Int", "String"], mapPut],
  "map-get": [["Int", "String"], mapGet(true)],
  "map-miss": [["Int", "String"], mapGet(false)],
  "map-iterate": [["Int"], mapIterate],
  "map-remove": [["Int", "String"], mapRemove],
  "map-churn": [["Int"], mapChurn],
  "set-add": [["Int", "String"], setAdd],
  "set-contains": [["Int", "String"], setContains],
  "set-iterate": [["Int"], setIterate],
  "small-maps": [["Int"], smallMaps],
};
