// Rows of the tables of polygons, and of the track polygons of keys.
#pragma once

#include "tables/RowRecords.h"

// <TIpPolygon>, by polygon id: a named curve of points.
struct QVClassIdName : QValueBase, TableType::Fields<QVClassIdName> {
  int class_id = -1;
  wchar_t name[TableType::text_width] = {};

  static constexpr auto fields() {
    return List(At("class_id", &QVClassIdName::class_id), At("name", &QVClassIdName::name));
  }
};

// <TIpPolygonProperty>, by polygon id.
struct QVIpPolygonProperty : QValueBase, TableType::Fields<QVIpPolygonProperty> {
  int first = -1;
  int second = 1;

  static constexpr auto fields() {
    return List(At("first", &QVIpPolygonProperty::first),
                At("second", &QVIpPolygonProperty::second));
  }
};

// <TIpPolygonValue>: the y value of a point of a polygon; polygon and x are its key.
struct QVIpY : QValueBase, TableType::Fields<QVIpY> {
  float y = 0.0F;

  QVIpY() = default;
  explicit QVIpY(float value) : y(value) {}

  static constexpr auto fields() { return List(At("y", &QVIpY::y)); }
};

// <TGrex10001>: the track polygon of a key; an element of -1 stands for any value.
struct QVIpSvTrackPolygon : QValueBase, TableType::Fields<QVIpSvTrackPolygon> {
  static constexpr unsigned s_version = 1;  // of the record, for hosts; nothing here reads it

  int track_a = 0;
  int track_b = -1;
  int track_c = -1;
  int polygon_id = -1;
  float offset = 0.0F;   // added to both y values of a polygon made from this row
  int polygon_mode = 0;  // 1: the polygon is made from the two points below
  float x_start = 0.0F;
  float x_end = 0.0F;
  float y_start = 0.0F;
  float y_end = 0.0F;

  static constexpr auto fields() {
    return List(
        At("track_a", &QVIpSvTrackPolygon::track_a), At("track_b", &QVIpSvTrackPolygon::track_b),
        At("track_c", &QVIpSvTrackPolygon::track_c),
        At("polygon_id", &QVIpSvTrackPolygon::polygon_id),
        At("offset", &QVIpSvTrackPolygon::offset),
        At("polygon_mode", &QVIpSvTrackPolygon::polygon_mode),
        At("x_start", &QVIpSvTrackPolygon::x_start), At("x_end", &QVIpSvTrackPolygon::x_end),
        At("y_start", &QVIpSvTrackPolygon::y_start), At("y_end", &QVIpSvTrackPolygon::y_end));
  }
};
