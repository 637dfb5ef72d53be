// Rows of the tables that tell how a test runs as a machine: rotors and orders, resampling,
// sensors, signals and their units, triggers, and the running values that virtual test steps are
// made from.
#pragma once

#include "tables/RowRecords.h"

// The speed value of a rotor in a physical mode. Only ratios of two of them matter.
struct QVRotorSpeeds : QValueBase, TableType::Fields<QVRotorSpeeds> {
  float speed = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("speed", &QVRotorSpeeds::speed));
  }
};

// The base order of a physical gear: for a gear wheel its number of teeth.
struct QVBaseOrder : QValueBase, TableType::Fields<QVBaseOrder> {
  float base_order = 0.0F;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("base_order", &QVBaseOrder::base_order));
  }
};

// How a signal is resampled. All fields belong to the programs that load the library.
struct QVResampling : QValueBase, TableType::Fields<QVResampling> {
  int first = -1;
  int second = -1;
  int third = -1;
  unsigned fourth = 1024;
  unsigned fifth = 1;
  float sixth = 1.0F;
  int seventh = 1;
  float eighth = 50.0F;
  int ninth = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVResampling::first),
                                TableType::Field("second", &QVResampling::second),
                                TableType::Field("third", &QVResampling::third),
                                TableType::Field("fourth", &QVResampling::fourth),
                                TableType::Field("fifth", &QVResampling::fifth),
                                TableType::Field("sixth", &QVResampling::sixth),
                                TableType::Field("seventh", &QVResampling::seventh),
                                TableType::Field("eighth", &QVResampling::eighth),
                                TableType::Field("ninth", &QVResampling::ninth));
  }
};

// A member of a sensor group.
struct QVSensorGroupList : QValueBase, TableType::Fields<QVSensorGroupList> {
  int first = -1;
  int second = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVSensorGroupList::first),
                                TableType::Field("second", &QVSensorGroupList::second));
  }
};

// The properties of an application signal. A row's text gives the unit text in front of the float
// and ends with the unit's prefix; the fields behind that are never in a file, and only programs
// that load the library fill them.
struct QVAppSignalProperty : QValueBase, TableType::Fields<QVAppSignalProperty> {
  int signal_type = 0;  // a set of bits; the value 4 marks the time signal
  float third = 1.0F;
  wchar_t unit_text[TableType::text_width] = {};  // "----" stands for no unit
  int unit_code = 0;    // negative, 1, or 30 and above: the unit stands in the text
  int unit_prefix = 0;  // decimal exponent; 1 and -1 mean none

  wchar_t sixth[20] = {};
  float seventh = 1.0F;
  float eighth = 1.0F;
  float ninth = 0.0F;
  float tenth = 0.0F;
  int eleventh = 0;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("signal_type", &QVAppSignalProperty::signal_type),
                                TableType::Field("unit_text", &QVAppSignalProperty::unit_text),
                                TableType::Field("third", &QVAppSignalProperty::third),
                                TableType::Field("unit_code", &QVAppSignalProperty::unit_code),
                                TableType::Field("unit_prefix", &QVAppSignalProperty::unit_prefix));
  }
};

struct QVSensorConfiguration : QValueBase, TableType::Fields<QVSensorConfiguration> {
  int first = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVSensorConfiguration::first));
  }
};

struct QVSignalDispatch : QValueBase, TableType::Fields<QVSignalDispatch> {
  int first = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVSignalDispatch::first));
  }
};

struct QVTrigger : QValueBase, TableType::Fields<QVTrigger> {
  wchar_t name[TableType::text_width] = {};
  int second = 0;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("name", &QVTrigger::name),
                                TableType::Field("second", &QVTrigger::second));
  }
};

// One axis of a trigger in a test step: the running values on which results are taken.
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

// A signal from whose values virtual modes are made, in bands.
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

struct QVAutoMode : QValueBase, TableType::Fields<QVAutoMode> {
  int first = -1;

  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("first", &QVAutoMode::first));
  }
};

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
