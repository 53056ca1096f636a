import java.util.ArrayList;
import java.util.LinkedList;
import java.util.List;

/** The workloads on the lists of the language, whose numbers are boxed. */
final class Collections {
  private static final String FORM = "collections";
  private static final String NUMBERS = "Int,Long,Double,Byte";

  private Collections() {}

  /** A row whose result is a list. */
  private abstract static class Building extends Row {
    Building(long operations) {
      super(operations);
    }

    @Override
    long checksum() {
      return Definitions.digestOf((List<?>) result);
    }
  }

  /** A row whose result is a list that ends empty. */
  private abstract static class Emptying extends Row {
    Emptying(long operations) {
      super(operations);
    }

    @Override
    long checksum() {
      return ((List<?>) result).size();
    }
  }

  static Row append(String kind, int n) {
    switch (kind) {
      case "Long":
        return new Building(n) {
          @Override
          void run() {
            List<Long> list = new ArrayList<>();
            for (int i = 0; i < n; i++) list.add((long) i);
            result = list;
          }
        };
      case "Double":
        return new Building(n) {
          @Override
          void run() {
            List<Double> list = new ArrayList<>();
            for (int i = 0; i < n; i++) list.add((double) i);
            result = list;
          }
        };
      case "Byte":
        return new Building(n) {
          @Override
          void run() {
            List<Byte> list = new ArrayList<>();
            for (int i = 0; i < n; i++) list.add((byte) (i & 127));
            result = list;
          }
        };
      case "Object":
        List<Definitions.Item> items = Definitions.listOf(kind, n);
        return new Building(n) {
          @Override
          void run() {
            List<Definitions.Item> list = new ArrayList<>();
            for (int i = 0; i < n; i++) list.add(items.get(i));
            result = list;
          }
        };
      default:
        return new Building(n) {
          @Override
          void run() {
            List<Integer> list = new ArrayList<>();
            for (int i = 0; i < n; i++) list.add(i);
            result = list;
          }
        };
    }
  }

  static Row read(String kind, int n) {
    switch (kind) {
      case "Long":
        ArrayList<Long> longs = Definitions.listOf(kind, n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < longs.size(); i++) sum += longs.get(i);
            number = sum;
          }
        };
      case "Double":
        ArrayList<Double> doubles = Definitions.listOf(kind, n);
        return new Row(n) {
          @Override
          void run() {
            double sum = 0;
            for (int i = 0; i < doubles.size(); i++) sum += doubles.get(i);
            real = sum;
          }

          @Override
          long checksum() {
            return Definitions.digestOfNumber(real);
          }
        };
      case "Byte":
        ArrayList<Byte> bytes = Definitions.listOf(kind, n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < bytes.size(); i++) sum += bytes.get(i);
            number = sum;
          }
        };
      case "Object":
        ArrayList<Definitions.Item> items = Definitions.listOf(kind, n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < items.size(); i++) sum += items.get(i).value;
            number = sum;
          }
        };
      default:
        ArrayList<Integer> ints = Definitions.listOf(kind, n);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (int i = 0; i < ints.size(); i++) sum += ints.get(i);
            number = sum;
          }
        };
    }
  }

  static Row write(String kind, int n) {
    if (kind.equals("Double")) {
      ArrayList<Double> doubles = Definitions.listOf(kind, n);
      return new Building(n) {
        @Override
        void run() {
          for (int i = 0; i < doubles.size(); i++) doubles.set(i, (double) i);
          result = doubles;
        }
      };
    }
    ArrayList<Integer> ints = Definitions.listOf(kind, n);
    return new Building(n) {
      @Override
      void run() {
        for (int i = 0; i < ints.size(); i++) ints.set(i, i);
        result = ints;
      }
    };
  }

  static Row readRandom(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    int[] order = Definitions.shuffledOrder(n, Definitions.GET_ORDER);
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (int at : order) sum += list.get(at);
        number = sum;
      }
    };
  }

  static Row appendRemoveLast(String kind, int n) {
    return new Emptying(n) {
      @Override
      void run() {
        List<Integer> list = new ArrayList<>();
        for (int i = 0; i < n; i++) list.add(i);
        for (int i = n; i > 0; i--) list.remove(i - 1);
        result = list;
      }
    };
  }

  static Row insertFront(String kind, int n) {
    return new Building(n) {
      @Override
      void run() {
        List<Integer> list = new ArrayList<>();
        for (int i = 0; i < n; i++) list.add(0, i);
        result = list;
      }
    };
  }

  static Row removeFront(String kind, int n) {
    return new Emptying(n) {
      @Override
      void run() {
        List<Integer> list = new ArrayList<>();
        for (int i = 0; i < n; i++) list.add(i);
        for (int i = 0; i < n; i++) list.remove(0);
        result = list;
      }
    };
  }

  private static Row searching(String kind, int n, long operations, Object value) {
    ArrayList<Object> list = Definitions.listOf(kind, n);
    return new Row(operations) {
      @Override
      void run() {
        number = list.indexOf(value);
      }
    };
  }

  static Row searchHit(String kind, int n) {
    int at = (int) ((long) n * 3 / 4);
    return searching(kind, n, at + 1, Definitions.elementAt(kind, at));
  }

  static Row searchMiss(String kind, int n) {
    Object value = kind.equals("String") ? Definitions.ABSENT_TEXT : (Object) Definitions.ABSENT_NUMBER;
    return searching(kind, n, n, kind.equals("Double") ? (Object) (double) Definitions.ABSENT_NUMBER : value);
  }

  static Row count(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    Integer value = Definitions.numberAt(n / 2);
    return new Row(n) {
      @Override
      void run() {
        number = java.util.Collections.frequency(list, value);
      }
    };
  }

  static Row reverse(String kind, int n) {
    ArrayList<Object> list = Definitions.listOf(kind, n);
    return new Building(n) {
      @Override
      void run() {
        java.util.Collections.reverse(list);
        result = list;
      }
    };
  }

  static Row slice(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    return new Building(n / 2) {
      @Override
      void run() {
        result = new ArrayList<>(list.subList(n / 4, n / 4 + n / 2));
      }
    };
  }

  static Row sliceStrided(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    return new Building((n + 1) / 2) {
      @Override
      void run() {
        ArrayList<Integer> made = new ArrayList<>((n + 1) / 2);
        for (int i = 0; i < n; i += 2) made.add(list.get(i));
        result = made;
      }
    };
  }

  static Row concat(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    ArrayList<Integer> other = Definitions.listOf(kind, n);
    return new Building(2L * n) {
      @Override
      void run() {
        ArrayList<Integer> made = new ArrayList<>(2 * n);
        made.addAll(list);
        made.addAll(other);
        result = made;
      }
    };
  }

  static Row display(String kind, int n) {
    ArrayList<Integer> list = Definitions.listOf(kind, n);
    return new Row(n) {
      @Override
      void run() {
        result = list.toString();
      }

      @Override
      long checksum() {
        return Definitions.digestOfDigits((String) result);
      }
    };
  }

  static Row join(String kind, int n) {
    ArrayList<Object> list = Definitions.listOf(kind, n);
    return new Row(n) {
      @Override
      void run() {
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < list.size(); i++) {
          if (i > 0) text.append(", ");
          text.append(list.get(i));
        }
        result = text.toString();
      }

      @Override
      long checksum() {
        return Definitions.digestOfText((String) result);
      }
    };
  }

  @SuppressWarnings({"unchecked", "rawtypes"})
  static Row.Maker sort(String pattern) {
    return (kind, n) -> {
      int[][] draws = Definitions.sortDraws(pattern, n);
      List<List<Comparable>> inputs = new ArrayList<>();
      for (int[] input : draws) {
        List<Comparable> list = new ArrayList<>();
        for (int draw : input) list.add(Definitions.drawn(kind, draw));
        inputs.add(list);
      }
      List<List<Comparable>> work = new ArrayList<>();
      return new Row((long) n * draws.length) {
        @Override
        boolean isPrepared() {
          return true;
        }

        @Override
        void prepare() {
          work.clear();
          for (List<Comparable> input : inputs) work.add(new ArrayList<>(input));
        }

        @Override
        void run() {
          for (List<Comparable> list : work) java.util.Collections.sort(list);
        }

        @Override
        long checksum() {
          return Definitions.digestOf(work.get(work.size() - 1));
        }
      };
    };
  }

  static Row linkedAppend(String kind, int n) {
    ArrayList<Definitions.Item> items = Definitions.listOf(kind, n);
    return new Building(n) {
      @Override
      void run() {
        List<Definitions.Item> list = new LinkedList<>();
        for (int i = 0; i < n; i++) list.add(items.get(i));
        result = list;
      }
    };
  }

  static Row linkedIterate(String kind, int n) {
    List<Definitions.Item> list = new LinkedList<>(Definitions.<Definitions.Item>listOf(kind, n));
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (Definitions.Item item : list) sum += item.value;
        number = sum;
      }
    };
  }

  static Row smallLists(String kind, int n) {
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (int i = 0; i < n; i++) {
          List<Integer> list = new ArrayList<>();
          for (int j = 0; j < 8; j++) list.add(i + j);
          sum += list.get(7);
        }
        number = sum;
      }
    };
  }

  private static void addOnes(List<Integer> list, int times) {
    for (int i = 0; i < times; i++) list.add(1);
  }

  static Row.Maker synchronisedAdd(int threads) {
    return (kind, n) ->
        new Row(n) {
          @Override
          void run() {
            List<Integer> list = java.util.Collections.synchronizedList(new ArrayList<>());
            if (threads == 1) {
              addOnes(list, n);
            } else {
              Thread other = new Thread(() -> addOnes(list, n / 2));
              other.start();
              addOnes(list, n - n / 2);
              try {
                other.join();
              } catch (InterruptedException interrupted) {
                throw new IllegalStateException(interrupted);
              }
            }
            number = list.size();
          }

          @Override
          boolean onTheWall() {
            return threads > 1;
          }
        };
  }

  static void addTo(Report report) {
    report.add(FORM, "append", NUMBERS + ",Object", Collections::append);
    report.add(FORM, "read", NUMBERS + ",Object", Collections::read);
    report.add(FORM, "write", "Int,Double", Collections::write);
    report.add(FORM, "read-random", "Int", Collections::readRandom);
    report.add(FORM, "append-remove-last", "Int", Collections::appendRemoveLast);
    report.add(FORM, "insert-front", "Int", Collections::insertFront);
    report.add(FORM, "remove-front", "Int", Collections::removeFront);
    report.add(FORM, "search-hit", "Int,String", Collections::searchHit);
    report.add(FORM, "search-miss", "Int,Double,String", Collections::searchMiss);
    report.add(FORM, "count", "Int", Collections::count);
    report.add(FORM, "sum", NUMBERS, Collections::read);
    report.add(FORM, "reverse", "Int,Long", Collections::reverse);
    report.add(FORM, "slice", "Int", Collections::slice);
    report.add(FORM, "slice-strided", "Int", Collections::sliceStrided);
    report.add(FORM, "concat", "Int", Collections::concat);
    report.add(FORM, "display", "Int", Collections::display);
    report.add(FORM, "join", "Int,String", Collections::join);
    report.add(FORM, "sort", NUMBERS + ",String", sort("random"));
    for (String pattern : new String[] {"sorted", "reversed", "nearly", "equal", "adversarial"}) {
      report.add(FORM, "sort-" + pattern, "Int", sort(pattern));
    }
    report.add(FORM, "linked-append", "Object", Collections::linkedAppend);
    report.add(FORM, "linked-iterate", "Object", Collections::linkedIterate);
    report.add(FORM, "small-lists", "Int", Collections::smallLists);
    report.add(FORM, "synchronised-add", "Int", synchronisedAdd(1));
    report.add(FORM, "synchronised-add-2", "Int", synchronisedAdd(2));
  }
}
