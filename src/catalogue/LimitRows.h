// Rows of the tables that decide what happens with a measured quantity: how it is stored, learnt
// and limited, and the polygons. (The calculation parameters have a header of their own,
// IpCalcParameter.h.)
#pragma once

#include <ctime>

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

struct QVIpParamAndStore : QValueBase, TableType::Fields<QVIpParamAndStore> {
  int first = 0;
  float second = 0.0F;
  float third = 0.0F;
  int fourth = 0;
  float fifth = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVIpParamAndStore::first),
                                TableType::Field("second", &QVIpParamAndStore::second),
                                TableType::Field("third", &QVIpParamAndStore::third),
                                TableType::Field("fourth", &QVIpParamAndStore::fourth),
                                TableType::Field("fifth", &QVIpParamAndStore::fifth));
  }
};

// The run test setting of a key.
struct QVIpRunTest : QValueBase, TableType::Fields<QVIpRunTest> {
  int first = 1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVIpRunTest::first));
  }
};

// The learn parameters of a key. Both times are that at which the record was made, until a row's
// text says otherwise.
struct QVIpLearnParameter : QValueBase, TableType::Fields<QVIpLearnParameter> {
  int first = -1;
  long long time_1 = std::time(nullptr);  // seconds since 1970
  unsigned third = 0;
  long long time_2 = time_1;

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVIpLearnParameter::first),
        TableType::Field("time_1", &QVIpLearnParameter::time_1, "the time of the load"),
        TableType::Field("third", &QVIpLearnParameter::third),
        TableType::Field("time_2", &QVIpLearnParameter::time_2, "the time of the load"));
  }
};

// What all limits have in common.
struct QVLimitBase : QValueBase {
  ~QVLimitBase() override = 0;
  QVLimitBase() = default;
  QVLimitBase(const QVLimitBase&) = default;
  QVLimitBase& operator=(const QVLimitBase&) = default;

  int first = 0;
};
inline QVLimitBase::~QVLimitBase() = default;

// A limit with two float values.
struct QVLimSValue : QVLimitBase, TableType::Fields<QVLimSValue> {
  float second = 0.0F;
  float third = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVLimSValue::first),
                                TableType::Field("second", &QVLimSValue::second),
                                TableType::Field("third", &QVLimSValue::third));
  }
};

// A limit with integer values.
struct QVLimCValue : QVLimitBase, TableType::Fields<QVLimCValue> {
  int second = -1;
  int third = -1;
  int fourth = 0;
  int fifth = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVLimCValue::first),
                                TableType::Field("second", &QVLimCValue::second),
                                TableType::Field("third", &QVLimCValue::third),
                                TableType::Field("fourth", &QVLimCValue::fourth),
                                TableType::Field("fifth", &QVLimCValue::fifth));
  }
};

// A limit of an area.
struct QVLimArea : QVLimitBase, TableType::Fields<QVLimArea> {
  float second = 0.0F;
  float third = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVLimArea::first),
                                TableType::Field("second", &QVLimArea::second),
                                TableType::Field("third", &QVLimArea::third));
  }
};

// A polygon: a named curve of points.
struct QVClassIdName : QValueBase, TableType::Fields<QVClassIdName> {
  int class_id = -1;
  wchar_t name[TableType::text_width] = {};

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("class_id", &QVClassIdName::class_id),
                                TableType::Field("name", &QVClassIdName::name));
  }
};

struct QVIpPolygonProperty : QValueBase, TableType::Fields<QVIpPolygonProperty> {
  int first = -1;
  int second = 1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVIpPolygonProperty::first),
                                TableType::Field("second", &QVIpPolygonProperty::second));
  }
};

// The y value of a point of a polygon; polygon and x are its key.
struct QVIpY : QValueBase, TableType::Fields<QVIpY> {
  float y = 0.0F;

  QVIpY() = default;
  explicit QVIpY(float value) : y(value) {}

  static constexpr auto fields() { return TableType::FieldList(TableType::Field("y", &QVIpY::y)); }
};
