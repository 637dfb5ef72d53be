// The picture of spectrum intervals: a chart for each unit that occurs, in it a row for each
// parameter with its bands, and where the spectrum ends.
#include "IntervalPicture.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "Commands.h"
#include "Svg.h"

namespace kestrindb {
namespace {

constexpr double names_left = 12;
constexpr double names_gap = 12;  // between the names and the plot
constexpr double plot_right = 610;
constexpr double lines_left = 624;
constexpr double row_height = 22;
constexpr double head_height = 28;  // above the first plot, below the titles
constexpr double axis_height = 64;
constexpr double note_height = 20;

// The first characters of a text that is too long for its column.
std::string Shortened(const std::string& text, std::size_t characters) {
  std::size_t count = 0;
  std::size_t cut = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool starts_character = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U;
    if (!starts_character) continue;
    if (count == characters - 1) cut = i;
    if (++count > characters) return text.substr(0, cut) + "…";
  }
  return text;
}

// "252–260", "256", or "beyond spectrum".
std::string LinesText(const Json& interval) {
  if (interval["first_line"].is_null()) return Cell(interval, "text");
  const std::string first = interval["first_line"].dump();
  const std::string last = interval["last_line"].dump();
  return first == last ? first : first + "–" + last;
}

std::string BoundsText(const Json& interval) {
  return ShortText(interval["low"]) + "–" + ShortText(interval["high"]) + " " +
         Cell(interval, "unit");
}

struct Row {
  std::string name;
  std::vector<Json> intervals;
};

// What is drawn to one unit.
struct Chart {
  std::string unit;
  std::vector<Row> rows;
  std::optional<double> low;  // of the bands; empty: there is none to draw
  double high = 0;
  double resolution = 0;  // 0: not known
  double spectrum_end = 0;

  double Height() const { return row_height * static_cast<double>(rows.size()); }
};

// The whole axis has room for a few lines beside the bands.
Chart ChartOf(const Json& json, const std::string& unit, const Request& request) {
  Chart chart;
  chart.unit = unit;
  for (const Json& parameter : json["parameters"]) {
    const std::string name = Cell(parameter, "name");
    const std::string id = Cell(parameter, "parameter");
    Row row{name.empty() ? id : Shortened(name, 32) + " (" + id + ")", {}};
    if (id.empty()) row.name = Shortened(Cell(parameter, "definition"), 40);
    for (const Json& interval : parameter["intervals"]) {
      if (interval["unit"] != unit) continue;
      row.intervals.push_back(interval);
      if (interval["first_line"].is_null()) continue;
      const double low = interval["low"];
      const double high = interval["high"];
      if (low > request.to.value_or(low) || high < request.from.value_or(high)) continue;
      chart.low = std::min(chart.low.value_or(low), low);
      chart.high = std::max(chart.high, high);
    }
    if (!row.intervals.empty()) chart.rows.push_back(std::move(row));
  }
  const Json& resolution = json[unit == "orders" ? "resolution_orders" : "resolution_hz"];
  if (resolution.is_number()) chart.resolution = resolution;
  chart.spectrum_end = chart.resolution * (json["lines"].get<double>() - 1);
  return chart;
}

Axis AxisOf(const Chart& chart, const Request& request, double plot_left) {
  const double low = chart.low.value_or(0);
  const double room = std::max(0.03 * (chart.high - low), 4 * chart.resolution);
  return {request.from.value_or(std::max(0.0, low - room)), request.to.value_or(chart.high + room),
          plot_left, plot_right};
}

// Where a band is drawn.
struct Band {
  double middle;
  double half;
  const Json* interval;
};

// Those of a row on the part of the axis that is shown. A band of less than a few units' width is
// widened to be seen, but not into the one beside it.
std::vector<Band> BandsOf(const Row& row, const Axis& axis) {
  constexpr double least_width = 2.5;
  constexpr double gap = 1;
  std::vector<Band> bands;
  for (const Json& interval : row.intervals) {
    if (interval["first_line"].is_null()) continue;
    const double low = std::max(interval["low"].get<double>(), axis.Low());
    const double high = std::min(interval["high"].get<double>(), axis.High());
    if (low > high) continue;
    bands.push_back(
        {(axis.At(low) + axis.At(high)) / 2, (axis.At(high) - axis.At(low)) / 2, &interval});
  }
  for (Band& band : bands) {
    double room = least_width;
    for (const Band& other : bands) {
      const double apart = std::abs(other.middle - band.middle);
      if (apart > 0) room = std::min(room, apart - gap);
    }
    band.half = std::max({band.half - gap / 2, room / 2, gap / 2});
  }
  return bands;
}

// One parameter.
void DrawRow(Svg& svg, const Axis& axis, const Row& row, double top) {
  svg.Text({axis.LowPlace() - names_gap, top + 15}, row.name, Svg::Anchor::end);
  for (const auto& [middle, half, interval] : BandsOf(row, axis)) {
    svg.Box({middle - half, top + 4}, {middle + half, top + row_height - 4}, Svg::data,
            row.name + ": " + BoundsText(*interval) + ", lines " + LinesText(*interval));
  }
  std::string lines;
  for (const Json& interval : row.intervals) {
    const std::string text = LinesText(interval);
    if (!lines.ends_with(text)) lines += (lines.empty() ? "" : ", ") + text;
  }
  svg.Text({lines_left, top + 15}, Shortened(lines, 24), Svg::Anchor::start, Svg::faint_ink);
}

void DrawChart(Svg& svg, const Chart& chart, const Axis& axis, double top) {
  const double bottom = top + chart.Height();
  for (std::size_t i = 0; i < chart.rows.size(); i += 2) {
    const double stripe = top + row_height * static_cast<double>(i);
    svg.Box({8, stripe}, {Svg::width - 8, stripe + row_height}, Svg::stripe);
  }
  std::string title = chart.unit == "orders" ? "order" : "frequency in " + chart.unit;
  const double end = chart.spectrum_end;
  const bool shows_end = end >= axis.Low() && end <= axis.High();
  if (!shows_end) title += " (the spectrum ends at " + ShortText(end) + ")";
  axis.DrawBelow(svg, top, bottom, title);
  double row_top = top;
  for (const Row& row : chart.rows) {
    DrawRow(svg, axis, row, row_top);
    row_top += row_height;
  }
  if (!shows_end) return;
  svg.Line({axis.At(end), top - 4}, {axis.At(end), bottom}, Svg::ink);
  svg.Text({axis.At(end), top - 8}, "end", Svg::Anchor::middle, Svg::faint_ink);
}

}  // namespace

void DrawIntervals(const Json& json, const Request& request) {
  std::vector<Chart> charts;
  std::vector<std::string> notes;
  double plot_left = 0;
  for (const std::string& unit : {std::string("orders"), request.unit}) {
    if (!charts.empty() && charts.front().unit == unit) continue;
    Chart chart = ChartOf(json, unit, request);
    if (chart.rows.empty()) continue;
    if (!chart.low) {
      notes.push_back("No interval in " + unit + " can be drawn.");
      continue;
    }
    for (const Row& row : chart.rows) plot_left = std::max(plot_left, Svg::WidthOf(row.name));
    charts.push_back(std::move(chart));
  }
  plot_left += names_left + names_gap;
  if (charts.empty()) {
    throw Failure(data_bad, "There is no picture: no interval has lines in what it would show.");
  }
  Svg svg;
  double top = svg.Titles("Spectrum intervals: " + Cell(json, "mode_name"),
                          "test step " + json["mode"].dump() + ", resolution " +
                              ResolutionText(json) + ", " + json["lines"].dump() + " lines") +
               head_height;
  svg.Text({lines_left, top - 8}, "spectral lines", Svg::Anchor::start, Svg::faint_ink);
  for (const Chart& chart : charts) {
    DrawChart(svg, chart, AxisOf(chart, request, plot_left), top);
    top += chart.Height() + axis_height;
  }
  for (const std::string& note : notes) {
    svg.Text({names_left, top - note_height / 2}, note, Svg::Anchor::start, Svg::faint_ink);
    top += note_height;
  }
  svg.Save(request.svg, top);
}

}  // namespace kestrindb
