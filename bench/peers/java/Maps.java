import java.util.HashMap;
import java.util.HashSet;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;

/** The workloads on maps and sets. Numbers are boxed where a program would, in the loop. */
final class Maps {
  private static final String FORM = "collections";
  private static final String BOTH = "Int,String";

  private static final Kind<Map<Object, Integer>> MAPS = new MapKind();
  private static final Kind<Map<Object, Integer>> SORTED_MAPS = new SortedMapKind();
  private static final Kind<Set<Object>> SETS = new SetKind();

  private Maps() {}

  // ---- Keys --------------------------------------------------------------------------------------------------------

  /** Keys that are there before the clock starts: numbers without boxes, or texts. */
  private abstract static class Keys {
    static Keys of(String kind, int n, int seed, boolean present) {
      return kind.equals("String")
          ? new TextKeys(Definitions.textKeysInOrder(n, seed, present))
          : new IntKeys(Definitions.keysInOrder(n, seed, present));
    }

    static Keys put(String kind, int n) {
      return of(kind, n, Definitions.PUT_ORDER, true);
    }

    /** A number in a new box. */
    abstract Object at(int index);
  }

  private static final class IntKeys extends Keys {
    private final int[] numbers;

    IntKeys(int[] numbers) {
      this.numbers = numbers;
    }

    @Override
    Object at(int index) {
      return numbers[index];
    }
  }

  private static final class TextKeys extends Keys {
    private final String[] texts;

    TextKeys(String[] texts) {
      this.texts = texts;
    }

    @Override
    Object at(int index) {
      return texts[index];
    }
  }

  // ---- Maps and sets as one ----------------------------------------------------------------------------------------

  /** What maps and sets do in their own ways. */
  private abstract static class Kind<Collection> {
    abstract Collection make();

    abstract int size(Collection collection);

    abstract void put(Collection collection, Object key, int value);

    abstract void remove(Collection collection, Object key);

    /** Of the values of a map, the elements of a set, or the lengths of those that are texts. */
    abstract long sum(Collection collection, String kind);

    Collection filled(Keys keys, int[] values, int n) {
      Collection collection = make();
      for (int i = 0; i < n; i++) put(collection, keys.at(i), values[i]);
      return collection;
    }

    Collection filled(String kind, int n) {
      return filled(Keys.put(kind, n), Definitions.shuffledOrder(n, Definitions.PUT_ORDER), n);
    }

    long digest(Collection collection, String kind) {
      return Definitions.digestOfNumber(size(collection) * 31L + sum(collection, kind));
    }
  }

  private static class MapKind extends Kind<Map<Object, Integer>> {
    @Override
    Map<Object, Integer> make() {
      return new HashMap<>();
    }

    @Override
    int size(Map<Object, Integer> map) {
      return map.size();
    }

    @Override
    void put(Map<Object, Integer> map, Object key, int value) {
      map.put(key, value);
    }

    @Override
    void remove(Map<Object, Integer> map, Object key) {
      map.remove(key);
    }

    @Override
    long sum(Map<Object, Integer> map, String kind) {
      long sum = 0;
      for (int value : map.values()) sum += value;
      return sum;
    }
  }

  private static final class SortedMapKind extends MapKind {
    @Override
    Map<Object, Integer> make() {
      return new TreeMap<>();
    }
  }

  private static final class SetKind extends Kind<Set<Object>> {
    @Override
    Set<Object> make() {
      return new HashSet<>();
    }

    @Override
    int size(Set<Object> set) {
      return set.size();
    }

    @Override
    void put(Set<Object> set, Object key, int value) {
      set.add(key);
    }

    @Override
    void remove(Set<Object> set, Object key) {
      set.remove(key);
    }

    @Override
    long sum(Set<Object> set, String kind) {
      long sum = 0;
      if (kind.equals("String")) {
        for (Object text : set) sum += ((String) text).length();
      } else {
        for (Object number : set) sum += (Integer) number;
      }
      return sum;
    }
  }

  /** A row whose result is a collection. */
  private abstract static class Building<Collection> extends Row {
    private final Kind<Collection> collections;
    private final String kind;

    Building(Kind<Collection> collections, String kind, long operations) {
      super(operations);
      this.collections = collections;
      this.kind = kind;
    }

    @Override
    @SuppressWarnings("unchecked")
    long checksum() {
      return collections.digest((Collection) result, kind);
    }
  }

  // ---- The workloads -----------------------------------------------------------------------------------------------

  private static <Collection> Row.Maker add(Kind<Collection> collections) {
    return (kind, n) -> {
      Keys keys = Keys.put(kind, n);
      int[] values = Definitions.shuffledOrder(n, Definitions.PUT_ORDER);
      return new Building<Collection>(collections, kind, n) {
        @Override
        void run() {
          result = collections.filled(keys, values, n);
        }
      };
    };
  }

  // Lookups are so quick that the compiler's way through Keys and Kind would be a fourth of them: each has its own loop.

  private static Row.Maker get(Kind<Map<Object, Integer>> maps, boolean present) {
    return (kind, n) -> {
      Map<Object, Integer> map = maps.filled(kind, n);
      if (kind.equals("String")) {
        String[] texts = Definitions.textKeysInOrder(n, Definitions.GET_ORDER, present);
        return new Row(n) {
          @Override
          void run() {
            long sum = 0;
            for (String text : texts) {
              Integer value = map.get(text);
              if (value != null) sum += value;
            }
            number = sum;
          }
        };
      }
      int[] keys = Definitions.keysInOrder(n, Definitions.GET_ORDER, present);
      return new Row(n) {
        @Override
        void run() {
          long sum = 0;
          for (int key : keys) {
            Integer value = map.get(key);
            if (value != null) sum += value;
          }
          number = sum;
        }
      };
    };
  }

  private static Row.Maker contains(boolean present) {
    return (kind, n) -> {
      Set<Object> set = SETS.filled(kind, n);
      if (kind.equals("String")) {
        String[] texts = Definitions.textKeysInOrder(n, Definitions.GET_ORDER, present);
        return new Row(n) {
          @Override
          void run() {
            long found = 0;
            for (String text : texts) found += set.contains(text) ? 1 : 0;
            number = found;
          }
        };
      }
      int[] keys = Definitions.keysInOrder(n, Definitions.GET_ORDER, present);
      return new Row(n) {
        @Override
        void run() {
          long found = 0;
          for (int key : keys) found += set.contains(key) ? 1 : 0;
          number = found;
        }
      };
    };
  }

  private static <Collection> Row.Maker iterate(Kind<Collection> collections) {
    return (kind, n) -> {
      Collection collection = collections.filled(kind, n);
      return new Row(n) {
        @Override
        void run() {
          number = collections.sum(collection, kind);
        }
      };
    };
  }

  private static <Collection> Row.Maker remove(Kind<Collection> collections) {
    return (kind, n) -> {
      Keys keys = Keys.put(kind, n);
      int[] values = Definitions.shuffledOrder(n, Definitions.PUT_ORDER);
      Keys removed = Keys.of(kind, n, Definitions.GET_ORDER, true);
      return new Building<Collection>(collections, kind, n) {
        @Override
        void run() {
          Collection collection = collections.filled(keys, values, n);
          for (int i = 0; i < n; i++) collections.remove(collection, removed.at(i));
          result = collection;
        }
      };
    };
  }

  /** Of twice as many keys, half are in the collection at any time. */
  private static <Collection> Row.Maker churn(Kind<Collection> collections) {
    return (kind, n) -> {
      Keys keys = Keys.put(kind, 2 * n);
      int[] values = Definitions.shuffledOrder(2 * n, Definitions.PUT_ORDER);
      Collection collection = collections.filled(keys, values, n);
      return new Building<Collection>(collections, kind, n) {
        private int oldest;

        @Override
        void run() {
          for (int i = 0; i < n; i++) {
            int newest = oldest < n ? oldest + n : oldest - n;
            collections.remove(collection, keys.at(oldest));
            collections.put(collection, keys.at(newest), values[newest]);
            oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
          }
          result = collection;
        }
      };
    };
  }

  private static Row smallMaps(String kind, int n) {
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (int i = 0; i < n; i++) {
          Map<Integer, Integer> map = new HashMap<>();
          for (int j = 0; j < 8; j++) map.put(i + j, i + j);
          sum += map.get(i + 7);
        }
        number = sum;
      }
    };
  }

  static void addTo(Report report) {
    report.add(FORM, "map-put", BOTH, add(MAPS));
    report.add(FORM, "map-get", BOTH, get(MAPS, true));
    report.add(FORM, "map-miss", BOTH, get(MAPS, false));
    report.add(FORM, "map-iterate", BOTH, iterate(MAPS));
    report.add(FORM, "map-remove", BOTH, remove(MAPS));
    report.add(FORM, "map-churn", BOTH, churn(MAPS));
    report.add(FORM, "set-add", BOTH, add(SETS));
    report.add(FORM, "set-contains", BOTH, contains(true));
    report.add(FORM, "set-miss", BOTH, contains(false));
    report.add(FORM, "set-iterate", BOTH, iterate(SETS));
    report.add(FORM, "set-remove", BOTH, remove(SETS));
    report.add(FORM, "set-churn", BOTH, churn(SETS));
    report.add(FORM, "sorted-put", "Int", add(SORTED_MAPS));
    report.add(FORM, "sorted-get", "Int", get(SORTED_MAPS, true));
    report.add(FORM, "sorted-iterate", "Int", iterate(SORTED_MAPS));
    report.add(FORM, "small-maps", "Int", Maps::smallMaps);
  }
}
