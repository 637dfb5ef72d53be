// A data base for Python, and what its ids are called.
//
// All of this runs under the interpreter's lock, but for the load. So a query that writes a unit's
// text, or a name for a virtual test step, never runs beside one that reads it.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <ctime>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lKestrinDb.h"

namespace kestrin::python {

namespace py = pybind11;
using TableCatalogue::IdKind;

// Why a file was not accepted.
class Refused : public std::runtime_error {
 public:
  explicit Refused(const Refusal& refusal) : std::runtime_error(Text::ToUtf8(refusal.sentence)) {}
};

// Between Python's texts and wide ones. A text with a zero, which would end there, is a ValueError.
py::str ToStr(std::wstring_view text);
std::wstring ToWide(py::handle text);

// Sets an exception of Python's and throws it.
[[noreturn]] void Raise(PyObject* type, const std::string& sentence);

// A whole number within the bounds; TypeError and OverflowError name what it should be.
long long ToInteger(py::handle value, long long low, long long high, const char* what);

// " Did you mean 'X'?" with the known text nearest to a wrong one; empty if none is near.
std::string Hint(const std::wstring& wrong, const std::vector<std::wstring>& known);

struct LogLine {
  std::wstring section;  // empty where the line is about none
  std::wstring row;      // as it was being read, or its key
  std::wstring text;
};

// A file's content loaded, with the interpreter's lock released. Throws Refused.
class DataBase {
 public:
  DataBase(const py::bytes& content, const std::string& name);

  // The id that a name stands for. LookupError for a name that isn't there, with the nearest one,
  // or that belongs to several; TypeError for a kind that has no names.
  int IdOf(IdKind kind, const std::wstring& name) const;

  // Names are looked up anew after a test step has got one.
  void ForgetNames() const { names_.clear(); }

  CQtParamDistillery data;
  CQtParamInstance params{&data};
  std::vector<LogLine> log;
  int time_signal = -1;   // the library keeps only that of the last load
  std::time_t began = 0;  // when the load began

 private:
  using Names = std::multimap<std::wstring, int>;
  const Names& NamesOf(IdKind kind, const TableCatalogue::RowsInfo& home, std::size_t column) const;

  mutable std::map<IdKind, Names> names_;  // of each kind, made when a name is asked for
};

// The table whose rows name the ids of a kind, and the column of the names; null if none does.
std::pair<const TableCatalogue::RowsInfo*, std::size_t> HomeOfNames(IdKind kind);

using DataBaseClass = py::class_<DataBase, std::shared_ptr<DataBase>>;

// The object behind one of Python's. Python can make one without its __init__, as copy.copy does,
// and hand None to a method: both are exceptions where an object is taken by its holder.
template <class T>
T& Made(const std::shared_ptr<T>& object) {
  if (object == nullptr) Raise(PyExc_TypeError, "None is no object of this class");
  return *object;
}

// A method of a function whose first argument is the object.
template <class R, class T, class... A>
auto Method(R (*function)(T&, A...)) {
  return [function](const std::shared_ptr<std::remove_const_t<T>>& self, A... a) {
    return function(Made(self), std::forward<A>(a)...);
  };
}

// The parts of the module.
void AddQueries(py::module_& module, DataBaseClass& type);  // Queries.cpp
void AddRows(py::module_& module);
void AddEvaluation(py::module_& module, DataBaseClass& type);

}  // namespace kestrin::python
