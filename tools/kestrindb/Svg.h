// Pictures for reports, in SVG: a sheet with lines, boxes and texts, and axes with round ticks.
//
// A picture is 800 units wide and meant to be shown so, or larger. All looks stand in attributes of
// the shapes, since text processors that take SVG pass over style sheets. A number that isn't
// finite must not reach a sheet.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrindb {

struct Point {
  double x;
  double y;
};

// From left to right and from top to bottom, as a sheet counts.
class Svg {
 public:
  static constexpr double width = 800;

  static constexpr std::string_view ink = "#222222";
  static constexpr std::string_view faint_ink = "#767676";
  static constexpr std::string_view grid = "#d9d9d9";
  static constexpr std::string_view stripe = "#f5f6f8";
  static constexpr std::string_view data = "#1f6fb4";

  enum class Anchor { start, middle, end };

  void Line(Point from, Point to, std::string_view colour, double thickness = 1);
  void Polyline(const std::vector<Point>& points, std::string_view colour, double thickness = 2);
  // The notes are shown where a viewer's pointer rests on a shape.
  void Box(Point corner, Point opposite, std::string_view colour, std::string_view note = {});
  void Dot(Point centre, std::string_view colour, std::string_view note = {});
  // About what a line of text (UTF-8) takes at the usual size, rather too much than too little:
  // viewers choose the font.
  static double WidthOf(std::string_view text);
  // A line of text (UTF-8) on the base line through `at`.
  void Text(Point at, std::string_view text, Anchor anchor = Anchor::start,
            std::string_view colour = ink, int size = 12);
  // The same, turned to be read from below, in as many lines as it takes to stay within the length,
  // the last one through `at`.
  void UprightText(Point at, std::string_view text, double length);
  // The head of a picture, a large text over a faint one, in as many lines as they take. Gives the
  // place below.
  double Titles(std::string_view title, std::string_view subtitle);

  // Writes the picture down to that height into a file, "-" being standard output. Throws Failure
  // if it can't be written.
  void Save(const std::string& file_name, double height) const;

 private:
  std::string body_;
};

// From values to places on a sheet.
class Axis {
 public:
  // The values low and high lie at those two places. Where they are one value, or none, the axis is
  // made wide enough to show it.
  Axis(double low, double high, double low_place, double high_place);

  double At(double value) const;
  double LowPlace() const { return low_place_; }
  double Low() const { return low_; }
  double High() const { return high_; }

  struct Tick {
    double value;
    std::string label;  // with as many digits as tell it from its neighbours
  };
  // Round values, about as many as there are steps of that many units.
  std::vector<Tick> Ticks(double distance) const;

  // The axis below a plot: grid lines from top to bottom, numbers and title below.
  void DrawBelow(Svg& svg, double top, double bottom, std::string_view title) const;
  // The axis at the left of a plot: grid lines from left to right, numbers and title at the left.
  void DrawLeft(Svg& svg, double left, double right, std::string_view title) const;

 private:
  double low_;
  double high_;
  double low_place_;
  double high_place_;
};

// Six digits at most, or so many, whatever the locale.
std::string ShortText(double value, int digits = 6);

}  // namespace kestrindb
