// Rows of the last tables: errors and their severity, shadow groups, names that users gave to keys,
// learn procedures, and the tables over whole keys with a number in their name.
#pragma once

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

struct QVErrorCode : QValueBase, TableType::Fields<QVErrorCode> {
  int first = 0;
  wchar_t text[TableType::text_width] = {};
  int third = -1;
  int fourth = -1;
  int fifth = 0;

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVErrorCode::first),
        TableType::Field("text", &QVErrorCode::text),
        TableType::Field("third", &QVErrorCode::third),
        TableType::Field("fourth", &QVErrorCode::fourth),
        TableType::Field("fifth", &QVErrorCode::fifth, TableType::FieldKind::long_int));
  }
};

struct QVExternalError : QValueBase, TableType::Fields<QVExternalError> {
  int first = -1;
  int second = -1;
  int third = -1;
  int fourth = -1;
  int fifth = -1;
  int sixth = -1;
  int seventh = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVExternalError::first),
                                TableType::Field("second", &QVExternalError::second),
                                TableType::Field("third", &QVExternalError::third),
                                TableType::Field("fourth", &QVExternalError::fourth),
                                TableType::Field("fifth", &QVExternalError::fifth),
                                TableType::Field("sixth", &QVExternalError::sixth),
                                TableType::Field("seventh", &QVExternalError::seventh));
  }
};

// A severity class of errors.
struct QVErrorGroup : QValueBase, TableType::Fields<QVErrorGroup> {
  int first = 0;
  int second = 4;
  wchar_t text_1[TableType::text_width] = {};
  wchar_t text_2[TableType::text_width] = {};

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVErrorGroup::first, TableType::FieldKind::long_int),
        TableType::Field("second", &QVErrorGroup::second, TableType::FieldKind::long_int),
        TableType::Field("text_1", &QVErrorGroup::text_1),
        TableType::Field("text_2", &QVErrorGroup::text_2));
  }
};

struct QVShadowGroupProperty : QValueBase, TableType::Fields<QVShadowGroupProperty> {
  int first = 0;

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVShadowGroupProperty::first, TableType::FieldKind::long_int));
  }
};

// The name that users gave to a measured quantity, for all test steps.
struct KESTRIN_API QVClavisUserNames : QValueBase, TableType::Fields<QVClavisUserNames> {
  wchar_t name[TableType::text_width] = {};
  int second = 0;
  int third = 1;

  // Copies a user name's key (instrument, channel, sensor, location, parameter) into a whole key,
  // whose test step stays as it was.
  static void Clavis(const QIdx5& from, QClavis& to);

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("name", &QVClavisUserNames::name),
                                TableType::Field("second", &QVClavisUserNames::second),
                                TableType::Field("third", &QVClavisUserNames::third));
  }
};

struct QVLearnProcedures : QValueBase, TableType::Fields<QVLearnProcedures> {
  int first = 0;
  unsigned second = 0;
  float third = 1.0F;
  wchar_t text[TableType::text_width] = {};

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVLearnProcedures::first),
                                TableType::Field("second", &QVLearnProcedures::second),
                                TableType::Field("third", &QVLearnProcedures::third),
                                TableType::Field("text", &QVLearnProcedures::text));
  }
};

// The track polygon of a key.
struct QVIpSvTrackPolygon : QValueBase, TableType::Fields<QVIpSvTrackPolygon> {
  static constexpr unsigned s_version = 1;

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
    return TableType::FieldList(TableType::Field("track_a", &QVIpSvTrackPolygon::track_a),
                                TableType::Field("track_b", &QVIpSvTrackPolygon::track_b),
                                TableType::Field("track_c", &QVIpSvTrackPolygon::track_c),
                                TableType::Field("polygon_id", &QVIpSvTrackPolygon::polygon_id),
                                TableType::Field("offset", &QVIpSvTrackPolygon::offset),
                                TableType::Field("polygon_mode", &QVIpSvTrackPolygon::polygon_mode),
                                TableType::Field("x_start", &QVIpSvTrackPolygon::x_start),
                                TableType::Field("x_end", &QVIpSvTrackPolygon::x_end),
                                TableType::Field("y_start", &QVIpSvTrackPolygon::y_start),
                                TableType::Field("y_end", &QVIpSvTrackPolygon::y_end));
  }
};

// A relative limit of a key.
struct QVRelativeLimit : QValueBase, TableType::Fields<QVRelativeLimit> {
  float first = 0.0F;
  float second = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVRelativeLimit::first),
                                TableType::Field("second", &QVRelativeLimit::second));
  }
};
