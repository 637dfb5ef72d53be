#include "DataBase.h"

#include <mutex>

namespace kestrin::python {

py::str ToStr(std::wstring_view text) { return {Text::ToUtf8(text)}; }

std::wstring ToWide(py::handle text) {
  const auto bytes = py::reinterpret_steal<py::bytes>(PyUnicode_AsUTF8String(text.ptr()));
  if (!bytes) throw py::error_already_set();
  std::wstring wide = Text::FromUtf8(std::string_view(bytes));
  if (wide.find(L'\0') != std::wstring::npos) Raise(PyExc_ValueError, "a text with a zero in it");
  return wide;
}

void Raise(PyObject* type, const std::string& sentence) {
  PyErr_SetString(type, sentence.c_str());
  throw py::error_already_set();
}

long long ToInteger(py::handle value, long long low, long long high, const char* what) {
  const auto integer = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (!integer) throw py::error_already_set();
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(integer.ptr(), &overflow);
  if (overflow != 0 || number < low || number > high) {
    Raise(PyExc_OverflowError,
          std::string(what) + ": " + std::string(py::str(integer)) + " is beyond 32 bits");
  }
  return number;
}

std::string Hint(const std::wstring& wrong, const std::vector<std::wstring>& known) {
  if (wrong.size() >= QIdxName::width) return "";  // no name is near one that no table can hold
  const auto nearest = Text::Nearest(wrong, known);
  return nearest ? " Did you mean '" + Text::ToUtf8(known[*nearest]) + "'?" : "";
}

namespace {

// The library loads from one lake of the process.
std::mutex& LakeMutex() {
  static std::mutex mutex;
  return mutex;
}

std::wstring RowOf(const LogSubject& subject) {
  if (subject.line) return std::wstring(Text::Trim(Text::FromBytes(*subject.line)));
  std::wstring key;
  for (const int id : subject.key) key += (key.empty() ? L"" : L" ") + std::to_wstring(id);
  return key;
}

}  // namespace

DataBase::DataBase(const py::bytes& content, const std::string& name) {
  const std::string_view bytes(content);
  const py::gil_scoped_release released;
  const std::scoped_lock lock(LakeMutex());
  const LogListener listener([this](std::wstring_view text, const LogSubject* subject) {
    LogLine& line = log.emplace_back();
    line.text = text;
    if (subject == nullptr) return;
    line.section = subject->section;
    line.row = RowOf(*subject);
  });
  CLake& lake = CParameterLake::Lake();
  struct Empty {
    CLake& lake;
    ~Empty() { lake.clear(); }
  } const empty{lake};
  ReadLake(lake, bytes, Text::FromUtf8(name));
  const Refusal& cut = lake.last_refusal();
  if (cut && cut.reason != Refusal::broken_text) throw Refused(cut);
  // Such a file is a data base as far as it goes.
  if (cut) log.push_back({{}, {}, cut.sentence});
  began = std::time(nullptr);
  if (!params.ReadTablesFromCandidateLake()) throw Refused(params.LastRefusal());
  time_signal = CQtParamDistillery::TimeSignalId();
}

std::pair<const TableCatalogue::RowsInfo*, std::size_t> HomeOfNames(IdKind kind) {
  const auto* const home = TableCatalogue::NamesOf(kind);
  if (home == nullptr) return {};
  return {home, *TableCatalogue::NameColumn(*home)};
}

const DataBase::Names& DataBase::NamesOf(IdKind kind, const TableCatalogue::RowsInfo& home,
                                         std::size_t column) const {
  const auto [place, is_new] = names_.try_emplace(kind);
  if (is_new) {
    home.walk(data, [&, &names = place->second](auto columns) {
      names.emplace(static_cast<const wchar_t*>(columns[column].place),
                    *static_cast<const int*>(columns[0].place));
    });
  }
  return place->second;
}

int DataBase::IdOf(IdKind kind, const std::wstring& name) const {
  const char* const what = kind == IdKind::none ? "number" : TableCatalogue::HomeOf(kind).what;
  const auto [home, column] = HomeOfNames(kind);
  if (home == nullptr) {
    Raise(PyExc_TypeError, std::string("a ") + what + " has no name here: give its id and not '" +
                               Text::ToUtf8(name) + "'");
  }
  const Names& names = NamesOf(kind, *home, column);
  const auto [first, last] = names.equal_range(name);
  if (first != last && std::next(first) == last) return first->second;
  std::string sentence = std::string("There is no ") + what + " '" + Text::ToUtf8(name) + "'.";
  if (first != last) {
    sentence = "The name '" + Text::ToUtf8(name) + "' belongs to several: ";
    for (auto id = first; id != last; ++id) {
      sentence += (id == first ? "" : ", ") + std::to_string(id->second);
    }
    sentence += '.';
  } else {
    std::vector<std::wstring> known;
    for (const auto& row : names) known.push_back(row.first);
    sentence += Hint(name, known);
  }
  Raise(PyExc_LookupError, sentence);
}

}  // namespace kestrin::python
