// Rows of the tables that name things and that describe the structure of a test: parameters of
// instruments, properties of test steps, channels, objects and instruments, and the names that
// users gave to measured quantities. (Names themselves are rows of CDynNameIdTable.)
//
// In all rows of the catalogue, fields that are named after their position (third, fourth, ...) are
// carried for the programs that load the library; their meaning belongs to those programs. Rows are
// plain values: any thread may read them beside others, a host that writes one keeps readers away.
#pragma once

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

// <TInstrumentParam>, by parameter: one result of an instrument. Ids are unique over all
// instruments.
struct QVInstrumentParam : QValueBase, TableType::Fields<QVInstrumentParam> {
  int instrument = -1;
  wchar_t name[TableType::text_width] = {};
  int third = 0;
  unsigned fourth = 0;
  unsigned fifth = 0;

  static constexpr auto fields() {
    return List(At("instrument", &QVInstrumentParam::instrument),
                At("name", &QVInstrumentParam::name), At("third", &QVInstrumentParam::third),
                At("fourth", &QVInstrumentParam::fourth), At("fifth", &QVInstrumentParam::fifth));
  }
};

// <TModeProperty>: the properties of a test step.
struct QVModeProps : QValueBase, TableType::Fields<QVModeProps> {
  enum modeFlag : unsigned {
    mode_hidden = 0x400,  // the test step isn't offered in selections
  };

  int phys_mode = -1;
  unsigned flags = 0;
  int third = -1;
  int fourth = 0;

  static constexpr auto fields() {
    return List(At("phys_mode", &QVModeProps::phys_mode), At("flags", &QVModeProps::flags),
                At("third", &QVModeProps::third), At("fourth", &QVModeProps::fourth));
  }
};

// <TChannelProperty>: the properties of a channel.
struct QVChannelProperty : QValueBase, TableType::Fields<QVChannelProperty> {
  unsigned resampling_type = 0;  // a set of CQtParamInstance::channelFlag
  int second = -1;

  static constexpr auto fields() {
    return List(At("resampling_type", &QVChannelProperty::resampling_type),
                At("second", &QVChannelProperty::second));
  }
};

// The one-id row that many tables share.
struct QVRefIdx : QValueBase, TableType::Fields<QVRefIdx> {
  int ref = -1;

  QVRefIdx() = default;
  QVRefIdx(int id) : ref(id) {}

  static constexpr auto fields() { return List(At("ref", &QVRefIdx::ref)); }
};

// <TLocationProperty>: the properties of an object.
struct QVLocationProperty : QValueBase, TableType::Fields<QVLocationProperty> {
  int flags = 0;
  int second = 0;
  int third = 0;

  static constexpr auto fields() {
    return List(At("flags", &QVLocationProperty::flags), At("second", &QVLocationProperty::second),
                At("third", &QVLocationProperty::third));
  }
};

// <TInstrumentProperty>: the properties of an instrument.
struct QVInstrumentProperty : QValueBase, TableType::Fields<QVInstrumentProperty> {
  int first = -1;
  int second = 0;
  int third = 0;

  static constexpr auto fields() {
    return List(At("first", &QVInstrumentProperty::first),
                At("second", &QVInstrumentProperty::second),
                At("third", &QVInstrumentProperty::third));
  }
};

// <TClavisUserNames>: the name that users gave to a measured quantity, for all test steps.
struct KESTRIN_API QVClavisUserNames : QValueBase, TableType::Fields<QVClavisUserNames> {
  wchar_t name[TableType::text_width] = {};
  int second = 0;
  int third = 1;

  // Copies a user name's key (instrument, channel, sensor, location, parameter) into a whole key,
  // whose test step stays as it was.
  static void Clavis(const QIdx5& from, QClavis& to);

  static constexpr auto fields() {
    return List(At("name", &QVClavisUserNames::name), At("second", &QVClavisUserNames::second),
                At("third", &QVClavisUserNames::third));
  }
};
