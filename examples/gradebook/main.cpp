// Reads lines of a name, a subject and points from standard input and prints what they come to. It is written with the
// C++ API as any C++ program is with its containers: no handle is rooted, no error is asked for, and none is lost.
#include <vorn/collections.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

namespace {

struct Gradebook {
  vorn::sorted_map<std::string, vorn::list<double>> pointsOf;
  vorn::set<std::string> subjects;
  // The best result of each subject.
  vorn::map<std::string, vorn::tuple<double, std::string>> best;
};

// Whether the line was understood.
bool enter(Gradebook& book, const std::string& line) {
  std::istringstream words(line);
  std::string name;
  std::string subject;
  double points = 0;
  if (!(words >> name >> subject >> points)) return false;

  if (!book.pointsOf.contains(name)) book.pointsOf[name] = vorn::list<double>();
  book.pointsOf.at(name).push_back(points);
  book.subjects.insert(subject);
  const vorn::tuple<double, std::string> result(points, name);
  const auto before = book.best.try_get(subject);
  if (!before || before->get<0>() < points) book.best[subject] = result;
  return true;
}

double mean(const vorn::list<double>& points) { return points.sum() / static_cast<double>(points.size()); }

// How many of the means lie in each quarter of 0 to 100.
vorn::array<int> quarters(const vorn::list<double>& means) {
  vorn::array<int> counts(4);
  for (const double each : means) counts[std::clamp(static_cast<std::ptrdiff_t>(each / 25), 0L, 3L)] += 1;
  return counts;
}

void report(const Gradebook& book) {
  vorn::list<double> means;
  for (const auto& [name, points] : book.pointsOf) {
    means.push_back(mean(points));
    std::cout << name << ": " << points.sorted() << ", mean " << means.back() << '\n';
  }
  vorn::list<std::string> subjects(book.subjects);
  std::ranges::sort(subjects);
  for (const std::string& subject : std::as_const(subjects)) {
    const auto [points, name] = book.best.at(subject);
    std::cout << "best in " << subject << ": " << name << " with " << points << '\n';
  }
  std::cout << "means by quarter: " << quarters(means).join(" ") << '\n';
}

}  // namespace

int main() try {
  const vorn::RuntimeScope runtime;
  Gradebook book;
  std::string line;
  while (std::getline(std::cin, line)) {
    if (!enter(book, line)) std::cerr << "not understood: " << line << '\n';
  }
  report(book);
  return 0;
} catch (const std::exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
