import java.util.ArrayList;
import java.util.List;

/** What elements, keys and orders are: bench/report/definitions.h for Java. */
final class Definitions {
  static final int PUT_ORDER = 1;
  static final int GET_ORDER = 2;
  static final int ABSENT_NUMBER = -1;
  static final String ABSENT_TEXT = "absent";

  private Definitions() {}

  /** An object of a program. */
  static final class Item {
    final int value;

    Item(int value) {
      this.value = value;
    }
  }

  /** Marsaglia's xorshift of 32 bits. */
  static final class Random {
    private int state;

    Random(int seed) {
      state = seed * (int) 2654435761L | 1;
    }

    int next() {
      state ^= state << 13;
      state ^= state >>> 17;
      state ^= state << 5;
      return state;
    }

    int below(int limit) {
      return Integer.remainderUnsigned(next(), limit);
    }
  }

  static int numberAt(int index) {
    return index * 0x9E3779B1 & 0xFFFFFF;
  }

  static String textAt(int index) {
    return "e" + numberAt(index);
  }

  static char charAt(int index) {
    return index % 16 == 15 ? '\u00e9' : (char) ('a' + index % 26);
  }

  static int[] shuffledOrder(int n, int seed) {
    int[] order = new int[n];
    for (int i = 0; i < n; i++) order[i] = i;
    Random random = new Random(seed);
    for (int i = n; i > 1; i--) {
      int other = random.below(i);
      int kept = order[i - 1];
      order[i - 1] = order[other];
      order[other] = kept;
    }
    return order;
  }

  static int keyOf(int number) {
    return number * 0x9E3779B1 & 0x3FFFFFFF;
  }

  /** Plain numbers: what a program boxes when it uses them as keys. */
  static int[] keysInOrder(int n, int seed, boolean present) {
    int[] keys = shuffledOrder(n, seed);
    for (int i = 0; i < n; i++) keys[i] = present ? keyOf(keys[i]) : -1 - keyOf(keys[i]);
    return keys;
  }

  /** New texts, so that one is equal to a key of a map and not the same object. */
  static String[] textKeysInOrder(int n, int seed, boolean present) {
    int[] order = shuffledOrder(n, seed);
    String[] keys = new String[n];
    for (int i = 0; i < n; i++) keys[i] = (present ? "k" : "n") + keyOf(order[i]);
    return keys;
  }

  static Object elementAt(String kind, int index) {
    int number = numberAt(index);
    switch (kind) {
      case "Long":
        return number + (1L << 33);
      case "Double":
        return number + 0.5;
      case "Byte":
        return (byte) (number & 127);
      case "String":
        return "e" + number;
      case "Object":
        return new Item(number);
      default:
        return number;
    }
  }

  @SuppressWarnings("unchecked")
  static <Element> ArrayList<Element> listOf(String kind, int n) {
    ArrayList<Element> list = new ArrayList<>();
    for (int i = 0; i < n; i++) list.add((Element) elementAt(kind, i));
    return list;
  }

  // ---- What is sorted --------------------------------------------------------------------------------------------

  static int sortBatch(int n) {
    return Math.max(1, 100_000 / n);
  }

  private static int adversarialAt(int index, int n) {
    int half = n / 4 * 2;
    if (index >= 2 * half) return index;
    if (index >= half) return 2 * (index - half) + 2;
    return index % 2 == 0 ? index + 1 : half + index;
  }

  /** The raw numbers that the inputs are made of; a kind makes its elements of them. */
  static int[][] sortDraws(String pattern, int n) {
    Random random = new Random(n);
    int[][] inputs = new int[sortBatch(n)][n];
    for (int[] input : inputs) {
      for (int i = 0; i < n; i++) {
        switch (pattern) {
          case "random":
            input[i] = random.next();
            break;
          case "equal":
            input[i] = random.below(16);
            break;
          case "reversed":
            input[i] = n - i;
            break;
          case "adversarial":
            input[i] = adversarialAt(i, n);
            break;
          default:
            input[i] = i;
        }
      }
      if (!pattern.equals("nearly")) continue;
      for (int swaps = n / 100 + 1; swaps > 0; swaps--) {
        int one = random.below(n);
        int other = random.below(n);
        int kept = input[one];
        input[one] = input[other];
        input[other] = kept;
      }
    }
    return inputs;
  }

  static Comparable<?> drawn(String kind, int draw) {
    switch (kind) {
      case "Long":
        return (long) draw << 20;
      case "Double":
        return draw * 0.5;
      case "Byte":
        return (byte) (draw & 127);
      case "String":
        return "k" + (draw & 0x3FFFFFFF);
      default:
        return draw;
    }
  }

  // ---- Checksums ---------------------------------------------------------------------------------------------------

  /** Of numbers by their low 32 bits, doubles doubled first; of texts by their bytes. */
  static final class Digest {
    private int value;

    void add(long number) {
      value = value * 31 + (int) number;
    }

    void add(Object element) {
      if (element instanceof String) {
        byte[] bytes = ((String) element).getBytes(java.nio.charset.StandardCharsets.UTF_8);
        for (byte letter : bytes) add(letter & 255L);
      } else if (element instanceof Double) {
        add((long) ((Double) element * 2));
      } else if (element instanceof Item) {
        add((long) ((Item) element).value);
      } else {
        add(((Number) element).longValue());
      }
    }

    long value() {
      return Integer.toUnsignedLong(value);
    }
  }

  static long digestOf(Iterable<?> elements) {
    Digest digest = new Digest();
    for (Object element : elements) digest.add(element);
    return digest.value();
  }

  /** Of an array of numbers. */
  static long digestOfArray(Object array) {
    List<Object> elements = new ArrayList<>();
    int length = java.lang.reflect.Array.getLength(array);
    for (int i = 0; i < length; i++) elements.add(java.lang.reflect.Array.get(array, i));
    return digestOf(elements);
  }

  static long digestOfText(String text) {
    return digestOf(List.of(text));
  }

  static long digestOfDigits(String text) {
    Digest digest = new Digest();
    for (int i = 0; i < text.length(); i++) {
      if (Character.isDigit(text.charAt(i))) digest.add(text.charAt(i));
    }
    return digest.value();
  }

  static long digestOfNumber(long number) {
    return number & 0xFFFFFFFFL;
  }

  static long digestOfNumber(double number) {
    return (long) (number * 2) & 0xFFFFFFFFL;
  }
}
