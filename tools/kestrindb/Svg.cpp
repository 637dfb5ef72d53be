#include "Svg.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>

#include "DataBase.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// XML has no way to write control characters.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return escaped;
}

std::string Attribute(std::string_view name, std::string_view value) {
  return std::string(" ").append(name).append("=\"").append(value).append("\"");
}

std::string Attribute(std::string_view name, double value) {
  return Attribute(name, ShortText(value));
}

// A shape's end, with its note if it has one.
std::string Closed(std::string_view element, std::string_view note) {
  if (note.empty()) return "/>\n";
  return "><title>" + Escaped(note) + "</title></" + std::string(element) + ">\n";
}

std::string TextAttributes(Svg::Anchor anchor, std::string_view colour, int size) {
  constexpr std::string_view anchors[] = {"start", "middle", "end"};
  return Attribute("text-anchor", anchors[static_cast<int>(anchor)]) + Attribute("fill", colour) +
         Attribute("font-size", size);
}

// The step of 1, 2 or 5 times a power of ten that is next above the value.
double RoundStep(double value) {
  const double power = std::pow(10.0, std::floor(std::log10(value)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= value) return factor * power;
  }
  return 10.0 * power;
}

}  // namespace

std::string ShortText(double value) {
  char text[32];
  const auto written =
      std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 6);
  return {text, written.ptr};
}

Svg::Svg(double height) : height_(height) {}

void Svg::Line(Point from, Point to, std::string_view colour, double thickness) {
  body_ += "<line" + Attribute("x1", from.x) + Attribute("y1", from.y) + Attribute("x2", to.x) +
           Attribute("y2", to.y) + Attribute("stroke", colour) +
           Attribute("stroke-width", thickness) + "/>\n";
}

void Svg::Polyline(const std::vector<Point>& points, std::string_view colour, double thickness) {
  std::string places;
  for (const Point& point : points) {
    places += (places.empty() ? "" : " ") + ShortText(point.x) + ',' + ShortText(point.y);
  }
  body_ += "<polyline fill=\"none\"" + Attribute("points", places) + Attribute("stroke", colour) +
           Attribute("stroke-width", thickness) + "/>\n";
}

void Svg::Box(Point corner, Point opposite, std::string_view colour, std::string_view note) {
  body_ += "<rect" + Attribute("x", std::min(corner.x, opposite.x)) +
           Attribute("y", std::min(corner.y, opposite.y)) +
           Attribute("width", std::abs(opposite.x - corner.x)) +
           Attribute("height", std::abs(opposite.y - corner.y)) + Attribute("fill", colour) +
           Closed("rect", note);
}

void Svg::Dot(Point centre, std::string_view colour, std::string_view note) {
  body_ += "<circle r=\"3.5\"" + Attribute("cx", centre.x) + Attribute("cy", centre.y) +
           Attribute("fill", colour) + Closed("circle", note);
}

double Svg::WidthOf(std::string_view text) {
  constexpr double column_width = 7.2;
  return column_width * TextColumns(Wide(text));
}

void Svg::Text(Point at, std::string_view text, Anchor anchor, std::string_view colour, int size) {
  body_ += "<text" + Attribute("x", at.x) + Attribute("y", at.y) +
           TextAttributes(anchor, colour, size) + ">" + Escaped(text) + "</text>\n";
}

void Svg::UprightText(Point at, std::string_view text) {
  const std::string turn = "translate(" + ShortText(at.x) + ' ' + ShortText(at.y) + ") rotate(-90)";
  body_ += "<text" + Attribute("transform", turn) + TextAttributes(Anchor::middle, ink, 12) + ">" +
           Escaped(text) + "</text>\n";
}

void Svg::Save(const std::string& file_name) const {
  std::ofstream file(file_name, std::ios::binary);
  file << "<svg xmlns=\"http://www.w3.org/2000/svg\"" << Attribute("width", width)
       << Attribute("height", height_)
       << Attribute("viewBox", "0 0 " + ShortText(width) + ' ' + ShortText(height_))
       << " font-family=\"Helvetica, Arial, sans-serif\">\n"
       << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
       << body_ << "</svg>\n";
  if (!file.flush()) {
    throw Failure(file_unusable, "The picture '" + file_name + "' can't be written.");
  }
}

Axis::Axis(double low, double high, double low_place, double high_place)
    : low_(low), high_(high), low_place_(low_place), high_place_(high_place) {
  const double least = std::max(1e-6, 1e-6 * std::max(std::abs(low), std::abs(high)));
  if (high_ - low_ < least) {
    low_ -= least;
    high_ = low_ + 2 * least;
  }
}

double Axis::At(double value) const {
  return low_place_ + (value - low_) / (high_ - low_) * (high_place_ - low_place_);
}

std::vector<double> Axis::Ticks(double distance) const {
  const double steps = std::max(1.0, std::abs(high_place_ - low_place_) / distance);
  const double step = RoundStep((high_ - low_) / steps);
  const double first = std::ceil(low_ / step);
  const int count = static_cast<int>(std::floor(high_ / step) - first) + 1;
  std::vector<double> ticks;
  ticks.reserve(static_cast<std::size_t>(std::max(count, 0)));
  for (int i = 0; i < count; ++i) ticks.push_back((first + i) * step);
  return ticks;
}

void Axis::DrawBelow(Svg& svg, double top, double bottom, std::string_view title) const {
  for (const double tick : Ticks(60)) {
    svg.Line({At(tick), top}, {At(tick), bottom + 4}, Svg::grid);
    svg.Text({At(tick), bottom + 18}, ShortText(tick), Svg::Anchor::middle, Svg::faint_ink);
  }
  svg.Line({low_place_, bottom}, {high_place_, bottom}, Svg::ink);
  svg.Text({(low_place_ + high_place_) / 2, bottom + 36}, title, Svg::Anchor::middle);
}

void Axis::DrawLeft(Svg& svg, double left, double right, std::string_view title) const {
  for (const double tick : Ticks(40)) {
    svg.Line({left - 4, At(tick)}, {right, At(tick)}, Svg::grid);
    svg.Text({left - 8, At(tick) + 4}, ShortText(tick), Svg::Anchor::end, Svg::faint_ink);
  }
  svg.Line({left, low_place_}, {left, high_place_}, Svg::ink);
  svg.UprightText({left - 56, (low_place_ + high_place_) / 2}, title);
}

}  // namespace kestrindb
