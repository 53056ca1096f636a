/** A workload made ready for a size. */
abstract class Row {
  /** Makes a workload ready. */
  interface Maker {
    Row make(String kind, int n);
  }

  final long operations; // that one run does
  Object result; // where a run leaves what it built,
  long number; // or computed
  double real;

  Row(long operations) {
    this.operations = operations;
  }

  /** What is measured. */
  abstract void run();

  /** Of what a run left. */
  long checksum() {
    return Definitions.digestOfNumber(number);
  }

  /** Before every run, not measured. */
  void prepare() {}

  boolean isPrepared() {
    return false;
  }

  /** Whether several threads work, so that processor time tells nothing. */
  boolean onTheWall() {
    return false;
  }
}
