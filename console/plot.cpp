#include "console/plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "console/text.h"
#include "console/timing.h"

namespace vorn::console {

namespace {

// Maps both coordinates to 0..1 by their logarithms.
class Scale {
 public:
  explicit Scale(const std::vector<PlotPoint>& points)
      : lowest_(std::log10(positive(std::ranges::min(points, {}, &PlotPoint::nanoseconds).nanoseconds))),
        highest_(std::max(std::log10(positive(std::ranges::max(points, {}, &PlotPoint::nanoseconds).nanoseconds)),
                          lowest_ + kNarrowest)),
        first_(std::log10(static_cast<double>(points.front().size))),
        last_(std::max(std::log10(static_cast<double>(points.back().size)), first_ + kNarrowest)) {}

  [[nodiscard]] double across(std::uint64_t size) const {
    return (std::log10(static_cast<double>(size)) - first_) / (last_ - first_);
  }
  [[nodiscard]] double up(double nanoseconds) const {
    return (std::log10(positive(nanoseconds)) - lowest_) / (highest_ - lowest_);
  }
  // The time at a height.
  [[nodiscard]] double timeAt(double height) const { return std::pow(10, lowest_ + height * (highest_ - lowest_)); }

 private:
  // A time below what the clock tells counts as a tenth of a nanosecond: zero has no logarithm.
  static double positive(double nanoseconds) { return std::max(nanoseconds, 0.1); }

  // Equal times have a scale too.
  static constexpr double kNarrowest = 0.1;

  double lowest_;
  double highest_;
  double first_;
  double last_;
};

std::string rightAligned(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string escapedForXml(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '<') {
      escaped += "&lt;";
    } else if (c == '>') {
      escaped += "&gt;";
    } else if (c == '&') {
      escaped += "&amp;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

}  // namespace

std::vector<std::uint64_t> plotSizes(std::uint64_t largest) {
  std::vector<std::uint64_t> sizes;
  for (std::uint64_t decade = 1; decade <= largest; decade *= 10) {
    sizes.push_back(decade);
    if (decade * 3 <= largest) sizes.push_back(decade * 3);
  }
  return sizes;
}

std::string drawChart(const std::vector<PlotPoint>& points, std::size_t columns) {
  constexpr std::size_t kRows = 12;
  constexpr std::size_t kLabel = 9;
  const std::size_t width = std::clamp<std::size_t>(columns, 40, 100) - kLabel - 2;
  const Scale scale(points);
  std::vector<std::string> rows(kRows, std::string(width, ' '));
  for (const PlotPoint& point : points) {
    const auto column =
        static_cast<std::size_t>(std::lround(scale.across(point.size) * static_cast<double>(width - 1)));
    const auto row = static_cast<std::size_t>(std::lround((1 - scale.up(point.nanoseconds)) * (kRows - 1)));
    rows[row][column] = 'o';
  }
  std::string chart;
  for (std::size_t i = 0; i < kRows; ++i) {
    const bool labelled = i == 0 || i == kRows - 1 || i == kRows / 2;
    const double height = 1 - static_cast<double>(i) / (kRows - 1);
    chart += rightAligned(labelled ? durationText(scale.timeAt(height)) : "", kLabel) + " |" + rows[i];
    chart.erase(chart.find_last_not_of(' ') + 1);
    chart += '\n';
  }
  chart += std::string(kLabel + 1, ' ') + '+' + std::string(width, '-') + '\n';
  const std::string first = grouped(points.front().size);
  const std::string last = grouped(points.back().size);
  chart += std::string(kLabel + 2, ' ') + first +
           std::string(width > first.size() + last.size() ? width - first.size() - last.size() : 1, ' ') + last;
  return chart;
}

std::string drawSvg(const std::vector<PlotPoint>& points, const std::string& title) {
  constexpr double kWidth = 640;
  constexpr double kHeight = 400;
  constexpr double kLeft = 80;
  constexpr double kTop = 50;
  constexpr double kInnerWidth = kWidth - kLeft - 30;
  constexpr double kInnerHeight = kHeight - kTop - 50;
  const Scale scale(points);
  const auto x = [&](const PlotPoint& point) { return number(kLeft + scale.across(point.size) * kInnerWidth); };
  const auto y = [&](double nanoseconds) { return number(kTop + (1 - scale.up(nanoseconds)) * kInnerHeight); };
  const auto label = [](const std::string& left, const std::string& top, const char* anchor, const std::string& text) {
    return "  <text x=\"" + left + "\" y=\"" + top + "\" text-anchor=\"" + anchor + "\">" + text + "</text>\n";
  };

  std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="640" height="400" viewBox="0 0 640 400" )"
                    R"(font-family="sans-serif" font-size="12">
  <rect width="640" height="400" fill="white"/>
)";
  svg += label(number(kWidth / 2), "28", "middle", escapedForXml(title));
  for (const double height : {0.0, 0.5, 1.0}) {
    const double time = scale.timeAt(height);
    svg += "  <line x1=\"" + number(kLeft) + "\" x2=\"" + number(kLeft + kInnerWidth) + "\" y1=\"" + y(time) +
           "\" y2=\"" + y(time) + R"(" stroke="#cccccc"/>)" + "\n";
    svg += label(number(kLeft - 8), y(time), "end", durationText(time));
  }
  std::string line;
  for (const PlotPoint& point : points) {
    line += (line.empty() ? "" : " ") + x(point) + "," + y(point.nanoseconds);
    svg += "  <circle cx=\"" + x(point) + "\" cy=\"" + y(point.nanoseconds) + R"(" r="3" fill="#1f6feb"><title>)" +
           grouped(point.size) + ": " + durationText(point.nanoseconds) + "</title></circle>\n";
  }
  svg += "  <polyline points=\"" + line + "\" fill=\"none\" stroke=\"#1f6feb\"/>\n";
  for (const PlotPoint& point : points) {
    const bool power =
        std::pow(10, std::round(std::log10(static_cast<double>(point.size)))) == static_cast<double>(point.size);
    if (power) svg += label(x(point), number(kTop + kInnerHeight + 20), "middle", grouped(point.size));
  }
  return svg + "</svg>\n";
}

double growthExponent(const std::vector<PlotPoint>& points) {
  // Least squares over the logarithms.
  double n = 0;
  double sumX = 0;
  double sumY = 0;
  double sumXX = 0;
  double sumXY = 0;
  for (std::size_t i = points.size() / 2; i < points.size(); ++i) {
    const double px = std::log(static_cast<double>(points[i].size));
    const double py = std::log(std::max(points[i].nanoseconds, 0.1));
    n += 1;
    sumX += px;
    sumY += py;
    sumXX += px * px;
    sumXY += px * py;
  }
  const double divisor = n * sumXX - sumX * sumX;
  return divisor > 0 ? (n * sumXY - sumX * sumY) / divisor : 0;
}

}  // namespace vorn::console
