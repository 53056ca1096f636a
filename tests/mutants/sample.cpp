// What the test of planted faults plants faults in: each of them changes what the program prints, or how it ends.
#include <array>
#include <cstdint>
#include <cstdio>

namespace {

// The compiler evaluates these: nothing is planted there.
constexpr int kRows = 3;
static_assert(kRows + 1 == 4);
template <int kCount>
constexpr int kTwice = 2 * kCount;
std::array<int, 4> numbers = {2, 4, 6, 8};

template <class Number>
Number sumBelow(Number limit) {
  Number sum = 0;
  for (int number : numbers) {
    if (number < limit) sum += number;
  }
  return sum;
}

bool bothPositive(int left, int right) { return left > 0 && right > 0; }

void print(const char* what, std::uint64_t value) {
  std::printf("%s %llu\n", what, static_cast<unsigned long long>(value));
}

int product(int left, int right) {
  if (right == 0) return -1;
  return left * right;
}

int eightTimes(int number) { return kTwice<kRows + 1> * number; }

}  // namespace

int main() {
  print("below five", static_cast<std::uint64_t>(sumBelow(5)));
  print("below four", static_cast<std::uint64_t>(sumBelow(4L)));
  print("one positive", bothPositive(1, -1) ? 1 : 2);
  print("both positive", bothPositive(1, 1) ? 3 : 4);
  print("none positive", bothPositive(0, 0) ? 5 : 6);
  print("first zero", bothPositive(0, 1) ? 7 : 8);
  print("second zero", bothPositive(1, 0) ? 7 : 8);
  print("product", static_cast<std::uint64_t>(product(6, 2)));
  print("product with zero", static_cast<std::uint64_t>(product(5, 0)));
  print("product with one", static_cast<std::uint64_t>(product(0, 1)));
  print("eight times", static_cast<std::uint64_t>(eightTimes(2)));
  return 0;
}
