// Rows of the tables of triggers, and of the running values that virtual test steps are made from.
#pragma once

#include "tables/RowRecords.h"

// <TTrigger>, by trigger id: the name of a trigger.
struct QVTrigger : QValueBase, TableType::Fields<QVTrigger> {
  wchar_t name[TableType::text_width] = {};
  int second = 0;

  static constexpr auto fields() {
    return List(At("name", &QVTrigger::name), At("second", &QVTrigger::second));
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
    return List(At("first", &QVTriggerParams::first), At("second", &QVTriggerParams::second),
                At("start", &QVTriggerParams::start), At("stop", &QVTriggerParams::stop),
                At("step", &QVTriggerParams::step), At("sixth", &QVTriggerParams::sixth),
                At("direction", &QVTriggerParams::direction),
                At("eighth", &QVTriggerParams::eighth), At("ninth", &QVTriggerParams::ninth),
                At("tenth", &QVTriggerParams::tenth));
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
    return List(At("start", &QVAutoModeParams::start), At("second", &QVAutoModeParams::second),
                At("step", &QVAutoModeParams::step),
                At("directional", &QVAutoModeParams::directional),
                At("fifth", &QVAutoModeParams::fifth), At("sixth", &QVAutoModeParams::sixth));
  }
};

// <TAutoMode>, by one id.
struct QVAutoMode : QValueBase, TableType::Fields<QVAutoMode> {
  int first = -1;

  static constexpr auto fields() { return List(At("first", &QVAutoMode::first)); }
};

// <TAutoModeSelector>, by one id, which may stand on several lines.
struct QVAutoModeSelector : QValueBase, TableType::Fields<QVAutoModeSelector> {
  QClavis clavis;
  float second = 0.0F;
  float third = 0.0F;
  int fourth = -1;

  static constexpr auto fields() {
    return List(At("clavis", &QVAutoModeSelector::clavis),
                At("second", &QVAutoModeSelector::second), At("third", &QVAutoModeSelector::third),
                At("fourth", &QVAutoModeSelector::fourth));
  }
};
