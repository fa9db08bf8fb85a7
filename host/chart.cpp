#include "chart.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "error.hpp"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#define KESTRUNE_POPEN _popen
#define KESTRUNE_PCLOSE _pclose
#define KESTRUNE_PIPE_MODE "wb"
constexpr const char* kNowhere = " >nul 2>&1";
#else
#define KESTRUNE_POPEN popen
#define KESTRUNE_PCLOSE pclose
#define KESTRUNE_PIPE_MODE "w"
constexpr const char* kNowhere = " >/dev/null 2>&1";
#endif

namespace kestrune::host {

namespace {

constexpr double kWidth = 960, kHeight = 600, kLeft = 80, kRight = 690, kTop = 52, kBottom = 528;
constexpr double kLegend = 712, kLegendStep = 21;

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == '>')
      out += "&gt;";
    else if (c == '"')
      out += "&quot;";
    else
      out += c;
  }
  return out;
}

std::string tick_text(double value, double step) {
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  return fmt::format("{:.{}f}", std::fabs(value) < 1e-9 * step ? 0.0 : value, decimals);
}

struct Frame {
  double x_low, x_high, y_low, y_high, x_step, y_step;
  double x(double v) const { return kLeft + (v - x_low) / (x_high - x_low) * (kRight - kLeft); }
  double y(double v) const { return kBottom - (v - y_low) / (y_high - y_low) * (kBottom - kTop); }
};

Frame frame_of(const Chart& c) {
  Frame f{c.x_low, c.x_high, c.y_low, c.y_high, 0.0, 0.0};
  f.x_step = round_range(f.x_low, f.x_high);
  f.y_step = round_range(f.y_low, f.y_high);
  if (c.x_exact) f.x_low = c.x_low, f.x_high = c.x_high;
  if (c.y_exact) f.y_low = c.y_low, f.y_high = c.y_high;
  return f;
}

void add_text(std::string& out, double x, double y, const char* anchor, int size, const std::string& text,
              const std::string& more = "") {
  out += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\" font-size=\"{}\"{}>{}</text>\n", x, y,
                     anchor, size, more, escaped(text));
}

void add_axes(std::string& out, const Chart& chart, const Frame& f) {
  const double x_first = f.x_step * std::ceil(f.x_low / f.x_step - 1e-9);
  const double y_first = f.y_step * std::ceil(f.y_low / f.y_step - 1e-9);
  for (int k = 0; x_first + k * f.x_step <= f.x_high + 0.01 * f.x_step; ++k) {
    const double v = x_first + k * f.x_step, x = f.x(v);
    out += fmt::format("<path class=\"grid\" d=\"M{:.1f} {:.1f}V{:.1f}\"/>\n", x, kTop, kBottom);
    add_text(out, x, kBottom + 20, "middle", 13, tick_text(v, f.x_step));
  }
  for (int k = 0; y_first + k * f.y_step <= f.y_high + 0.01 * f.y_step; ++k) {
    const double v = y_first + k * f.y_step, y = f.y(v);
    out += fmt::format("<path class=\"grid\" d=\"M{:.1f} {:.1f}H{:.1f}\"/>\n", kLeft, y, kRight);
    add_text(out, kLeft - 8, y + 4.5, "end", 13, tick_text(v, f.y_step));
  }
  out += fmt::format("<path class=\"axis\" d=\"M{} {}H{}V{}H{}Z\"/>\n", kLeft, kTop, kRight, kBottom, kLeft);
  const double middle = 0.5 * (kTop + kBottom);
  add_text(out, 0.5 * (kLeft + kRight), kBottom + 46, "middle", 15, chart.x_title);
  add_text(out, 24, middle, "middle", 15, chart.y_title,
           fmt::format(" transform=\"rotate(-90 24 {:.1f})\"", middle));
  add_text(out, kLeft, 30, "start", 18, chart.title, " font-weight=\"bold\"");
}

std::string stroke(const ChartLine& line) {
  return fmt::format("stroke=\"{}\" stroke-width=\"{:.1f}\"{}", line.colour, line.width,
                     line.dashed ? " stroke-dasharray=\"7 5\"" : "");
}

// The part of a segment inside the frame, as parts of its way; false when there is none.
bool inside(const Frame& f, double x0, double y0, double x1, double y1, double& from, double& to) {
  from = 0.0;
  to = 1.0;
  const double dx = x1 - x0, dy = y1 - y0;
  const double p[4] = {-dx, dx, -dy, dy}, q[4] = {x0 - f.x_low, f.x_high - x0, y0 - f.y_low, f.y_high - y0};
  for (int k = 0; k < 4; ++k) {
    if (p[k] == 0.0 && q[k] < 0.0) return false;
    if (p[k] < 0.0) from = std::max(from, q[k] / p[k]);
    if (p[k] > 0.0) to = std::min(to, q[k] / p[k]);
  }
  return from < to;
}

// A line, cut at the frame by this program: not every viewer does.
void add_line(std::string& out, const ChartLine& line, const Frame& f) {
  std::string path;
  bool pen_down = false;
  for (std::size_t i = 1; i < line.x.size(); ++i) {
    const double x0 = line.x[i - 1], y0 = line.y[i - 1], dx = line.x[i] - x0, dy = line.y[i] - y0;
    double from, to;
    if (!inside(f, x0, y0, line.x[i], line.y[i], from, to)) {
      pen_down = false;
      continue;
    }
    if (!pen_down || from > 0.0)
      path += fmt::format("M{:.2f} {:.2f}", f.x(x0 + from * dx), f.y(y0 + from * dy));
    path += fmt::format("L{:.2f} {:.2f}", f.x(x0 + to * dx), f.y(y0 + to * dy));
    pen_down = to == 1.0;
  }
  if (!path.empty())
    out += fmt::format("<path fill=\"none\" stroke-linejoin=\"round\" {} d=\"{}\"/>\n", stroke(line), path);
}

void add_mark(std::string& out, const ChartMark& mark, double x, double y) {
  const std::string paint = fmt::format("fill=\"{}\" stroke=\"white\" stroke-width=\"1\"", mark.colour);
  if (mark.mark == Mark::disc)
    out += fmt::format("<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"6\" {}/>\n", x, y, paint);
  else if (mark.mark == Mark::triangle)
    out += fmt::format("<path d=\"M{:.2f} {:.2f}l7 12h-14z\" {}/>\n", x, y - 7, paint);
  else if (mark.mark == Mark::square)
    out += fmt::format("<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"11\" height=\"11\" {}/>\n", x - 5.5, y - 5.5,
                       paint);
  else
    out += fmt::format(
        "<path d=\"M{:.2f} {:.2f}l12 12m0 -12l-12 12\" fill=\"none\" stroke=\"{}\" stroke-width=\"3\"/>\n",
        x - 6, y - 6, mark.colour);
}

void add_legend(std::string& out, const Chart& chart) {
  double y = kTop + 8;
  for (const ChartLine& line : chart.lines) {
    if (line.label.empty()) continue;
    out += fmt::format("<path fill=\"none\" d=\"M{} {:.1f}h26\" {}/>\n", kLegend, y, stroke(line));
    add_text(out, kLegend + 34, y + 4.5, "start", 13, line.label);
    y += kLegendStep;
  }
  y += 6;
  for (const ChartMark& mark : chart.marks) {
    add_mark(out, mark, kLegend + 13, y);
    // The value stands on a line of its own.
    const std::size_t colon = mark.label.find(": ");
    add_text(out, kLegend + 34, y + 4.5, "start", 13, mark.label.substr(0, colon));
    y += kLegendStep;
    if (colon == std::string::npos) continue;
    add_text(out, kLegend + 34, y + 0.5, "start", 12, mark.label.substr(colon + 2), " fill=\"#555\"");
    y += kLegendStep;
  }
}

// Text between double quotes of gnuplot.
std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c == '\n' ? ' ' : c;
  }
  return out + '"';
}

}  // namespace

double round_range(double& low, double& high) {
  if (!(high > low)) high = low + 1.0;
  const double raw = (high - low) / 7.0, power = std::pow(10.0, std::floor(std::log10(raw)));
  const double part = raw / power;
  const double step = power * (part < 1.5 ? 1.0 : part < 3.5 ? 2.0 : part < 7.5 ? 5.0 : 10.0);
  low = step * std::floor(low / step + 1e-9);
  high = step * std::ceil(high / step - 1e-9);
  return step;
}

std::string svg_of(const Chart& chart) {
  const Frame f = frame_of(chart);
  std::string out = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
      "font-family=\"Helvetica, Arial, sans-serif\" fill=\"#222\">\n"
      "<style>.grid{{fill:none;stroke:#ddd;stroke-width:1}}.axis{{fill:none;stroke:#222;stroke-width:1.4}}</"
      "style>\n"
      "<rect width=\"{0}\" height=\"{1}\" fill=\"white\"/>\n",
      kWidth, kHeight);
  add_axes(out, chart, f);
  for (const ChartLine& line : chart.lines) add_line(out, line, f);
  for (const ChartMark& mark : chart.marks) add_mark(out, mark, f.x(mark.x), f.y(mark.y));
  add_legend(out, chart);
  return out + "</svg>\n";
}

std::string gnuplot_script(const Chart& chart, const std::string& file) {
  const Frame f = frame_of(chart);
  std::string out = fmt::format(
      "set terminal pngcairo noenhanced size 1440,900 font \"Helvetica,16\"\nset output {}\nset encoding utf8\n"
      "set title {} left\nset xlabel {}\nset ylabel {}\nset grid lc rgb \"#dddddd\" lt 1\n"
      "set key outside right top Left reverse width -4\nset xrange [{}:{}]\nset yrange [{}:{}]\nset xtics {}\n"
      "set ytics {}\n",
      quoted(file), quoted(chart.title), quoted(chart.x_title), quoted(chart.y_title), f.x_low, f.x_high,
      f.y_low, f.y_high, f.x_step, f.y_step);
  std::string data, plots;
  int number = 0;
  const auto add = [&](const std::string& how, const std::string& label) {
    plots += fmt::format("{}$d{} using 1:2 {} {}", number > 0 ? ", \\\n  " : "plot ", number, how,
                         label.empty() ? "notitle" : "title " + quoted(label));
    ++number;
  };
  for (const ChartLine& line : chart.lines) {
    data += fmt::format("$d{} << EOD\n", number);
    for (std::size_t i = 0; i < line.x.size(); ++i)
      data += fmt::format("{:.8g} {:.8g}\n", line.x[i], line.y[i]);
    data += "EOD\n";
    add(fmt::format("with lines lw {:.1f} dt {} lc rgb \"{}\"", 1.5 * line.width, line.dashed ? 2 : 1,
                    line.colour),
        line.label);
  }
  for (const ChartMark& mark : chart.marks) {
    const int type = mark.mark == Mark::disc       ? 7
                     : mark.mark == Mark::triangle ? 9
                     : mark.mark == Mark::square   ? 5
                                                   : 2;
    data += fmt::format("$d{} << EOD\n{:.8g} {:.8g}\nEOD\n", number, mark.x, mark.y);
    add(fmt::format("with points pt {} ps 2 lw 3 lc rgb \"{}\"", type, mark.colour), mark.label);
  }
  return number > 0 ? out + data + plots + "\n" : out;
}

namespace {

// Says why a file cannot be written, if so.
void check_path(const std::string& file) {
  const bool there = static_cast<bool>(std::ifstream(file));
  errno = 0;
  const std::ofstream probe(file, std::ios::binary | std::ios::app);
  if (!probe) throw InputError(fmt::format("cannot write the picture {}: {}", file, std::strerror(errno)));
  if (!there) std::remove(file.c_str());
}

bool run_gnuplot(const std::string& script) {
  std::FILE* pipe = KESTRUNE_POPEN((std::string("gnuplot") + kNowhere).c_str(), KESTRUNE_PIPE_MODE);
  if (pipe == nullptr) return false;
  const bool written = std::fwrite(script.data(), 1, script.size(), pipe) == script.size();
  return KESTRUNE_PCLOSE(pipe) == 0 && written;
}

// Whether a file is a PNG to its end.
bool is_whole_png(const std::string& path) {
  constexpr std::string_view first("\x89PNG\r\n\x1a\n", 8), last("IEND\xae\x42\x60\x82", 8);
  std::ifstream file(path, std::ios::binary);
  char bytes[8] = {};
  if (!file.read(bytes, 8) || std::string_view(bytes, 8) != first) return false;
  return file.seekg(-8, std::ios::end) && file.read(bytes, 8) && std::string_view(bytes, 8) == last;
}

}  // namespace

void write_svg(const Chart& chart, const std::string& file, std::ostream& stream) {
  if (file == "-") {
    stream << svg_of(chart);
    return;
  }
  check_path(file);
  std::ofstream out(file, std::ios::binary);
  out << svg_of(chart);
  out.close();
  if (!out) throw InputError(fmt::format("cannot write the picture {}: {}", file, std::strerror(errno)));
}

void write_png(const Chart& chart, const std::string& file, std::ostream& stream) {
  const bool to_stream = file == "-";
  const std::string path =
      to_stream
          ? (std::filesystem::temp_directory_path() / fmt::format("kestrune_{}.png", std::random_device{}()))
                .string()
          : file;
  check_path(path);
  // Without the program the pipe would break under the script.
  if (std::system((std::string("gnuplot --version") + kNowhere).c_str()) != 0)
    throw InputError("PNG is drawn by gnuplot, which is not installed; --svg needs nothing");
  if (!run_gnuplot(gnuplot_script(chart, path)) || !is_whole_png(path))
    throw InputError(
        fmt::format("gnuplot failed to write {}: its pngcairo terminal and room on the disk are needed", path));
  if (!to_stream) return;
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  stream << std::ifstream(path, std::ios::binary).rdbuf();
  std::remove(path.c_str());
}

}  // namespace kestrune::host
