// kestrindb intervals FILE MODE [PARAMETER]: the spectrum intervals of instrument parameters in a
// test step, on the spectrum's axis and in spectral lines, as a table, as JSON and as a picture.

#include <algorithm>
#include <cmath>
#include <iostream>
#include <optional>

#include "Commands.h"
#include "Svg.h"

using namespace kestrin;

namespace kestrindb {
namespace {

const char* Name(CQtSpecInterval::index_range_result_t result) {
  constexpr const char* names[] = {"index_range_ok", "index_range_beyond_spectrum",
                                   "index_range_no_base_order", "index_range_no_ratio",
                                   "index_range_invalid"};
  return names[result];
}

// Bounds are given wherever they can be computed, lines only where they are good.
Json DescribeInterval(const CQtSpecInterval& evaluation, const QVSpecIntervalEntry& entry,
                      const Request& request) {
  float low = NAN;
  float high = NAN;
  evaluation.FrequencyRange(entry, request.resolution, request.order_scale, low, high);
  CQtSpecInterval::IndexInterval interval;
  const auto result = evaluation.IndexRange(entry, interval, request.lines, request.resolution,
                                            request.order_scale);
  const bool ok = result == CQtSpecInterval::index_range_ok;
  Json json;
  json["unit"] = entry.domain() == QVSpecIntervalEntry::domain_order ? "orders" : request.unit;
  json["low"] = ShortNumber(ok ? interval.start_frequency : low);
  json["high"] = ShortNumber(ok ? interval.stop_frequency : high);
  json["first_line"] = ok ? Json(interval.start_index) : Json();
  json["last_line"] = ok ? Json(interval.stop_index) : Json();
  json["result"] = Name(result);
  return json;
}

Json DescribeParameter(const CQtParamInstance& params, int parameter, const QVIpSvOfSpec& record,
                       const Request& request) {
  const int assembly = request.assembly.value_or(record.reference);
  CQtSpecInterval evaluation(params);
  evaluation.LoadTransformParams(*request.mode, request.speed_source, assembly);
  Json json;
  json["parameter"] = parameter;
  json["name"] = Utf8(params.InstrumentParamName(parameter));
  json["definition"] = Utf8(record.definition);
  json["interpretation"] = record.interpretation;
  json["assembly"] = assembly;
  json["base_order"] = ShortNumber(params.BaseOrder(*request.mode, assembly));
  json["ratio"] = ShortNumber(evaluation.RatioAssembly2SpeedSrc());
  json["intervals"] = Json::array();
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(parameter));
  for (auto row = first; row != last; ++row) {
    json["intervals"].push_back(DescribeInterval(evaluation, row->second, request));
  }
  return json;
}

}  // namespace

Json DescribeIntervals(const CQtParamInstance& params, const Request& request) {
  Json json;
  json["mode"] = *request.mode;
  json["mode_name"] = Utf8(params.ModeName(*request.mode));
  json["speed_source"] = request.speed_source;
  json["resolution"] = ShortNumber(request.resolution);
  json["lines"] = request.lines;
  json["order_scale"] = ShortNumber(request.order_scale);
  json["parameters"] = Json::array();
  for (const auto& [key, record] : params.IpSvOfSpec()) {
    if (request.parameter.value_or(key[0]) == key[0]) {
      json["parameters"].push_back(DescribeParameter(params, key[0], record, request));
    }
  }
  if (request.parameter && json["parameters"].empty()) {
    throw Failure(data_bad, "The parameter " + std::to_string(*request.parameter) +
                                " has no spectrum intervals: it lacks one of the calculation "
                                "parameters 2, 3 and 4, or the data base doesn't have it.");
  }
  return json;
}

// A row for each interval, the first of a parameter with what is told of the parameter.
void PrintIntervals(const Json& json) {
  PrintFacts(14, {{"test step", Cell(json, "mode")},
                  {"speed source", Cell(json, "speed_source")},
                  {"resolution", Cell(json, "resolution")},
                  {"lines", Cell(json, "lines")},
                  {"order scale", Cell(json, "order_scale")}});
  std::cout << '\n';
  Json rows = Json::array();
  for (const Json& parameter : json["parameters"]) {
    const std::size_t first = rows.size();
    for (const Json& interval : parameter["intervals"]) rows.push_back(interval);
    if (first == rows.size()) rows.push_back({{"result", "no intervals; see the log"}});
    rows[first].update(parameter);
  }
  PrintTable(rows, {{"parameter", "parameter"},
                    {"name", "name"},
                    {"definition", "definition"},
                    {"assembly", "assembly"},
                    {"low", "low", ""},
                    {"high", "high", ""},
                    {"unit", "unit"},
                    {"first line", "first_line", ""},
                    {"last line", "last_line", ""},
                    {"result", "result"}});
}

// --- The picture: a chart for each unit that occurs, in it a row for each parameter ---------

namespace {

constexpr double names_left = 12;
constexpr double names_gap = 12;  // between the names and the plot
constexpr double plot_right = 610;
constexpr double lines_left = 624;
constexpr double row_height = 22;
constexpr double head_height = 72;
constexpr double axis_height = 64;

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

bool IsDrawn(const Json& interval) {
  return interval["result"] == Name(CQtSpecInterval::index_range_ok) &&
         interval["low"].is_number() && interval["high"].is_number();
}

// "252–260", "256", or "beyond spectrum".
std::string LinesText(const Json& interval) {
  if (interval["first_line"].is_null()) {
    std::string text = Cell(interval, "result").substr(std::string("index_range_").size());
    std::replace(text.begin(), text.end(), '_', ' ');
    return text;
  }
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

// Where a plot may begin: behind the longest name of its rows.
double PlotLeft(const std::vector<Row>& rows) {
  double width = 0;
  for (const Row& row : rows) width = std::max(width, Svg::WidthOf(row.name));
  return names_left + width + names_gap;
}

std::vector<Row> RowsOf(const Json& parameters, const std::string& unit) {
  std::vector<Row> rows;
  for (const Json& parameter : parameters) {
    const std::string name = Cell(parameter, "name");
    const std::string id = Cell(parameter, "parameter");
    Row row{name.empty() ? id : Shortened(name, 32) + " (" + id + ")", {}};
    for (const Json& interval : parameter["intervals"]) {
      if (interval["unit"] == unit) row.intervals.push_back(interval);
    }
    if (!row.intervals.empty()) rows.push_back(std::move(row));
  }
  return rows;
}

// From the lowest to the highest bound, with room for a few lines beside them.
Axis AxisOf(const std::vector<Row>& rows, double resolution, double plot_left) {
  std::optional<double> low;
  double high = 0;
  for (const Row& row : rows) {
    for (const Json& interval : row.intervals) {
      if (!IsDrawn(interval)) continue;
      low = std::min(low.value_or(interval["low"]), interval["low"].get<double>());
      high = std::max({high, interval["low"].get<double>(), interval["high"].get<double>()});
    }
  }
  const double room = std::max(0.03 * (high - low.value_or(0)), 4 * resolution);
  return {std::max(0.0, low.value_or(0) - room), high + room, plot_left, plot_right};
}

// One parameter; an interval of less than a few units' width stays visible.
void DrawRow(Svg& svg, const Axis& axis, const Row& row, double top) {
  std::string lines;
  svg.Text({axis.LowPlace() - names_gap, top + 15}, row.name, Svg::Anchor::end);
  for (const Json& interval : row.intervals) {
    const std::string text = LinesText(interval);
    if (!lines.ends_with(text)) lines += (lines.empty() ? "" : ", ") + text;
    if (!IsDrawn(interval)) continue;
    const double from = axis.At(interval["low"]);
    const double to = std::max(axis.At(interval["high"]), from);
    const double widening = std::max(0.0, 2.5 - (to - from)) / 2;
    svg.Box({from - widening, top + 4}, {to + widening, top + row_height - 4}, Svg::data,
            row.name + ": " + BoundsText(interval) + ", lines " + text);
  }
  svg.Text({lines_left, top + 15}, Shortened(lines, 24), Svg::Anchor::start, Svg::faint_ink);
}

void DrawChart(Svg& svg, const std::vector<Row>& rows, const std::string& unit, double resolution,
               double plot_left, double top) {
  const double bottom = top + row_height * static_cast<double>(rows.size());
  for (std::size_t i = 0; i < rows.size(); i += 2) {
    const double stripe = top + row_height * static_cast<double>(i);
    svg.Box({8, stripe}, {Svg::width - 8, stripe + row_height}, Svg::stripe);
  }
  const Axis axis = AxisOf(rows, resolution, plot_left);
  axis.DrawBelow(svg, top, bottom, unit == "orders" ? "order" : "frequency in " + unit);
  double row_top = top;
  for (const Row& row : rows) {
    DrawRow(svg, axis, row, row_top);
    row_top += row_height;
  }
}

}  // namespace

void DrawIntervals(const Json& json, const Request& request) {
  struct Chart {
    std::string unit;
    std::vector<Row> rows;
  };
  std::vector<Chart> charts;
  double height = head_height;
  double plot_left = 0;
  for (const std::string& each : {std::string("orders"), request.unit}) {
    Chart chart{each, RowsOf(json["parameters"], each)};
    if (chart.rows.empty() || (!charts.empty() && charts.front().unit == each)) continue;
    height += row_height * static_cast<double>(chart.rows.size()) + axis_height;
    plot_left = std::max(plot_left, PlotLeft(chart.rows));
    charts.push_back(std::move(chart));
  }
  Svg svg(height);
  svg.Text({12, 24}, "Spectrum intervals: " + Cell(json, "mode_name"), Svg::Anchor::start, Svg::ink,
           16);
  svg.Text({12, 44},
           "test step " + json["mode"].dump() + ", speed source " + json["speed_source"].dump() +
               ", resolution " + json["resolution"].dump() + ", " + json["lines"].dump() + " lines",
           Svg::Anchor::start, Svg::faint_ink);
  svg.Text({lines_left, head_height - 8}, "spectral lines", Svg::Anchor::start, Svg::faint_ink);
  const double resolution = json["resolution"].is_number() ? json["resolution"].get<double>() : 0.0;
  double top = head_height;
  for (const Chart& chart : charts) {
    DrawChart(svg, chart.rows, chart.unit, resolution, plot_left, top);
    top += row_height * static_cast<double>(chart.rows.size()) + axis_height;
  }
  svg.Save(request.svg);
}

}  // namespace kestrindb
