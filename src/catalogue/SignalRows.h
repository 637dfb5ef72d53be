// Rows of the tables that tell how a test runs as a machine: rotors and orders, resampling,
// sensors, signals and their units.
#pragma once

#include "tables/RowRecords.h"

// <TRotorSpeed>: the speed value of a rotor in a physical mode. Only ratios of two of them matter.
struct QVRotorSpeeds : QValueBase, TableType::Fields<QVRotorSpeeds> {
  float speed = 0.0F;

  static constexpr auto fields() { return List(At("speed", &QVRotorSpeeds::speed)); }
};

// <TBaseOrder>: the base order of a physical gear: for a gear wheel its number of teeth.
struct QVBaseOrder : QValueBase, TableType::Fields<QVBaseOrder> {
  float base_order = 0.0F;

  static constexpr auto fields() { return List(At("base_order", &QVBaseOrder::base_order)); }
};

// <TResampling> and <TResamplingM>, by a job or set and the physical mode or test step: how a
// signal is resampled. All fields belong to the programs that load the library.
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
    return List(At("first", &QVResampling::first), At("second", &QVResampling::second),
                At("third", &QVResampling::third), At("fourth", &QVResampling::fourth),
                At("fifth", &QVResampling::fifth), At("sixth", &QVResampling::sixth),
                At("seventh", &QVResampling::seventh), At("eighth", &QVResampling::eighth),
                At("ninth", &QVResampling::ninth));
  }
};

// <TSensorGroupList>, by sensor group: a member, in the order of the lines.
struct QVSensorGroupList : QValueBase, TableType::Fields<QVSensorGroupList> {
  int first = -1;
  int second = -1;

  static constexpr auto fields() {
    return List(At("first", &QVSensorGroupList::first), At("second", &QVSensorGroupList::second));
  }
};

// <TAppSignalProperty>: the properties of an application signal. A row's text gives the unit text
// in front of the float and ends with the unit's prefix; the fields behind that are never in a
// file, and only programs that load the library fill them.
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
    return List(At("signal_type", &QVAppSignalProperty::signal_type),
                At("unit_text", &QVAppSignalProperty::unit_text),
                At("third", &QVAppSignalProperty::third),
                At("unit_code", &QVAppSignalProperty::unit_code),
                At("unit_prefix", &QVAppSignalProperty::unit_prefix));
  }
};

// <TTpSensorConfigProperty>, by three ids; the names of configurations stand in <TTpSensorConfig>.
struct QVSensorConfiguration : QValueBase, TableType::Fields<QVSensorConfiguration> {
  int first = -1;

  static constexpr auto fields() { return List(At("first", &QVSensorConfiguration::first)); }
};

// <TSignalDispatch>, by one id.
struct QVSignalDispatch : QValueBase, TableType::Fields<QVSignalDispatch> {
  int first = -1;

  static constexpr auto fields() { return List(At("first", &QVSignalDispatch::first)); }
};
