// Rows of the tables of triggers, and of the running values that virtual test steps are made from.
#pragma once

#include "tables/RowRecords.h"

// <TTrigger>, by trigger id: the name of a trigger.
struct QVTrigger : QValueBase, TableType::Fields<QVTrigger> {
  wchar_t name[TableType::text_width] = {};
  int second = 0;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("name", &QVTrigger::name),
                                TableType::Field("second", &QVTrigger::second));
  }
};

// <TTriggerParam>, by test step, trigger and the number of the axis, from 1 to 4: the running
// values on which results are taken.
struct QVTriggerParams : QValueBase, TableType::Fields<QVTriggerParams> {
  enum axisDirection : int { no_direction = 1, raising_direction = 2, falling_direction = 3 };

  int first = -1;
  unsigned second = 0;
  float start = 0.0F;  // one end of the axis
  float stop = 0.0F;   // the other; above start on a raising axis
  float step = 0.0F;   // width of one cell
  unsigned sixth = 0;
  int direction = 0;  // an axisDirection
  int eighth = 0;
  int ninth = -1;
  int tenth = 0;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVTriggerParams::first),
                                TableType::Field("second", &QVTriggerParams::second),
                                TableType::Field("start", &QVTriggerParams::start),
                                TableType::Field("stop", &QVTriggerParams::stop),
                                TableType::Field("step", &QVTriggerParams::step),
                                TableType::Field("sixth", &QVTriggerParams::sixth),
                                TableType::Field("direction", &QVTriggerParams::direction),
                                TableType::Field("eighth", &QVTriggerParams::eighth),
                                TableType::Field("ninth", &QVTriggerParams::ninth),
                                TableType::Field("tenth", &QVTriggerParams::tenth));
  }
};

// <TAutoModeParam>, by application signal: from the bands of its values virtual test steps are
// made.
struct QVAutoModeParams : QValueBase, TableType::Fields<QVAutoModeParams> {
  float start = 0.0F;  // signal value at which band 0 begins
  float second = 10.0F;
  float step = 1.0F;    // width of one band
  int directional = 0;  // not 0: a digit of a virtual mode also carries a direction
  int fifth = 0;
  float sixth = 5.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("start", &QVAutoModeParams::start),
                                TableType::Field("second", &QVAutoModeParams::second),
                                TableType::Field("step", &QVAutoModeParams::step),
                                TableType::Field("directional", &QVAutoModeParams::directional),
                                TableType::Field("fifth", &QVAutoModeParams::fifth),
                                TableType::Field("sixth", &QVAutoModeParams::sixth));
  }
};

// <TAutoMode>, by one id.
struct QVAutoMode : QValueBase, TableType::Fields<QVAutoMode> {
  int first = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVAutoMode::first));
  }
};

// <TAutoModeSelector>, by one id, which may stand on several lines.
struct QVAutoModeSelector : QValueBase, TableType::Fields<QVAutoModeSelector> {
  QClavis clavis;
  float second = 0.0F;
  float third = 0.0F;
  int fourth = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("clavis", &QVAutoModeSelector::clavis),
                                TableType::Field("second", &QVAutoModeSelector::second),
                                TableType::Field("third", &QVAutoModeSelector::third),
                                TableType::Field("fourth", &QVAutoModeSelector::fourth));
  }
};
