// kestrindb polygon FILE ID ID ID ID ID ID: the track polygon of a measured quantity and its
// points, as a table, as JSON and as a picture.

#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>

#include "Key.h"
#include "Svg.h"

namespace kestrindb {
namespace {

const CVIpSvTrackPolygon& TrackPolygonOf(const CQtParamInstance& params, const QClavis& key) {
  const auto found = params.IpTrackPolygon().find(key);
  if (found != params.IpTrackPolygon().end()) return found->second;
  const bool listed = params.IpParamAndStore().find(key) != params.IpParamAndStore().end();
  throw Failure(data_bad, "The key " + IdsText(key) + " has no track polygon: " +
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

Json DescribePolygon(const CQtParamInstance& params, const QClavis& key) {
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
  std::cout << "quantity  " << json["text"].get<std::string>() << "\npolygon   "
            << WithName(json["polygon"], json["name"]) << "\ntrack a   " << json["track_a"]
            << "\ntrack c   " << json["track_c"] << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& point : json["points"]) {
    rows.push_back({std::to_string(rows.size()), point["x"].dump(), point["y"].dump()});
  }
  PrintTable({"point", "x", "y"}, rows);
}

// ---- the picture --------------------------------------------------------------------------

struct Picture {
  std::string file_name;
  std::string x_title = "x";
  std::string y_title = "y";
};

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

void Draw(const Json& json, const Picture& picture) {
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
  const std::string name = json["name"].get<std::string>();
  svg.Text({12, 24}, "Polygon " + json["polygon"].dump() + (name.empty() ? "" : ": " + name),
           Svg::Anchor::start, Svg::ink, 16);
  svg.Text({12, 44}, json["text"].get<std::string>(), Svg::Anchor::start, Svg::faint_ink);
  const Axis x_axis = xs.Between(left, right);
  const Axis y_axis = ys.Between(bottom, top);
  x_axis.DrawBelow(svg, top, bottom, picture.x_title);
  y_axis.DrawLeft(svg, left, right, picture.y_title);
  std::vector<Point> places;
  places.reserve(points.size());
  for (const Point& point : points) places.push_back({x_axis.At(point.x), y_axis.At(point.y)});
  svg.Polyline(places, Svg::data);
  for (std::size_t i = 0; i < places.size(); ++i) {
    svg.Dot(places[i], Svg::data, ShortText(points[i].x) + ", " + ShortText(points[i].y));
  }
  svg.Save(picture.file_name);
}

}  // namespace

void AddPolygon(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto ids = std::make_shared<std::vector<int>>();
  auto picture = std::make_shared<Picture>();
  CLI::App* command =
      line.Add("polygon", "The track polygon of a key", [file, ids, picture, &line] {
        const DataBase data(*file);
        data.RequireAccepted();
        const Json json = DescribePolygon(data.params, QClavis(CClavis(ids->data())));
        if (!picture->file_name.empty()) Draw(json, *picture);
        line.json ? Print(json) : PrintPolygon(json);
        return data.LoadStatus();
      });
  command->add_option("FILE", *file, "Parameter file")->required();
  command
      ->add_option("ID", *ids,
                   "Ids of mode, instrument, channel, location, parameter and sensor, as "
                   "<TIpParamAndStore> lists them")
      ->required()
      ->expected(Clavis::element_count);
  command->add_option("--svg", picture->file_name, "Draw the polygon into this file");
  command->add_option("--x-title", picture->x_title,
                      "Title of the picture's x axis, with its unit");
  command->add_option("--y-title", picture->y_title,
                      "Title of the picture's y axis, with its unit");
}

}  // namespace kestrindb
