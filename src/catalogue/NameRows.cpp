#include "catalogue/NameRows.h"

void QVClavisUserNames::Clavis(const QIdx5& from, QClavis& to) {
  constexpr int elements[] = {::Clavis::Instrument, ::Clavis::Channel, ::Clavis::Sensor,
                              ::Clavis::Location, ::Clavis::Parameter};
  for (int i = 0; i < 5; ++i) to[elements[i]] = from[i];
}
