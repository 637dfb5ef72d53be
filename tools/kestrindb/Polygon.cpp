// kestrindb polygon FILE ID ID ID ID ID ID: the track polygon of a measured quantity and its
// points, as a table, as JSON and as a picture.

#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>

#include "Commands.h"
#include "Svg.h"

namespace kestrindb {
namespace {

const CVIpSvTrackPolygon& TrackPolygonOf(const CQtParamInstance& params, const QClavis& key) {
  const auto found = params.IpTrackPolygon().find(key);
  if (found != params.IpTrackPolygon().end()) return found->second;
  const bool listed = params.IpParamAndStore().find(key) != params.IpParamAndStore().end();
  throw Failure(data_bad, "The key " + CellText(key.id) + " has no track polygon: " +
                              (listed ? "no row of <TGrex10001> matches it."
                                      : "<TIpParamAndStore> doesn't list it."));
}

Json PointsOf(const CQtParamInstance& params, int polygon) {
  Json points = Json::array();
  const auto& all = params.IpPolygonValues();
  for (auto p = all.lower_bound({polygon, 0}); p != all.end() && p->first.first == polygon; ++p) {
    points.push_back({{"x", ShortNumber(p->second.x)}, {"y", ShortNumber(p->second.y)}});
  }
  return points;
}

}  // namespace

Json DescribePolygon(const CQtParamInstance& params, const Request& request) {
  const QClavis key(request.Key());
  const CVIpSvTrackPolygon& track = TrackPolygonOf(params, key);
  const auto stored = params.IpPolygon().find(track.polygon_id);
  Json json;
  json["key"] = key.id;
  json["text"] = Utf8(params.FormatClavisTextNice(key, L"|"));
  json["polygon"] = track.polygon_id;
  json["name"] = stored == params.IpPolygon().end() ? "" : Utf8(stored->second.name);
  json["track_a"] = track.track_a;
  json["track_c"] = track.track_c;
  json["points"] = PointsOf(params, track.polygon_id);
  return json;
}

void PrintPolygon(const Json& json) {
  PrintFacts(10, {{"quantity", Cell(json, "text")},
                  {"polygon", WithName(Cell(json, "polygon"), Cell(json, "name"))},
                  {"track a", Cell(json, "track_a")},
                  {"track c", Cell(json, "track_c")}});
  std::cout << '\n';
  Json points = json["points"];
  int count = 0;
  for (Json& point : points) point["point"] = count++;
  PrintTable(points, {{"point", "point"}, {"x", "x"}, {"y", "y"}});
}

// ---- the picture --------------------------------------------------------------------------

namespace {

struct Bounds {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Include(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  // The axis over the values with some room beside them.
  Axis Between(double low_place, double high_place) const {
    const double room = (high - low) / 16;
    return {low - room, high + room, low_place, high_place};
  }
};

// The part of a line between the bounds that the user has set, with the points where it meets them.
std::vector<Point> CutTo(const std::vector<Point>& points, const Request& request) {
  const auto is_inside = [&](double x) {
    return x >= request.from.value_or(x) && x <= request.to.value_or(x);
  };
  std::vector<Point> cut;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point to = points[i];
    const Point from = points[i > 0 ? i - 1 : 0];
    std::vector<Point> met;
    for (const auto& bound : {request.from, request.to}) {
      if (!bound || (*bound - from.x) * (*bound - to.x) >= 0) continue;
      const double part = (*bound - from.x) / (to.x - from.x);
      met.push_back({*bound, from.y + part * (to.y - from.y)});
    }
    if (met.size() == 2 && to.x < from.x) std::swap(met[0], met[1]);
    cut.insert(cut.end(), met.begin(), met.end());
    if (is_inside(to.x)) cut.push_back(to);
  }
  return cut;
}

}  // namespace

void DrawPolygon(const Json& json, const Request& request) {
  std::vector<Point> points;
  for (const Json& point : json["points"]) {
    if (point["x"].is_null() || point["y"].is_null()) continue;  // not finite
    points.push_back({point["x"], point["y"]});
  }
  const std::vector<Point> line = CutTo(points, request);
  Bounds xs;
  Bounds ys;
  for (const Point& point : line) {
    xs.Include(point.x);
    ys.Include(point.y);
  }
  if (line.empty()) throw Failure(data_bad, "There is no picture: no point is in it.");
  constexpr double plot_height = 292;
  constexpr double left = 84;
  constexpr double right = Svg::width - 28;
  Svg svg;
  const std::string name = Cell(json, "name");
  const double top =
      svg.Titles("Polygon " + json["polygon"].dump() + (name.empty() ? "" : ": " + name),
                 Cell(json, "text")) +
      20;
  const double bottom = top + plot_height;
  const Axis whole = xs.Between(left, right);
  const Axis x_axis(request.from.value_or(whole.Low()), request.to.value_or(whole.High()), left,
                    right);
  const Axis y_axis = ys.Between(bottom, top);
  x_axis.DrawBelow(svg, top, bottom, request.x_title);
  y_axis.DrawLeft(svg, left, right, request.y_title);
  const auto place = [&](const Point& point) {
    return Point{x_axis.At(point.x), y_axis.At(point.y)};
  };
  std::vector<Point> places;
  std::transform(line.begin(), line.end(), std::back_inserter(places), place);
  svg.Polyline(places, Svg::data);
  for (const Point& point : points) {
    if (point.x < x_axis.Low() || point.x > x_axis.High()) continue;
    svg.Dot(place(point), Svg::data, ShortText(point.x) + ", " + ShortText(point.y));
  }
  svg.Save(request.svg, bottom + 64);
}

}  // namespace kestrindb
