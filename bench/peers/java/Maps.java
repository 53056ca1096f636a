import java.util.HashMap;
import java.util.HashSet;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;

/** The workloads on maps and sets. Numbers are boxed where a program would, in the loop. */
final class Maps {
  private static final String FORM = "collections";

  private Maps() {}

  /** A row whose result is a map. */
  private abstract static class Building extends Row {
    Building(long operations) {
      super(operations);
    }

    @Override
    long checksum() {
      Map<?, ?> map = (Map<?, ?>) result;
      long sum = 0;
      for (Object value : map.values()) sum += (Integer) value;
      return Definitions.digestOfNumber(map.size() * 31L + sum);
    }
  }

  private static void putAll(Map<Integer, Integer> map, int[] keys, int[] values) {
    for (int i = 0; i < keys.length; i++) map.put(keys[i], values[i]);
  }

  private static void putAll(Map<String, Integer> map, String[] keys, int[] values) {
    for (int i = 0; i < keys.length; i++) map.put(keys[i], values[i]);
  }

  private static <Filled extends Map<Integer, Integer>> Filled filled(Filled map, int n) {
    putAll(
        map,
        Definitions.keysInOrder(n, Definitions.PUT_ORDER, true),
        Definitions.shuffledOrder(n, Definitions.PUT_ORDER));
    return map;
  }

  private static Map<Integer, Integer> newMap(boolean sorted) {
    return sorted ? new TreeMap<>() : new HashMap<>();
  }

  static Row.Maker put(boolean sorted) {
    return (kind, n) -> {
      int[] values = Definitions.shuffledOrder(n, Definitions.PUT_ORDER);
      if (kind.equals("String")) {
        String[] texts = Definitions.textKeysInOrder(n, Definitions.PUT_ORDER, true);
        return new Building(n) {
          @Override
          void run() {
            Map<String, Integer> map = new HashMap<>();
            putAll(map, texts, values);
            result = map;
          }
        };
      }
      int[] keys = Definitions.keysInOrder(n, Definitions.PUT_ORDER, true);
      return new Building(n) {
        @Override
        void run() {
          Map<Integer, Integer> map = newMap(sorted);
          putAll(map, keys, values);
          result = map;
        }
      };
    };
  }

  static Row.Maker get(boolean sorted, boolean present) {
    return (kind, n) -> {
      if (kind.equals("String")) {
        Map<String, Integer> map = new HashMap<>();
        putAll(
            map,
            Definitions.textKeysInOrder(n, Definitions.PUT_ORDER, true),
            Definitions.shuffledOrder(n, Definitions.PUT_ORDER));
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
      Map<Integer, Integer> map = filled(newMap(sorted), n);
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

  static Row.Maker iterate(boolean sorted) {
    return (kind, n) -> {
      Map<Integer, Integer> map = filled(newMap(sorted), n);
      return new Row(n) {
        @Override
        void run() {
          long sum = 0;
          for (int value : map.values()) sum += value;
          number = sum;
        }
      };
    };
  }

  static Row remove(String kind, int n) {
    int[] values = Definitions.shuffledOrder(n, Definitions.PUT_ORDER);
    if (kind.equals("String")) {
      String[] texts = Definitions.textKeysInOrder(n, Definitions.PUT_ORDER, true);
      String[] removed = Definitions.textKeysInOrder(n, Definitions.GET_ORDER, true);
      return new Building(n) {
        @Override
        void run() {
          Map<String, Integer> map = new HashMap<>();
          putAll(map, texts, values);
          for (String text : removed) map.remove(text);
          result = map;
        }
      };
    }
    int[] keys = Definitions.keysInOrder(n, Definitions.PUT_ORDER, true);
    int[] removed = Definitions.keysInOrder(n, Definitions.GET_ORDER, true);
    return new Building(n) {
      @Override
      void run() {
        Map<Integer, Integer> map = new HashMap<>();
        putAll(map, keys, values);
        for (int key : removed) map.remove(key);
        result = map;
      }
    };
  }

  static Row churn(String kind, int n) {
    int[] order = Definitions.shuffledOrder(2 * n, Definitions.PUT_ORDER);
    Map<Integer, Integer> map = new HashMap<>();
    for (int i = 0; i < n; i++) map.put(Definitions.keyOf(order[i]), order[i]);
    return new Building(n) {
      private int oldest;

      @Override
      void run() {
        for (int i = 0; i < n; i++) {
          int newest = order[oldest < n ? oldest + n : oldest - n];
          map.remove(Definitions.keyOf(order[oldest]));
          map.put(Definitions.keyOf(newest), newest);
          oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
        }
        result = map;
      }
    };
  }

  static Row smallMaps(String kind, int n) {
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

  // ---- Sets --------------------------------------------------------------------------------------------------------

  static Row setAdd(String kind, int n) {
    if (kind.equals("String")) {
      String[] texts = Definitions.textKeysInOrder(n, Definitions.PUT_ORDER, true);
      return new Row(n) {
        @Override
        void run() {
          Set<String> set = new HashSet<>();
          for (String text : texts) set.add(text);
          result = set;
          number = set.size();
        }
      };
    }
    int[] keys = Definitions.keysInOrder(n, Definitions.PUT_ORDER, true);
    return new Row(n) {
      @Override
      void run() {
        Set<Integer> set = new HashSet<>();
        for (int key : keys) set.add(key);
        result = set;
        number = set.size();
      }
    };
  }

  private static Set<Integer> filledSet(int n) {
    Set<Integer> set = new HashSet<>();
    for (int key : Definitions.keysInOrder(n, Definitions.PUT_ORDER, true)) set.add(key);
    return set;
  }

  static Row setContains(String kind, int n) {
    if (kind.equals("String")) {
      Set<String> set = new HashSet<>();
      for (String text : Definitions.textKeysInOrder(n, Definitions.PUT_ORDER, true)) set.add(text);
      String[] texts = Definitions.textKeysInOrder(n, Definitions.GET_ORDER, true);
      return new Row(n) {
        @Override
        void run() {
          long found = 0;
          for (String text : texts) found += set.contains(text) ? 1 : 0;
          number = found;
        }
      };
    }
    Set<Integer> set = filledSet(n);
    int[] keys = Definitions.keysInOrder(n, Definitions.GET_ORDER, true);
    return new Row(n) {
      @Override
      void run() {
        long found = 0;
        for (int key : keys) found += set.contains(key) ? 1 : 0;
        number = found;
      }
    };
  }

  static Row setIterate(String kind, int n) {
    Set<Integer> set = filledSet(n);
    return new Row(n) {
      @Override
      void run() {
        long sum = 0;
        for (int key : set) sum += key;
        number = sum;
      }
    };
  }

  static void addTo(Report report) {
    report.add(FORM, "map-put", "Int,String", put(false));
    report.add(FORM, "map-get", "Int,String", get(false, true));
    report.add(FORM, "map-miss", "Int,String", get(false, false));
    report.add(FORM, "map-iterate", "Int", iterate(false));
    report.add(FORM, "map-remove", "Int,String", Maps::remove);
    report.add(FORM, "map-churn", "Int", Maps::churn);
    report.add(FORM, "set-add", "Int,String", Maps::setAdd);
    report.add(FORM, "set-contains", "Int,String", Maps::setContains);
    report.add(FORM, "set-iterate", "Int", Maps::setIterate);
    report.add(FORM, "sorted-put", "Int", put(true));
    report.add(FORM, "sorted-get", "Int", get(true, true));
    report.add(FORM, "sorted-iterate", "Int", iterate(true));
    report.add(FORM, "small-maps", "Int", Maps::smallMaps);
  }
}
