/** The workloads on arrays of plain numbers, by which programs avoid boxes: a list is an array and its size. */
final class Arrays {
  private static final String FORM = "arrays";

  private Arrays() {}

  /** A row whose result is an array. */
  private abstract static class Building extends Row {
    Building(long operations) {
      super(operations);
    }

    @Override
    long checksum() {
      return Definitions.digestOfArray(result);
    }
  }

  private static int[] intsOf(int n) {
    int[] ints = new int[n];
    for (int i = 0; i < n; i++) ints[i] = Definitions.numberAt(i);
    return ints;
  }

  private static long[] longsOf(int n) {
    long[] longs = new long[n];
    for (int i = 0; i < n; i++) longs[i] = Definitions.numberAt(i) + (1L << 33);
    return longs;
  }

  private static double[] doublesOf(int n) {
    double[] doubles = new double[n];
    for (int i = 0; i < n; i++) doubles[i] = Definitions.numberAt(i) + 0.5;
    return doubles;
  }

  private static byte[] bytesOf(int n) {
    byte[] bytes = new byte[n];
    for (int i = 0; i < n; i++) bytes[i] = (byte) (Definitions.numberAt(i) & 127);
    return bytes;
  }

  // ---- Growing arrays ----------------------------------------------------------------------------------------------

  private static final int FIRST_CAPACITY = 10; // that of ArrayList

  static Row append(String kind, int n) {
    switch (kind) {
      case "Long":
        return new Building(n) {
          @Override
          void run() {
            long[] list = new long[FIRST_CAPACITY];
            int size = 0;
            for (int i = 0; i < n; i++) {
              if (size == list.length) list = java.util.Arrays.copyOf(list, size + (size >> 1));
              list[size++] = i;
            }
            result = list;
          }

          @Override
          long checksum() {
            return Definitions.digestOfArray(java.util.Arrays.copyOf((long[]) result, n));
          }
        };
      case "Double":
        return new Building(n) {
          @Override
          void run() {
            double[] list = new double[FIRST_CAPACITY];
            int size = 0;
            for (int i = 0; i < n; i++) {
              if (size == list.length) list = java.util.Arrays.copyOf(list, size + (size >> 1));
              list[size++] = i;
            }
            result = list;
          }

          @Override
          long checksum() {
            return Definitions.digestOfArray(java.util.Arrays.copyOf((double[]) result, n));
          }
        };
      case "Byte":
        return new Building(n) {
          @Override
          void run() {
            byte[] list = new byte[FIRST_CAPACITY];
            int size = 0;
            for (int i = 0; i < n; i++) {
              if (size == list.length) list = java.util.Arrays.copyOf(list, size + (size >> 1));
              list[size++] = (byte) (i & 127);
            }
            result = list;
          }

          @Override
          long checksum() {
            return Definitions.digestOfArray(java.util.Arrays.copyOf((byte[]) result, n));
          }
        };
      default:
        return new Building(n) {
          @Override
          void run() {
            int[] list = new int[FIRST_CAPACITY];
            int size = 0;
            for (int i = 0; i < n; i++) {
              if (size == list.length) list = java.util.Arrays.copyOf(list, size + (size >> 1));
              list[size++] = i;
            }
            result = list;
          }

          @Override
          long checksum() {
            return Definitions.digestOfArray(java.util.Arrays.copyOf((int[]) result, n));
          }
        };
    }
  }

  // ---- Arrays of one size ------------------------------------------------------------------------------------------

  static Row read(String kind, int n) {
    switch (kind) {
      case "Long":
        long[] longs = longsOf(n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < longs.length; i++) sum += longs[i];
            number = sum;
          }
        };
      case "Double":
        double[] doubles = doublesOf(n);
        return new Row(n) {
          @Override
          void run() {
            double sum = 0;
            for (int i = 0; i < doubles.length; i++) sum += doubles[i];
            real = sum;
          }

          @Override
          long checksum() {
            return Definitions.digestOfNumber(real);
          }
        };
      case "Byte":
        byte[] bytes = bytesOf(n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < bytes.length; i++) sum += bytes[i];
            number = sum;
          }
        };
      default:
        int[] ints = intsOf(n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < ints.length; i++) sum += ints[i];
            number = sum;
          }
        };
    }
  }

  static Row write(String kind, int n) {
    if (kind.equals("Double")) {
      double[] doubles = doublesOf(n);
      return new Building(n) {
        @Override
        void run() {
          for (int i = 0; i < doubles.length; i++) doubles[i] = i;
          result = doubles;
        }
      };
    }
    int[] ints = intsOf(n);
    return new Building(n) {
      @Override
      void run() {
        for (int i = 0; i < ints.length; i++) ints[i] = i;
        result = ints;
      }
    };
  }

  static Row readRandom(String kind, int n) {
    int[] ints = intsOf(n);
    int[] order = Definitions.shuffledOrder(n, Definitions.GET_ORDER);
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (int at : order) sum += ints[at];
        number = sum;
      }
    };
  }

  static Row prefixSums(String kind, int n) {
    int[] ints = intsOf(n);
    return new Building(n) {
      @Override
      void run() {
        for (int i = 1; i < ints.length; i++) ints[i] += ints[i - 1];
        result = ints;
      }
    };
  }

  private static int indexOf(int[] ints, int value) {
    for (int i = 0; i < ints.length; i++) {
      if (ints[i] == value) return i;
    }
    return -1;
  }

  private static Row searching(int n, long operations, int value) {
    int[] ints = intsOf(n);
    return new Row(operations) {
      @Override
      void run() {
        number = indexOf(ints, value);
      }
    };
  }

  static Row searchHit(String kind, int n) {
    int at = (int) ((long) n * 3 / 4);
    return searching(n, at + 1, Definitions.numberAt(at));
  }

  static Row searchMiss(String kind, int n) {
    return searching(n, n, Definitions.ABSENT_NUMBER);
  }

  static Row slice(String kind, int n) {
    int[] ints = intsOf(n);
    return new Building(n / 2) {
      @Override
      void run() {
        result = java.util.Arrays.copyOfRange(ints, n / 4, n / 4 + n / 2);
      }
    };
  }

  static Row concat(String kind, int n) {
    int[] ints = intsOf(n);
    int[] others = intsOf(n);
    return new Building(2L * n) {
      @Override
      void run() {
        int[] made = java.util.Arrays.copyOf(ints, 2 * n);
        System.arraycopy(others, 0, made, n, n);
        result = made;
      }
    };
  }

  static Row display(String kind, int n) {
    int[] ints = intsOf(n);
    return new Row(n) {
      @Override
      void run() {
        result = java.util.Arrays.toString(ints);
      }

      @Override
      long checksum() {
        return Definitions.digestOfDigits((String) result);
      }
    };
  }

  static Row textOfChars(String kind, int n) {
    char[] characters = new char[n];
    for (int i = 0; i < n; i++) characters[i] = Definitions.charAt(i);
    return new Row(n) {
      @Override
      void run() {
        result = new String(characters);
      }

      @Override
      long checksum() {
        return Definitions.digestOfText((String) result);
      }
    };
  }

  // ---- Sorts -------------------------------------------------------------------------------------------------------

  static Row.Maker sort(String pattern) {
    return (kind, n) -> {
      int[][] draws = Definitions.sortDraws(pattern, n);
      Object[] work = new Object[draws.length];
      return new Row((long) n * draws.length) {
        @Override
        boolean isPrepared() {
          return true;
        }

        @Override
        void prepare() {
          for (int i = 0; i < work.length; i++) work[i] = inputOf(kind, draws[i]);
        }

        @Override
        void run() {
          for (Object input : work) sortOne(kind, input);
        }

        @Override
        long checksum() {
          return Definitions.digestOfArray(work[work.length - 1]);
        }
      };
    };
  }

  private static Object inputOf(String kind, int[] draws) {
    switch (kind) {
      case "Long":
        return java.util.Arrays.stream(draws).asLongStream().map(draw -> draw << 20).toArray();
      case "Double":
        return java.util.Arrays.stream(draws).mapToDouble(draw -> draw * 0.5).toArray();
      case "Byte":
        byte[] bytes = new byte[draws.length];
        for (int i = 0; i < bytes.length; i++) bytes[i] = (byte) (draws[i] & 127);
        return bytes;
      default:
        return draws.clone();
    }
  }

  private static void sortOne(String kind, Object input) {
    switch (kind) {
      case "Long":
        java.util.Arrays.sort((long[]) input);
        break;
      case "Double":
        java.util.Arrays.sort((double[]) input);
        break;
      case "Byte":
        java.util.Arrays.sort((byte[]) input);
        break;
      default:
        java.util.Arrays.sort((int[]) input);
    }
  }

  static void addTo(Report report) {
    final String numbers = "Int,Long,Double,Byte";
    report.add(FORM, "append", numbers, Arrays::append);
    report.add(FORM, "read", numbers, Arrays::read);
    report.add(FORM, "sum", numbers, Arrays::read);
    report.add(FORM, "write", "Int,Double", Arrays::write);
    report.add(FORM, "read-random", "Int", Arrays::readRandom);
    report.add(FORM, "search-hit", "Int", Arrays::searchHit);
    report.add(FORM, "search-miss", "Int", Arrays::searchMiss);
    report.add(FORM, "slice", "Int", Arrays::slice);
    report.add(FORM, "concat", "Int", Arrays::concat);
    report.add(FORM, "display", "Int", Arrays::display);
    report.add(FORM, "text-of-chars", "Char", Arrays::textOfChars);
    report.add(FORM, "array-write", "Int", Arrays::write);
    report.add(FORM, "array-read", "Int", Arrays::read);
    report.add(FORM, "array-prefix-sums", "Int", Arrays::prefixSums);
    report.add(FORM, "sort", numbers, sort("random"));
    for (String pattern : new String[] {"sorted", "reversed", "nearly", "equal", "adversarial"}) {
      report.add(FORM, "sort-" + pattern, "Int", sort(pattern));
    }
  }
}
