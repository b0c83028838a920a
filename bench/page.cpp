#include "bench/page.h"

#include <algorithm>
#include <iomanip>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace bench {
namespace {

constexpr double kWidth = 640.0;
constexpr double kHeight = 300.0;
constexpr double kLeft = 60.0;  ///< of the plot's area; labels are to the left of it and below
constexpr double kBottom = 260.0;
constexpr double kTop = 20.0;
constexpr double kRight = 620.0;

const char* const kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Tarvo overlaps manager: frame times</title>
<style>
body { font: 15px/1.4 sans-serif; margin: 2em auto; max-width: 60em; color: #222; }
table { border-collapse: collapse; } th, td { padding: .2em .8em; text-align: left; }
td.number { text-align: right; } tr.missed { background: #fdd; } th { border-bottom: 1px solid; }
svg text { font: 12px sans-serif; } .fast { stroke: #16a; fill: #16a; }
.exact { stroke: #c40; fill: #c40; } polyline { fill: none !important; stroke-width: 2; }
.axis { stroke: #888; } text.fast, text.exact { stroke: none; }
</style></head><body>
<h1>Frame times</h1>
<p>Each ratio is the median of pairs that were measured in turn, and of the repetitions. Times are
processor time on one thread, unless something else is said.</p>
)";

const char* const kHowItIsMeasured = R"(<h2>How it is measured</h2>
<p>With one drawing thread, processor time equals the cost of a frame. With the threads that the
renderer starts by itself, only drawing is divided among them, so that everything else weighs more in
each ratio.</p>
<p>Freed memory is reused without returning it to the system, as in a host with pools of its own.
Programs that return it, as tarvo render does, pay for fresh pages as well. The option --fresh-memory
measures that.</p>
)";

std::string Text(double value, int digits) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(digits) << value;
  return text.str();
}

void WriteTable(std::ostream& page, const std::vector<BenchmarkResult>& benchmarks) {
  page << "<table><tr><th>name<th>what<th>against "
          "what<th>ratio<th>goal<th>measured<th>baseline<th>unit"
          "</tr>\n";
  for (const BenchmarkResult& result : benchmarks) {
    const Benchmark& benchmark = *result.benchmark;
    const Pair times = result.Times();
    page << (result.Missed() ? "<tr class=missed>" : "<tr>") << "<td>" << benchmark.name << "<td>"
         << benchmark.measured << "<td>" << benchmark.baseline << "<td class=number>"
         << Text(result.Ratio(), 3) << "<td class=number>"
         << (benchmark.goal ? "≤ " + Text(*benchmark.goal, 2) : "") << "<td class=number>"
         << Text(times.measured, 2) << "<td class=number>" << Text(times.baseline, 2) << "<td>"
         << benchmark.unit << "</tr>\n";
  }
  page << "</table>\n";
}

void WriteNotes(std::ostream& page, const std::vector<BenchmarkResult>& benchmarks) {
  for (const BenchmarkResult& result : benchmarks) {
    const Benchmark& benchmark = *result.benchmark;
    if (benchmark.note.empty()) {
      continue;
    }
    page << "<p><b>" << benchmark.name << "</b> " << benchmark.note << "</p>\n";
  }
}

/// A plot's points, with the ways from values to places.
class Plot {
 public:
  explicit Plot(std::vector<SweepResult> results) : results_(std::move(results)) {
    for (const SweepResult& result : results_) {
      mostX_ = std::max(mostX_, result.point->x);
      mostY_ = std::max(mostY_, result.milliseconds);
    }
  }

  void Write(std::ostream& page) const {
    page << "<svg width=" << kWidth << " height=" << kHeight << ">\n";
    WriteAxes(page);
    std::map<std::string, std::string> lines;
    for (const SweepResult& result : results_) {
      const double x = PlaceOfX(result.point->x);
      const double y = PlaceOfY(result.milliseconds);
      const std::string& series = result.point->series;
      lines[series] += Text(x, 1) + ',' + Text(y, 1) + ' ';
      page << "<circle class=" << series << " r=4 cx=" << x << " cy=" << y << "><title>" << series
           << ", " << result.point->label << ": " << Text(result.milliseconds, 2)
           << " ms</title></circle>\n";
    }
    double legend = kLeft + 20.0;
    for (const auto& [series, points] : lines) {
      page << "<polyline class=" << series << " points=\"" << points << "\"/><text class=" << series
           << " x=" << legend << " y=15>" << series << "</text>\n";
      legend += 60.0;
    }
    page << "</svg>\n";
  }

 private:
  [[nodiscard]] double PlaceOfX(double x) const {
    return kLeft + (kRight - kLeft) * (0.05 + 0.9 * x / mostX_);
  }
  [[nodiscard]] double PlaceOfY(double y) const { return kBottom - (kBottom - kTop) * y / mostY_; }

  void WriteAxes(std::ostream& page) const {
    page << "<path class=axis fill=none d=\"M" << kLeft << ' ' << kTop << " V" << kBottom << " H"
         << kRight << "\"/>\n";
    for (const double fraction : {0.0, 0.5, 1.0}) {
      page << "<text text-anchor=end x=" << kLeft - 6.0
           << " y=" << PlaceOfY(fraction * mostY_) + 4.0 << '>'
           << Text(fraction * mostY_, mostY_ < 10.0 ? 1 : 0) << " ms</text>\n";
    }
    for (const SweepResult& result : results_) {
      if (result.point->series != results_.front().point->series) {
        continue;
      }
      page << "<text text-anchor=middle x=" << PlaceOfX(result.point->x) << " y=" << kBottom + 18.0
           << '>' << result.point->label << "</text>\n";
    }
  }

  std::vector<SweepResult> results_;
  double mostX_ = 1.0;
  double mostY_ = 1e-9;
};

}  // namespace

std::string Page(const Results& results) {
  std::ostringstream page;
  page << kHead << "<p>Drawn by " << results.renderer << ".</p>\n";
  WriteTable(page, results.benchmarks);
  WriteNotes(page, results.benchmarks);
  page << kHowItIsMeasured;
  std::map<std::string, std::vector<SweepResult>> plots;
  for (const SweepResult& result : results.sweeps) {
    plots[result.point->plot.title].push_back(result);
  }
  for (auto& [title, points] : plots) {
    page << "<h2>" << title << "</h2>\n";
    Plot(std::move(points)).Write(page);
  }
  page << "</body></html>\n";
  return page.str();
}

}  // namespace bench
