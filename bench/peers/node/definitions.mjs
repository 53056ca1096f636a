// What elements, keys and orders are: bench/report/definitions.h for JavaScript, which has no Long among its numbers.

export const PUT_ORDER = 1;
export const GET_ORDER = 2;
export const ABSENT_NUMBER = -1;
export const ABSENT_TEXT = "absent";

// An object of a program.
export class Item {
  constructor(value) {
    this.value = value;
  }
}

export function numberAt(index) {
  return Math.imul(index, 0x9e3779b1) & 0xffffff;
}

export function elementAt(kind, index) {
  const number = numberAt(index);
  switch (kind) {
    case "Double": return number + 0.5;
    case "Byte": return number & 127;
    case "String": return `e${number}`;
    case "Object": return new Item(number);
    default: return number;
  }
}

export function charAt(index) {
  return index % 16 === 15 ? "\u00e9" : String.fromCharCode(97 + (index % 26));
}

export function listOf(kind, n) {
  const elements = [];
  for (let i = 0; i < n; ++i) elements.push(elementAt(kind, i));
  return elements;
}

const TYPED = {Int: Int32Array, Double: Float64Array, Byte: Uint8Array};

export function typedOf(kind, n) {
  const elements = new TYPED[kind](n);
  for (let i = 0; i < n; ++i) elements[i] = elementAt(kind, i);
  return elements;
}

// Marsaglia's xorshift of 32 bits.
export function newRandom(seed) {
  let state = Math.imul(seed, 2654435761) | 1;
  return () => {
    state ^= state << 13;
    state ^= state >>> 17;
    state ^= state << 5;
    return state >>> 0;
  };
}

export function shuffledOrder(n, seed) {
  const order = new Array(n);
  for (let i = 0; i < n; ++i) order[i] = i;
  const draw = newRandom(seed);
  for (let i = n; i > 1; --i) {
    const other = draw() % i;
    const kept = order[i - 1];
    order[i - 1] = order[other];
    order[other] = kept;
  }
  return order;
}

export function keyOf(number) {
  return Math.imul(number, 0x9e3779b1) & 0x3fffffff;
}

export function keysInOrder(kind, n, seed, present = true) {
  const order = shuffledOrder(n, seed);
  if (kind === "String") return order.map((number) => (present ? "k" : "n") + keyOf(number));
  return order.map((number) => (present ? keyOf(number) : -1 - keyOf(number)));
}

// ---- What is sorted ------------------------------------------------------------------------------------------------

export function sortBatch(n) {
  return Math.max(1, Math.floor(100000 / n));
}

function adversarialAt(index, n) {
  const half = Math.floor(n / 4) * 2;
  if (index >= 2 * half) return index;
  if (index >= half) return 2 * (index - half) + 2;
  return index % 2 === 0 ? index + 1 : half + index;
}

const DRAWN = {
  Int: (draw) => draw | 0,
  Double: (draw) => (draw | 0) * 0.5,
  Byte: (draw) => draw & 127,
  String: (draw) => `k${draw & 0x3fffffff}`,
};

export function sortInputs(kind, pattern, n) {
  const draw = newRandom(n);
  const inputs = [];
  for (let copies = sortBatch(n); copies > 0; --copies) {
    const input = [];
    for (let i = 0; i < n; ++i) {
      switch (pattern) {
        case "random": input.push(DRAWN[kind](draw())); break;
        case "equal": input.push(draw() % 16); break;
        case "reversed": input.push(n - i); break;
        case "adversarial": input.push(adversarialAt(i, n)); break;
        default: input.push(i);
      }
    }
    for (let swaps = pattern === "nearly" ? Math.floor(n / 100) + 1 : 0; swaps > 0; --swaps) {
      const one = draw() % n;
      const other = draw() % n;
      [input[one], input[other]] = [input[other], input[one]];
    }
    inputs.push(input);
  }
  return inputs;
}

// ---- Checksums -----------------------------------------------------------------------------------------------------

// The low 32 bits of a whole number, which may be beyond those that the operators of bits take.
function low32(number) {
  return Number(BigInt.asUintN(32, BigInt(number)));
}

export function digestOfText(text) {
  let digest = 0;
  for (const byte of Buffer.from(text, "utf8")) digest = (Math.imul(digest, 31) + byte) | 0;
  return digest >>> 0;
}

export function digestOfDigits(text) {
  return digestOfText(text.replace(/[^0-9]/g, ""));
}

export function digestOf(kind, elements) {
  if (kind === "String") return digestOfText(elements.join(""));
  let digest = 0;
  for (const element of elements) {
    const number = kind === "Double" ? element * 2 : kind === "Object" ? element.value : element;
    digest = (Math.imul(digest, 31) + number) | 0;
  }
  return digest >>> 0;
}

export function digestOfNumber(kind, number) {
  return low32(kind === "Double" ? Math.trunc(number * 2) : number);
}

// Of a map or a set, whatever its order.
export function digestOfEntries(size, sum) {
  return low32(size * 31 + sum);
}
