// Keys as people read them: all elements in a row, or four fields in which the tables have been
// asked what can be left out.

#include <algorithm>
#include <cassert>
#include <string_view>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Number.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

using namespace std::string_view_literals;
using ShowId = CQtParamInstance::show_id_t;

constexpr std::size_t nice_limit = 499;
constexpr std::size_t usual_length = 200;  // lists show thousands of keys

std::wstring_view ElementText(const CQtParamInstance& params, int element, int id) {
  return id == -1 ? L"(Nil)"sv : params.ClavisElementName(element, id);
}

bool ShowsId(ShowId show, std::wstring_view name) {
  assert(show >= CQtParamInstance::show_id_never && show <= CQtParamInstance::show_id_if_no_name);
  return show == CQtParamInstance::show_id_always ||
         (show == CQtParamInstance::show_id_if_no_name && name.empty());
}

std::wstring ClavisText(const CQtParamInstance& params, const int* ids, ShowId show,
                        CQtParamInstance::ElementMask mask) {
  std::wstring text;
  text.reserve(usual_length);
  for (int i = 0; i < Clavis::element_count; ++i) {
    if (!mask[static_cast<std::size_t>(i)]) continue;
    if (!text.empty()) text += L" / "sv;
    const std::wstring_view name = ElementText(params, i, ids[i]);
    text += name;
    if (!ShowsId(show, name)) continue;
    text += name.empty() ? L"["sv : L" ["sv;
    Number::Append(text, ids[i]);
    text += L']';
  }
  return text;
}

ShowId ShowIdAsInDialogs() {
  return CQtParamInstance::ShowIdsInDialogs() ? CQtParamInstance::show_id_always
                                              : CQtParamInstance::show_id_if_no_name;
}

std::wstring NiceText(const CQtParamInstance& params, const int* ids, const wchar_t* separator) {
  const std::wstring between = std::wstring(L" ") + (separator ? separator : L"") + L" ";
  CString field;
  std::wstring text;
  text.reserve(usual_length);
  text += ElementText(params, Clavis::Mode, ids[Clavis::Mode]);
  text += between;
  text += params.FormatInstrParamText(field, ids[Clavis::Instrument], ids[Clavis::Parameter]);
  text += between;
  text += params.FormatLocaChanText(field, ids[Clavis::Location], ids[Clavis::Channel]);
  text += between;
  text += ElementText(params, Clavis::Sensor, ids[Clavis::Sensor]);
  if (text.size() > nice_limit) text.resize(nice_limit);
  return text;
}

// Whether at least two rows fit.
template <class Table, class Fits>
bool HasTwo(const Table& table, Fits fits) {
  const auto row_fits = [&](const auto& row) { return fits(row.second); };
  const auto first = std::find_if(table.begin(), table.end(), row_fits);
  return first != table.end() && std::find_if(first + 1, table.end(), row_fits) != table.end();
}

// Whether the object is shown for a channel that is the only one of its kind, and not the channel.
bool ObjectStandsForChannel(const CQtParamInstance& params, int location) {
  constexpr int stands_for_channel = 4;
  return (FieldOr(params.LocationProperty(), location, &QVLocationProperty::flags,
                  stands_for_channel) &
          stands_for_channel) != 0;
}

}  // namespace

CString CQtParamInstance::FormatClavisText(const CClavis& key, show_id_t show,
                                           ElementMask mask) const {
  return ClavisText(*this, key.Base().id, show, mask);
}

CString CQtParamInstance::FormatClavisText(const QClavis& key, show_id_t show,
                                           ElementMask mask) const {
  return ClavisText(*this, key.id, show, mask);
}

CString CQtParamInstance::FormatClavisText(const CClavis& key, ElementMask mask) const {
  return FormatClavisText(key, ShowIdAsInDialogs(), mask);
}

CString CQtParamInstance::FormatClavisText(const QClavis& key, ElementMask mask) const {
  return FormatClavisText(key, ShowIdAsInDialogs(), mask);
}

CString CQtParamInstance::FormatClavisTextNice(const CClavis& key, const wchar_t* separator) const {
  return NiceText(*this, key.Base().id, separator);
}

CString CQtParamInstance::FormatClavisTextNice(const QClavis& key, const wchar_t* separator) const {
  return NiceText(*this, key.id, separator);
}

const wchar_t* CQtParamInstance::FormatInstrParamText(CString& text, int instrument,
                                                      int parameter) const {
  if (instrument == -1) instrument = InstrumentParameterToInstrument(parameter);
  const bool parameter_matters = HasTwo(InstrumentParam(), [&](const QVInstrumentParam& row) {
    return row.instrument == instrument;
  });
  text = InstrumentName(instrument);
  if (parameter_matters) text.append(L" "sv).append(InstrumentParamName(parameter));
  return text.c_str();
}

const wchar_t* CQtParamInstance::FormatInstrParamText(CString& text, const QClavis& key) const {
  return FormatInstrParamText(text, key[Clavis::Instrument], key[Clavis::Parameter]);
}

const wchar_t* CQtParamInstance::FormatLocaChanText(CString& text, int location,
                                                    int channel) const {
  const unsigned type = ChannelResamplingType(channel);
  const bool has_rivals = HasTwo(
      ChannelProperty(), [&](const QVChannelProperty& row) { return row.resampling_type == type; });
  const wchar_t* const location_name = LocationName(location);
  const wchar_t* const channel_name = ChannelName(channel);
  if (type == 0 || (type & channel_fix) != 0) {
    text = has_rivals || ObjectStandsForChannel(*this, location) ? location_name : channel_name;
    if (has_rivals) text.append(L" ("sv).append(channel_name).append(L")"sv);
  } else if ((type & channel_mix) != 0) {
    text = channel_name;
    if (has_rivals) text.append(L" ("sv).append(location_name).append(L")"sv);
  } else {
    text.assign(location_name).append(L" "sv).append(channel_name);
  }
  return text.c_str();
}

const wchar_t* CQtParamInstance::FormatLocaChanText(CString& text, const QClavis& key) const {
  return FormatLocaChanText(text, key[Clavis::Location], key[Clavis::Channel]);
}
