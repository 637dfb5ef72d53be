#include "interfaces/signal/Clavis.h"

namespace Clavis {

const wchar_t* ElementName(qOrder element, unsigned int form) {
  struct Words {
    const wchar_t* in_text;
    const wchar_t* heading;
  };
  static constexpr Words words[element_count] = {
      {L"test step", L"Test step"}, {L"instrument", L"Instrument"}, {L"channel", L"Channel"},
      {L"object", L"Object"},       {L"parameter", L"Parameter"},   {L"sensor", L"Sensor"},
  };
  if (element < 0 || element >= element_count) return L"";
  if (form == 1) return words[element].in_text;
  if (form == 2) return words[element].heading;
  return L"";
}

}  // namespace Clavis
