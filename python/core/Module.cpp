// The compiled part of the package kestrindb.
#include "DataBase.h"

PYBIND11_MODULE(_core, module) {
  using namespace kestrin;
  using namespace kestrin::python;
  module.attr("__version__") = LibraryVersion();
  auto& refused = py::register_exception<Refused>(module, "Refused", PyExc_ValueError);
  refused.attr("__module__") = "kestrindb";
  refused.attr("__doc__") = "A file that is no data base, and why.";
  module.def(
      "set_language", [](const std::string& tag) { return SetUserLanguage(tag).tag; },
      py::arg("tag"));
  module.def(
      "set_language", [](int id) { return SetUserLanguage(id).tag; }, py::arg("id"));
  DataBaseClass type(module, "Database");
  type.def(py::init<const py::bytes&, const std::string&>());
  AddQueries(module, type);
  AddRows(module);
  AddEvaluation(module, type);
}
