// kestrindb polygon FILE ID ID ID ID ID ID: the track polygon of a measured quantity and its
// points, as a table, as JSON and as a picture.

#include <algorithm>
#include <iostream>
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
    if (low > high) return {0, 1, low_place, high_place};
    const double room = (high - low) / 16;
    return {low - room, high + room, low_place, high_place};
  }
};

}  // namespace

void DrawPolygon(const Json& json, const Request& request) {
  std::vector<Point> points;
  Bounds xs;
  Bounds ys;
  for (const Json& point : json["points"]) {
    if (point["x"].is_null() || point["y"].is_null()) continue;  // not finite
    points.push_back({point["x"], point["y"]});
    xs.Include(points.back().x);
    ys.Include(points.back().y);
  }
  constexpr double height = 420;
  constexpr double left = 84;
  constexpr double right = Svg::width - 28;
  constexpr double top = 64;
  constexpr double bottom = height - 64;
  Svg svg(height);
  const std::string name = Cell(json, "name");
  svg.Text({12, 24}, "Polygon " + json["polygon"].dump() + (name.empty() ? "" : ": " + name),
           Svg::Anchor::start, Svg::ink, 16);
  svg.Text({12, 44}, Cell(json, "text"), Svg::Anchor::start, Svg::faint_ink);
  const Axis x_axis = xs.Between(left, right);
  const Axis y_axis = ys.Between(bottom, top);
  x_axis.DrawBelow(svg, top, bottom, request.x_title);
  y_axis.DrawLeft(svg, left, right, request.y_title);
  std::vector<Point> places;
  places.reserve(points.size());
  for (const Point& point : points) places.push_back({x_axis.At(point.x), y_axis.At(point.y)});
  svg.Polyline(places, Svg::data);
  for (std::size_t i = 0; i < places.size(); ++i) {
    svg.Dot(places[i], Svg::data, ShortText(points[i].x) + ", " + ShortText(points[i].y));
  }
  svg.Save(request.svg);
}

}  // namespace kestrindb
