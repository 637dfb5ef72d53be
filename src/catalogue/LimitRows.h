// Rows of the tables that decide how a measured quantity is stored and limited. (What is calculated
// of it stands in IpCalcParameter.h.)
#pragma once

#include "tables/RowRecords.h"

// <TIpParamAndStore>, by key: the list of measured quantities, and how each is stored.
struct QVIpParamAndStore : QValueBase, TableType::Fields<QVIpParamAndStore> {
  int first = 0;
  float second = 0.0F;
  float third = 0.0F;
  int fourth = 0;
  float fifth = 0.0F;

  static constexpr auto fields() {
    return List(At("first", &QVIpParamAndStore::first), At("second", &QVIpParamAndStore::second),
                At("third", &QVIpParamAndStore::third), At("fourth", &QVIpParamAndStore::fourth),
                At("fifth", &QVIpParamAndStore::fifth));
  }
};

// <TGrex11>: the run test setting of a key.
struct QVIpRunTest : QValueBase, TableType::Fields<QVIpRunTest> {
  int first = 1;

  static constexpr auto fields() { return List(At("first", &QVIpRunTest::first)); }
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

// <TLimSValue>, by key: a limit with two float values.
struct QVLimSValue : QVLimitBase, TableType::Fields<QVLimSValue> {
  float second = 0.0F;
  float third = 0.0F;

  static constexpr auto fields() {
    return List(At("first", &QVLimSValue::first), At("second", &QVLimSValue::second),
                At("third", &QVLimSValue::third));
  }
};

// <TLimCValue>, by key: a limit with integer values.
struct QVLimCValue : QVLimitBase, TableType::Fields<QVLimCValue> {
  int second = -1;
  int third = -1;
  int fourth = 0;
  int fifth = -1;

  static constexpr auto fields() {
    return List(At("first", &QVLimCValue::first), At("second", &QVLimCValue::second),
                At("third", &QVLimCValue::third), At("fourth", &QVLimCValue::fourth),
                At("fifth", &QVLimCValue::fifth));
  }
};

// <TLimArea>, by key: a limit of an area.
struct QVLimArea : QVLimitBase, TableType::Fields<QVLimArea> {
  float second = 0.0F;
  float third = 0.0F;

  static constexpr auto fields() {
    return List(At("first", &QVLimArea::first), At("second", &QVLimArea::second),
                At("third", &QVLimArea::third));
  }
};

// <TGrex15>: a relative limit of a key, whose instrument the load fills in from the parameter.
struct QVRelativeLimit : QValueBase, TableType::Fields<QVRelativeLimit> {
  float first = 0.0F;
  float second = 0.0F;

  static constexpr auto fields() {
    return List(At("first", &QVRelativeLimit::first), At("second", &QVRelativeLimit::second));
  }
};
