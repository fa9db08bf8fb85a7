// A chart of lines and marks over two linear axes, drawn as SVG by this program and as PNG by gnuplot.
#ifndef KESTRUNE_HOST_CHART_HPP
#define KESTRUNE_HOST_CHART_HPP

#include <ostream>
#include <string>
#include <vector>

namespace kestrune::host {

struct ChartLine {
  std::string label;   // of the legend; empty: none
  std::string colour;  // #rrggbb
  double width = 2.0;
  bool dashed = false;
  std::vector<double> x, y;
  bool sets_axes = true;  // the range that is shown holds it
};

enum class Mark { disc, triangle, square, cross };

struct ChartMark {
  std::string label;
  std::string colour;
  Mark mark = Mark::disc;
  double x = 0.0, y = 0.0;
};

struct Chart {
  std::string title, x_title, y_title;
  double x_low = 0.0, x_high = 1.0, y_low = 0.0, y_high = 1.0;  // what is shown; lines are cut there
  bool x_exact = false, y_exact = false;                        // else widened to whole steps
  std::vector<ChartLine> lines;
  std::vector<ChartMark> marks;
};

// Widens a range to whole steps of an axis and returns the step: 1, 2 or 5 times a power of ten, 5 to 10 of
// them.
double round_range(double& low, double& high);

// The picture as the text of an SVG file, 960 x 600, legend beside the axes.
std::string svg_of(const Chart& chart);

// The script with which gnuplot writes the picture to a PNG file.
std::string gnuplot_script(const Chart& chart, const std::string& file);

// Writes the picture: by svg_of, or by gnuplot; "-" is the stream. InputError that says why a file cannot be written, or
// that gnuplot is missing.
void write_svg(const Chart& chart, const std::string& file, std::ostream& out);
void write_png(const Chart& chart, const std::string& file, std::ostream& out);

}  // namespace kestrune::host

#endif
