// The unit of an application signal, as its row in <TAppSignalProperty> tells it.
//
// A row gives its unit in one of two ways. A unit code that names a common unit stands for that
// unit, with the row's decimal prefix, and what the row says in its text is out of date: the text
// belongs to the code and is made from it. With any other code the unit stands in the text alone.
#pragma once

#include <string>

#include "interfaces/signal/MeasuringUnit.h"

class CQtParamStore;
struct QVAppSignalProperty;

namespace Units {

// The dimensionless unit if the text is "----" or no unit.
CMeasuringUnit Of(const QVAppSignalProperty& row);

// The text as people are to see it. A text that the row tells itself comes back as it stands.
std::wstring TextOf(const QVAppSignalProperty& row);

// Brings the row's text in line with its code. Writes only if something changes; calls may run
// side by side, but not beside a reader of a text that does change.
void RefreshText(QVAppSignalProperty& row);

// The same for every signal that gives virtual modes their names.
void RefreshTextsOfAutoModes(CQtParamStore& store);

}  // namespace Units
