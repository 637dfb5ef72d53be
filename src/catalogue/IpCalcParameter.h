// The calculation parameters of instrument parameters: numbered settings that are all stored as
// text. Whoever reads a value decides whether it is a number, a float or a text.
#pragma once

#include <list>
#include <string>

#include "interfaces/Export.h"
#include "interfaces/Text.h"
#include "tables/RowRecords.h"

struct KESTRIN_API QVIpCalcParameter : QValueBase {
  // Numbers of calculation parameters that have a meaning inside this data base.
  enum number_t : int {
    trigger = 1,
    interpretation = 2,
    definition = 3,
    base_order_reference = 4,
  };

  static constexpr unsigned s_version = 1;
  static constexpr unsigned NumEnums = 6;  // calculation parameters with a list of values

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

  std::tuple<wchar_t*> tuple() { return {text}; }
  std::tuple<const wchar_t*> tuple() const { return {text}; }
};
