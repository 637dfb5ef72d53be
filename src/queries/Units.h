// The unit of an application signal, as its row in <TAppSignalProperty> tells it.
//
// A row gives its unit in one of two ways. A unit code that names a common unit stands for that
// unit, with the row's decimal prefix; the text then belongs to the code and is made from it each
// time that somebody is to see it, whatever stands there. With any other code the unit stands in
// the text alone.
#pragma once

#include <string>

#include "interfaces/signal/MeasuringUnit.h"

struct QVAppSignalProperty;

namespace Units {

// The dimensionless unit if the text is "----" or no unit.
CMeasuringUnit Of(const QVAppSignalProperty& row);

// Brings the row's text in line with its code and gives the text. Writes only if something changes:
// calls may run side by side, but not beside another reader of a text that does change.
std::wstring RefreshText(QVAppSignalProperty& row);

}  // namespace Units
