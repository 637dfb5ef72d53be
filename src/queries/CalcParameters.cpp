// The values of calculation parameters.

#include <cwchar>

#include "catalogue/IpCalcParameter.h"
#include "interfaces/Number.h"
#include "tables/RowText.h"

QVIpCalcParameter::QVIpCalcParameter(const QVIpCalcParameter& other) : QValueBase(other) {
  TableType::strcopy(text, other.text, TableType::text_width);
}

QVIpCalcParameter& QVIpCalcParameter::operator=(const QVIpCalcParameter& other) {
  TableType::strcopy(text, other.text, TableType::text_width);
  return *this;
}

int QVIpCalcParameter::ValueInt() const {
  if (text[0] == L'\0') return -1;
  return Number::ScanInt(text).value;
}

float QVIpCalcParameter::ValueFloat() const {
  return Number::ToFloat(Number::ScanDouble(text).value);
}
