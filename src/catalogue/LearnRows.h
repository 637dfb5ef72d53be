// Rows of the tables of learning: parameters of measured quantities, and procedures.
#pragma once

#include <ctime>

#include "tables/RowRecords.h"

// <TIpLearnParams>: the learn parameters of a key. Both times are that at which the record was
// made, until a row's text says otherwise.
struct QVIpLearnParameter : QValueBase, TableType::Fields<QVIpLearnParameter> {
  int first = -1;
  long long time_1 = std::time(nullptr);  // seconds since 1970
  unsigned third = 0;
  long long time_2 = time_1;

  static constexpr auto fields() {
    return List(At("first", &QVIpLearnParameter::first),
                At("time_1", &QVIpLearnParameter::time_1, "the time of the load"),
                At("third", &QVIpLearnParameter::third),
                At("time_2", &QVIpLearnParameter::time_2, "the time of the load"));
  }
};

// <TLearnProcedures>, by procedure.
struct QVLearnProcedures : QValueBase, TableType::Fields<QVLearnProcedures> {
  int first = 0;
  unsigned second = 0;
  float third = 1.0F;
  wchar_t text[TableType::text_width] = {};

  static constexpr auto fields() {
    return List(At("first", &QVLearnProcedures::first), At("second", &QVLearnProcedures::second),
                At("third", &QVLearnProcedures::third), At("text", &QVLearnProcedures::text));
  }
};
