// Time against size: measured over growing sizes, drawn in the terminal and as SVG.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorn::console {

struct PlotPoint {
  std::uint64_t size = 0;
  double nanoseconds = 0;
};

// The sizes to measure: 1, 3, 10, 30, ... up to the largest.
std::vector<std::uint64_t> plotSizes(std::uint64_t largest);

// A chart of so many columns, both axes logarithmic, line by line. At least two points.
std::string drawChart(const std::vector<PlotPoint>& points, std::size_t columns);

// The same as an SVG file's contents. The title may be any UTF-8 text.
std::string drawSvg(const std::vector<PlotPoint>& points, const std::string& title);

// The exponent p of the n^p that the times grow like, over the upper half of the sizes.
double growthExponent(const std::vector<PlotPoint>& points);

}  // namespace vorn::console
