import com.sun.management.ThreadMXBean;
import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStreamReader;
import java.lang.management.ManagementFactory;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import sun.management.HotspotThreadMBean;
import sun.management.ManagementFactoryHelper;

/** The report's program for Java. The requests that it answers stand in bench/report/server.cpp. */
public final class Report {
  private static final ThreadMXBean THREADS = (ThreadMXBean) ManagementFactory.getThreadMXBean();
  // The collector's and the compiler's threads, which the public interface does not tell; the processor time of the
  // process comes in steps of ten milliseconds there.
  private static final HotspotThreadMBean INTERNAL = ManagementFactoryHelper.getHotspotThreadMBean();

  /** By form, workload and kind, split by tabs. */
  private final Map<String, Row.Maker> makers = new TreeMap<>();

  private final List<Row> kept = new ArrayList<>();
  private Row row;
  private long repetitions = 1;

  private Report() {
    Collections.addTo(this);
    Maps.addTo(this);
    Arrays.addTo(this);
  }

  void add(String form, String workload, String kinds, Row.Maker maker) {
    for (String kind : kinds.split(",")) makers.put(form + "\t" + workload + "\t" + kind, maker);
  }

  private static long internalTime() {
    long total = 0;
    for (long time : INTERNAL.getInternalThreadCpuTimes().values()) total += time;
    return total;
  }

  /** In nanoseconds: of this thread and those of the virtual machine, or on the wall. */
  private static long timeOf(Row row, long repetitions) {
    long internal = row.onTheWall() ? 0 : internalTime();
    long start = row.onTheWall() ? System.nanoTime() : THREADS.getCurrentThreadCpuTime();
    for (long i = 0; i < repetitions; i++) row.run();
    if (row.onTheWall()) return System.nanoTime() - start;
    return THREADS.getCurrentThreadCpuTime() - start + internalTime() - internal;
  }

  private static double nanosecondsOfRuns(Row row, long repetitions) {
    if (!row.isPrepared()) return timeOf(row, repetitions);
    double total = 0;
    for (long i = 0; i < repetitions; i++) {
      row.prepare();
      total += timeOf(row, 1);
    }
    return total;
  }

  private String open(String[] words) {
    row = makers.get(words[1] + "\t" + words[2] + "\t" + words[3]).make(words[3], Integer.parseInt(words[4]));
    row.prepare();
    row.run();
    String answer = "ready\t" + row.checksum();
    double wanted = Double.parseDouble(words[5]) * 1e9;
    double warmUp = Double.parseDouble(words[6]) * 1e9;
    double warm = 0;
    repetitions = 1;
    for (;;) {
      double taken = nanosecondsOfRuns(row, repetitions);
      warm += taken;
      if (taken >= wanted && warm >= warmUp) return answer;
      if (taken >= wanted && taken < 2 * wanted) continue;
      double times = taken > 0 ? wanted * 1.1 / taken : 10;
      repetitions = (long) (repetitions * Math.min(10, times)) + 1;
    }
  }

  private String allocated() {
    row.prepare();
    long thread = Thread.currentThread().getId();
    long before = THREADS.getThreadAllocatedBytes(thread);
    row.run();
    return "allocated\t-\t" + (THREADS.getThreadAllocatedBytes(thread) - before);
  }

  private static long bytesInUse() {
    Runtime runtime = Runtime.getRuntime();
    for (int i = 0; i < 3; i++) System.gc();
    return runtime.totalMemory() - runtime.freeMemory();
  }

  private String answer(String[] words) {
    switch (words[0]) {
      case "rows":
        StringBuilder answer = new StringBuilder();
        for (String name : makers.keySet()) answer.append("row\t").append(name).append('\n');
        return answer + "end";
      case "open":
        return open(words);
      case "run":
        return "time\t" + nanosecondsOfRuns(row, repetitions) / repetitions / row.operations;
      case "allocated":
        return allocated();
      case "close":
        row = null;
        System.gc();
        return "closed";
      case "memory":
        Row.Maker maker = makers.get(words[1] + "\t" + words[2] + "\t" + words[3]);
        int count = Integer.parseInt(words[4]);
        for (int i = 0; i < count; i++) kept.add(maker.make(words[3], Integer.parseInt(words[5])));
        return "prepared";
      case "build":
        long before = bytesInUse();
        for (Row each : kept) each.run();
        return "built\t" + (bytesInUse() - before);
      default:
        throw new IllegalArgumentException(words[0]);
    }
  }

  public static void main(String[] arguments) throws IOException {
    Report report = new Report();
    BufferedReader input = new BufferedReader(new InputStreamReader(System.in));
    for (String line = input.readLine(); line != null; line = input.readLine()) {
      System.out.println(report.answer(line.split("\t")));
    }
  }
}
