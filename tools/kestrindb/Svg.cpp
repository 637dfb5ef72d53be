#include "Svg.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <iterator>
#include <sstream>

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

// A text in lines of that width, broken at blanks, and within a word that is too long for a line.
std::vector<std::string> Wrapped(std::string_view text, double width) {
  std::vector<std::string> lines;
  const std::wstring wide = Wide(text);
  std::wstring_view rest = wide;
  do {
    std::wstring_view left = rest;
    std::size_t fits = 0;
    std::size_t blank = 0;  // the last one that fits
    while (!left.empty()) {
      const std::size_t at = rest.size() - left.size();
      if (left.front() == L' ') blank = at;
      Text::TakeCharacter(left);
      if (Svg::WidthOf(Utf8(rest.substr(0, rest.size() - left.size()))) > width && at > 0) break;
      fits = rest.size() - left.size();
    }
    const std::size_t end = fits < rest.size() && blank > 0 ? blank : fits;
    lines.push_back(Utf8(rest.substr(0, end)));
    rest.remove_prefix(end);
    if (rest.starts_with(L' ')) rest.remove_prefix(1);
  } while (!rest.empty());
  return lines;
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

std::string ShortText(double value, int digits) {
  char text[32];
  const auto written =
      std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, digits);
  return {text, written.ptr};
}

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

void Svg::UprightText(Point at, std::string_view text, double length) {
  const std::vector<std::string> lines = Wrapped(text, length);
  double x = std::max(at.x - 14 * static_cast<double>(lines.size() - 1), 12.0);
  for (const std::string& line : lines) {
    const std::string turn = "translate(" + ShortText(x) + ' ' + ShortText(at.y) + ") rotate(-90)";
    body_ += "<text" + Attribute("transform", turn) + TextAttributes(Anchor::middle, ink, 12) +
             ">" + Escaped(line) + "</text>\n";
    x += 14;
  }
}

double Svg::Titles(std::string_view title, std::string_view subtitle) {
  constexpr int large = 16;
  constexpr double left = 12;
  constexpr double room = width - 2 * left;
  double y = 24;
  for (const std::string& line : Wrapped(title, room * 12 / large)) {
    Text({left, y}, line, Anchor::start, ink, large);
    y += 20;
  }
  for (const std::string& line : Wrapped(subtitle, room)) {
    Text({left, y}, line, Anchor::start, faint_ink);
    y += 16;
  }
  return y - 16;
}

void Svg::Save(const std::string& file_name, double height) const {
  std::ostringstream out;
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\"" << Attribute("width", width)
      << Attribute("height", height)
      << Attribute("viewBox", "0 0 " + ShortText(width) + ' ' + ShortText(height))
      << " font-family=\"Helvetica, Arial, sans-serif\">\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
      << body_ << "</svg>\n";
  if (file_name == "-") {
    std::cout << out.str();
    return;
  }
  try {
    kestrin::ReplaceFile(Wide(file_name), out.str());
  } catch (const CFileException& error) {
    throw Failure(file_unusable, error.what());
  }
}

// Values that a float hardly tells apart are one.
Axis::Axis(double low, double high, double low_place, double high_place)
    : low_(low), high_(high), low_place_(low_place), high_place_(high_place) {
  const double largest = std::max(std::abs(low), std::abs(high));
  if (high_ - low_ > 1e-6 * largest) return;
  const double room = largest > 0 ? largest / 20 : 1;
  low_ -= room;
  high_ += room;
}

double Axis::At(double value) const {
  return low_place_ + (value - low_) / (high_ - low_) * (high_place_ - low_place_);
}

std::vector<Axis::Tick> Axis::Ticks(double distance) const {
  const double steps = std::max(1.0, std::abs(high_place_ - low_place_) / distance);
  const double step = RoundStep((high_ - low_) / steps);
  const double first = std::ceil(low_ / step);
  const int count = static_cast<int>(std::floor(high_ / step) - first) + 1;
  const double largest = std::max(std::abs(low_), std::abs(high_));
  const int digits = std::clamp(2 + static_cast<int>(std::log10(largest / step)), 6, 15);
  std::vector<Tick> ticks;
  for (int i = 0; i < count; ++i) {
    const double value = (first + i) * step;
    ticks.push_back({value, ShortText(value, digits)});
  }
  return ticks;
}

void Axis::DrawBelow(Svg& svg, double top, double bottom, std::string_view title) const {
  for (const auto& [value, label] : Ticks(60)) {
    svg.Line({At(value), top}, {At(value), bottom + 4}, Svg::grid);
    svg.Text({At(value), bottom + 18}, label, Svg::Anchor::middle, Svg::faint_ink);
  }
  svg.Line({low_place_, bottom}, {high_place_, bottom}, Svg::ink);
  double y = bottom + 36;
  for (const std::string& line : Wrapped(title, high_place_ - low_place_)) {
    svg.Text({(low_place_ + high_place_) / 2, y}, line, Svg::Anchor::middle);
    y += 14;
  }
}

void Axis::DrawLeft(Svg& svg, double left, double right, std::string_view title) const {
  for (const auto& [value, label] : Ticks(40)) {
    svg.Line({left - 4, At(value)}, {right, At(value)}, Svg::grid);
    svg.Text({left - 8, At(value) + 4}, label, Svg::Anchor::end, Svg::faint_ink);
  }
  svg.Line({left, low_place_}, {left, high_place_}, Svg::ink);
  svg.UprightText({left - 56, (low_place_ + high_place_) / 2}, title,
                  std::abs(high_place_ - low_place_));
}

}  // namespace kestrindb
