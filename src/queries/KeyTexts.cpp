// Keys as people read them: all elements in a row, or four fields in which the tables have been
// asked what can be left out.
//
// Lists show thousands of keys, and a text is made for each: the names are collected as views into
// the tables first, so that the text is allocated once, in the size that it needs.

#include <algorithm>
#include <array>
#include <cassert>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Number.h"

using namespace kestrin;

namespace {

using std::wstring_view;
using ShowId = CQtParamInstance::show_id_t;

constexpr wstring_view no_value = L"(Nil)";
constexpr wstring_view element_separator = L" / ";
constexpr std::size_t nice_limit = 499;

wstring_view ElementText(const CQtParamInstance& params, int element, int id) {
  return id == -1 ? no_value : params.ClavisElementName(element, id);
}

bool ShowsId(ShowId show, wstring_view name) {
  assert(show >= CQtParamInstance::show_id_never && show <= CQtParamInstance::show_id_if_no_name);
  return show == CQtParamInstance::show_id_always ||
         (show == CQtParamInstance::show_id_if_no_name && name.empty());
}

void AppendId(std::wstring& text, int id) {
  text += L'[';
  Number::Append(text, static_cast<long long>(id));
  text += L']';
}

std::wstring ClavisText(const CQtParamInstance& params, const int* ids, ShowId show,
                        CQtParamInstance::ElementMask mask) {
  constexpr std::size_t longest_id = wstring_view(L" [-2147483648]").size();
  std::array<wstring_view, Clavis::element_count> names;
  std::size_t length = 0;
  for (int i = 0; i < Clavis::element_count; ++i) {
    const auto element = static_cast<std::size_t>(i);
    if (!mask[element]) continue;
    names[element] = ElementText(params, i, ids[i]);
    length += names[element].size() + longest_id + element_separator.size();
  }
  std::wstring text;
  text.reserve(length);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!mask[i]) continue;
    if (!text.empty()) text += element_separator;
    text += names[i];
    if (!ShowsId(show, names[i])) continue;
    if (!names[i].empty()) text += L' ';
    AppendId(text, ids[i]);
  }
  return text;
}

ShowId ShowIdAsInDialogs() {
  return CQtParamInstance::ShowIdsInDialogs() ? CQtParamInstance::show_id_always
                                              : CQtParamInstance::show_id_if_no_name;
}

// A text that takes what fits and drops the rest.
class BoundedText {
 public:
  BoundedText() { text_.reserve(nice_limit); }
  BoundedText& operator<<(wstring_view part) {
    text_ += part.substr(0, nice_limit - text_.size());
    return *this;
  }
  std::wstring Take() { return std::move(text_); }

 private:
  std::wstring text_;
};

std::wstring NiceText(const CQtParamInstance& params, const int* ids, const wchar_t* separator) {
  const wstring_view between = separator != nullptr ? separator : L"";
  CString field;
  BoundedText text;
  const auto separate = [&] { text << L" " << between << L" "; };
  text << ElementText(params, Clavis::Mode, ids[Clavis::Mode]);
  separate();
  text << params.FormatInstrParamText(field, ids[Clavis::Instrument], ids[Clavis::Parameter]);
  separate();
  text << params.FormatLocaChanText(field, ids[Clavis::Location], ids[Clavis::Channel]);
  separate();
  text << ElementText(params, Clavis::Sensor, ids[Clavis::Sensor]);
  return text.Take();
}

// Whether at least two rows fit.
template <class Table, class Fits>
bool HasTwo(const Table& table, Fits fits) {
  const auto row_fits = [&](const auto& row) { return fits(row.second); };
  const auto first = std::find_if(table.begin(), table.end(), row_fits);
  return first != table.end() && std::find_if(first + 1, table.end(), row_fits) != table.end();
}

const wchar_t* Assign(CString& text, std::initializer_list<wstring_view> parts) {
  text.clear();
  for (const wstring_view part : parts) text += part;
  return text.c_str();
}

// Whether the object is shown for a channel that is the only one of its kind, and not the channel.
bool ObjectStandsForChannel(const CQtParamInstance& params, int location) {
  constexpr int stands_for_channel = 4;
  const auto row = params.LocationProperty().find(location);
  return row == params.LocationProperty().end() || (row->second.flags & stands_for_channel) != 0;
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
  const wchar_t* instrument_name = InstrumentName(instrument);
  if (!parameter_matters) return Assign(text, {instrument_name});
  return Assign(text, {instrument_name, L" ", InstrumentParamName(parameter)});
}

const wchar_t* CQtParamInstance::FormatInstrParamText(CString& text, const QClavis& key) const {
  return FormatInstrParamText(text, key[Clavis::Instrument], key[Clavis::Parameter]);
}

const wchar_t* CQtParamInstance::FormatLocaChanText(CString& text, int location,
                                                    int channel) const {
  constexpr unsigned mix = 2;
  constexpr unsigned fix = 4;
  const unsigned type = ChannelResamplingType(channel);
  const bool has_rivals = HasTwo(
      ChannelProperty(), [&](const QVChannelProperty& row) { return row.resampling_type == type; });
  const wchar_t* location_name = LocationName(location);
  const wchar_t* channel_name = ChannelName(channel);
  if (type == 0 || (type & fix) != 0) {
    if (has_rivals) return Assign(text, {location_name, L" (", channel_name, L")"});
    return Assign(text, {ObjectStandsForChannel(*this, location) ? location_name : channel_name});
  }
  if ((type & mix) != 0) {
    if (has_rivals) return Assign(text, {channel_name, L" (", location_name, L")"});
    return Assign(text, {channel_name});
  }
  return Assign(text, {location_name, L" ", channel_name});
}

const wchar_t* CQtParamInstance::FormatLocaChanText(CString& text, const QClavis& key) const {
  return FormatLocaChanText(text, key[Clavis::Location], key[Clavis::Channel]);
}
