// The report's program for Node. The requests that it answers stand in bench/report/server.cpp.
import {createInterface} from "node:readline";

import {ROWS as LISTS} from "./lists.mjs";
import {ROWS as MAPS} from "./maps.mjs";
import {ROWS as TYPED} from "./typed.mjs";

const FORMS = {"arrays": {...LISTS, ...MAPS}, "typed arrays": TYPED};

let row = null;
let repetitions = 1;
let toBuild = [];
let kept = [];

// Of the whole process, in seconds: the collector's and the compiler's threads count.
function processorTime() {
  const {user, system} = process.cpuUsage();
  return (user + system) * 1e-6;
}

function secondsOfRuns(times) {
  let total = 0;
  if (row.prepare === undefined) {
    const start = processorTime();
    for (let i = 0; i < times; ++i) kept = row.run();
    return processorTime() - start;
  }
  for (let i = 0; i < times; ++i) {
    row.prepare();
    const start = processorTime();
    kept = row.run();
    total += processorTime() - start;
  }
  return total;
}

function open(form, workload, kind, n, seconds, warmUp) {
  row = FORMS[form][workload][1](kind, Number(n));
  if (row.prepare !== undefined) row.prepare();
  const answer = `ready\t${row.checksum(row.run())}`;
  const wanted = Number(seconds);
  repetitions = 1;
  for (let warm = 0; ;) {
    const taken = secondsOfRuns(repetitions);
    warm += taken;
    if (taken >= wanted && warm >= Number(warmUp)) return answer;
    if (taken >= wanted && taken < 2 * wanted) continue;
    const times = taken > 0 ? (wanted * 1.1) / taken : 10;
    repetitions = Math.floor(repetitions * Math.min(10, times)) + 1;
  }
}

function bytesInUse() {
  globalThis.gc();
  globalThis.gc();
  const {heapUsed, external} = process.memoryUsage();
  return heapUsed + external;
}

function namesOfRows() {
  let answer = "";
  for (const [form, rows] of Object.entries(FORMS)) {
    for (const [workload, [kinds]] of Object.entries(rows)) {
      for (const kind of kinds) answer += `row\t${form}\t${workload}\t${kind}\n`;
    }
  }
  return answer + "end";
}

const ANSWERS = {
  rows: namesOfRows,
  open,
  run: () => `time\t${(secondsOfRuns(repetitions) * 1e9) / repetitions / row.operations}`,
  allocated: () => "allocated\t-\t-",
  close: () => {
    row = null;
    kept = [];
    globalThis.gc();
    return "closed";
  },
  memory: (form, workload, kind, count, n) => {
    for (let i = 0; i < Number(count); ++i) toBuild.push(FORMS[form][workload][1](kind, Number(n)));
    return "prepared";
  },
  build: () => {
    kept = new Array(toBuild.length);
    const before = bytesInUse();
    for (let i = 0; i < toBuild.length; ++i) kept[i] = toBuild[i].run();
    return `built\t${bytesInUse() - before}`;
  },
};

createInterface({input: process.stdin}).on("line", (line) => {
  const [request, ...words] = line.split("\t");
  process.stdout.write(`${ANSWERS[request](...words)}\n`);
});
