// The calculation parameters of instrument parameters, <TIpCalcParameter>: numbered settings that
// are all stored as text. Whoever reads a value decides whether it is a number, a float or a text.
//
// What the numbers and their values are called comes from the library's string table, in the
// language of the user (frame/strings/ModuleStrings.h). These texts may be asked for from any
// thread.
#pragma once

#include <list>
#include <string>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"
#include "tables/RowRecords.h"

struct KESTRIN_API QVIpCalcParameter : QValueBase, TableType::Fields<QVIpCalcParameter> {
  // Numbers of calculation parameters that have a meaning inside this data base.
  enum number_t : int {
    trigger = 1,
    interpretation = 2,
    definition = 3,
    base_order_reference = 4,
  };

  static constexpr unsigned s_version = 1;  // of the record, for hosts; nothing here reads it
  static constexpr unsigned NumEnums = 6;   // calculation parameters with a list of values

  // A copy takes over the text as TableType::strcopy does: a text that a host has left without its
  // closing zero is cut, and the cut logged.
  QVIpCalcParameter() = default;
  QVIpCalcParameter(const QVIpCalcParameter& other);
  QVIpCalcParameter& operator=(const QVIpCalcParameter& other);

  wchar_t text[TableType::text_width] = {};

  // Good as long as the row.
  const wchar_t* ValueText() const { return text; }

  // -1 if the text is empty. Otherwise the decimal number at its start, 0 if it starts with none.
  int ValueInt() const;

  // The number at the start of the text; 0 if there is none or the text is empty.
  float ValueFloat() const;

  // The name of a calculation parameter: "Trigger" for 1. A number that has none gives the general
  // word and itself: "Calculation parameter #43". Any id of the string table can be reached, as
  // number + 100.
  static CString GetCalcParamEnumText(int number);

  // The name of a value of a calculation parameter: "Minimum" for value 1 of number 0. Empty if the
  // calculation parameter has no list of values, or the value no name. There are names for values
  // behind the end of a list too.
  static CString GetCalcParamEnumSubText(int number, int value);

  // All names of calculation parameters, or of the values in the list of one, in the order of their
  // numbers; the result is how many. What has no name is shown as its number, "(7)". A calculation
  // parameter without a list of values gives the one entry "(0)".
  static unsigned GetCalcParamEnumTexts(std::list<CString>& texts);
  static unsigned GetCalcParamEnumSubTexts(int number, std::list<CString>& texts);

  static constexpr auto fields() { return List(At("text", &QVIpCalcParameter::text)); }
};
