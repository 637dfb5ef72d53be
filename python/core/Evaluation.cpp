// Answers that are rows, and the inspection of files: as plain tuples, to which the package's
// Python gives their names.
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <variant>

#include "DataBase.h"

namespace kestrin::python {

namespace {

using Bound = QVSpecIntervalEntry::Definition;
using TableCatalogue::RowsInfo;

constexpr unsigned most_positions = CQtSpecIntervalStore::max_orders;

const char* Name(QVSpecIntervalEntry::domain_t domain) {
  constexpr const char* names[] = {"none", "frequency", "order", "mixed"};
  return names[domain];
}

const char* Name(CQtSpecInterval::index_range_result_t result) {
  constexpr const char* names[] = {"ok", "beyond spectrum", "no base order", "no ratio", "invalid"};
  return names[result];
}

// Characters as Python counts them, in front of a place in a wide text.
std::size_t CharactersTo(const std::wstring& text, std::size_t place) {
  return py::len(ToStr(std::wstring_view(text).substr(0, place)));
}

// (error or None, positions, what was passed over, positions dropped)
py::tuple Order(const py::str& definition) {
  const std::wstring text = ToWide(definition);
  std::vector<Bound> positions(most_positions);
  const auto [count, error] =
      OrderInterpreter::Interpret(text.c_str(), positions.data(), most_positions);
  py::list told;
  py::list unread;
  if (error.reason != OrderInterpreter::Reason::none) {
    const std::wstring letter(error.letter == L'\0' ? 0 : 1, error.letter);
    const py::tuple where =
        py::make_tuple(error.position, ToStr(letter), CharactersTo(text, error.offset),
                       ToStr(OrderInterpreter::ReasonText(error.reason)));
    return py::make_tuple(where, told, unread, 0);
  }
  positions.resize(count);
  for (const Bound& position : positions) {
    told.append(py::make_tuple(position.frequency(), position.order(), position.harmonic(),
                               position.modulation(), position.lines(), Name(position.domain())));
  }
  const auto passed_over = OrderInterpreter::FindPassedOver(text.c_str(), most_positions);
  for (const auto& [offset, length] : passed_over.unread) {
    unread.append(py::make_tuple(CharactersTo(text, offset), ToStr(text.substr(offset, length))));
  }
  return py::make_tuple(py::none(), told, unread, passed_over.dropped);
}

py::list Check(const py::bytes& content, const std::string& name, bool references,
               std::size_t most_of_a_kind) {
  std::vector<ParameterCheck::Finding> findings;
  {
    const std::string_view bytes(content);
    const py::gil_scoped_release released;
    CLake lake;
    ReadLake(lake, bytes, Text::FromUtf8(name));
    findings = ParameterCheck::Check(lake, bytes, {references, most_of_a_kind});
  }
  py::list told;
  for (const auto& f : findings) {
    told.append(py::make_tuple(f.line, f.column, ParameterCheck::Name(f.severity),
                               ParameterCheck::Name(f.kind), f.section, f.field, f.position,
                               f.message, f.other_line, f.further));
  }
  return told;
}

py::object ToPython(const TableType::FieldView& column) {
  return std::visit([](const auto& value) -> py::object { return py::cast(value); },
                    TableCatalogue::ValueOf(column));
}

// (section, key, before or None, after or None): of a changed row the fields that differ.
py::list Diff(const DataBase& before, const std::shared_ptr<DataBase>& other) {
  const DataBase& after = Made(other);
  py::list changes;
  const auto tell = [&changes](const RowsInfo& info, Difference::Columns a, Difference::Columns b) {
    const auto fields = [&](Difference::Columns row, bool key) -> py::object {
      if (row.empty()) return py::none();
      py::dict told;
      for (std::size_t i = key ? 0 : info.key_columns;
           i < (key ? info.key_columns : info.columns.size()); ++i) {
        const bool is_told = key || a.empty() || b.empty() || !Difference::IsSame(a[i], b[i]);
        if (is_told) told[py::str(info.columns[i].name)] = ToPython(row[i]);
      }
      return told;
    };
    changes.append(py::make_tuple(info.section, fields(a.empty() ? b : a, true), fields(a, false),
                                  fields(b, false)));
  };
  Difference::Compare(before.data, after.data, tell, std::min(before.began, after.began));
  return changes;
}

// An interval for an assembly: (unit, low, high, first line, last line, result).
py::tuple Interval(const CQtSpecInterval& evaluation, const QVSpecIntervalEntry& entry,
                   unsigned lines, float resolution_orders, float resolution_hz,
                   float order_scale) {
  const bool of_orders = entry.domain() == QVSpecIntervalEntry::domain_order;
  const float resolution = of_orders ? resolution_orders : resolution_hz;
  // Without a resolution lines have no place on the axis.
  const bool counts_lines = entry.lower().lines() != 0 || entry.upper().lines() != 0;
  float low = NAN;
  float high = NAN;
  if (resolution > 0 || !counts_lines) {
    evaluation.FrequencyRange(entry, resolution, order_scale, low, high);
  }
  CQtSpecInterval::IndexInterval range;
  const auto result = evaluation.IndexRange(entry, range, lines, resolution, order_scale);
  const bool ok = result == CQtSpecInterval::index_range_ok;
  const auto line = [ok](unsigned number) { return ok ? static_cast<long long>(number) : -1; };
  return py::make_tuple(of_orders ? "orders" : "Hz", ok ? range.start_frequency : low,
                        ok ? range.stop_frequency : high, line(range.start_index),
                        line(range.stop_index), !(resolution > 0) ? "no resolution" : Name(result));
}

// Those of a parameter, or of a definition that is given in its place.
py::list Intervals(const DataBase& data, const py::object& of, int mode, int speed_source,
                   int assembly, unsigned lines, float resolution_orders, float resolution_hz,
                   float order_scale) {
  std::vector<QVSpecIntervalEntry> entries;
  if (py::isinstance<py::str>(of)) {
    std::vector<Bound> positions(most_positions);
    const auto read =
        OrderInterpreter::Interpret(ToWide(of).c_str(), positions.data(), most_positions);
    if (read.count == 1) positions[1] = positions[0];
    const unsigned count = OrderInterpreter::IntervalCount(read.count);
    for (unsigned i = 0; i < 2 * count; i += 2)
      entries.emplace_back(positions[i], positions[i + 1]);
  } else {
    const auto [first, last] = data.params.SpecIntervalRange(of.cast<unsigned>());
    for (auto row = first; row != last; ++row) entries.push_back(row->second);
  }
  CQtSpecInterval evaluation(data.params);
  evaluation.LoadTransformParams(mode, speed_source, assembly);
  py::list told;
  for (const auto& entry : entries) {
    told.append(Interval(evaluation, entry, lines, resolution_orders, resolution_hz, order_scale));
  }
  return told;
}

// (physical mode, speed source, rotor, number, order source) of those that a channel sees.
py::list OrderSources(const DataBase& data, int mode, int channel, int rotor) {
  py::list told;
  const auto [first, last] = data.params.OrderSourceRange(mode, channel, rotor);
  for (auto row = first; row != last; ++row) {
    const auto& [key, source] = *row;
    told.append(py::make_tuple(key[0], key[1], key[2], key[3], source.ref));
  }
  return told;
}

// ---- triggers -----------------------------------------------------------------------------

using Triggers = CTriggerStore;
using Cell = std::array<int, Triggers::dimensions_d>;

// The indexes of a cell in one number; of each the lower 16 bits count.
std::int64_t Packed(const Cell& indexes) {
  std::uint64_t cell = 0;
  for (std::size_t dim = indexes.size(); dim-- > 0;) {
    cell = cell << 16U | (static_cast<unsigned>(indexes[dim]) & 0xFFFFU);
  }
  return static_cast<std::int64_t>(cell);
}

// (dimension, low, high, step, cells, raising)
py::list Axes(const DataBase& data, int mode, int trigger) {
  py::list axes;
  const Triggers store(data.params);
  for (unsigned dim = 0; dim < Triggers::dimensions_d; ++dim) {
    Triggers::CInterval axis;
    if (!store.field(mode, trigger, dim, axis)) continue;
    axes.append(
        py::make_tuple(dim, axis.start(), axis.stop(), axis.step(), axis.len(), axis.raising()));
  }
  return axes;
}

// The indexes of the cell of values, NaN for a dimension without one; () for none.
py::tuple CellOf(const DataBase& data, int mode, int trigger,
                 const std::map<unsigned, float>& values, bool clamp) {
  Triggers::CDimensions dimensions;
  for (const auto& [dim, value] : values) {
    if (dim >= Triggers::dimensions_d) Raise(PyExc_ValueError, "dimensions are 0 to 3");
    dimensions.value[dim] = value;
    dimensions.is_set.set(dim);
  }
  Triggers::CIntervals axes;
  std::int64_t cell = 0;
  const bool found = Triggers(data.params).field(mode, trigger, axes) &&
                     Triggers::cell(axes, dimensions, cell, clamp);
  if (!found) return py::tuple();
  const auto index = [cell](unsigned dim) {
    return static_cast<std::uint16_t>(cell >> (16 * dim));
  };
  return py::make_tuple(index(0), index(1), index(2), index(3));
}

// The middle of a cell, or where an offset isn't 0 the lower edge of the cell so many away, by
// dimensions; those of the table's axes alone.
py::dict PlacesOf(const DataBase& data, int mode, int trigger, const Cell& cell,
                  const Cell& offset) {
  Triggers::CDimensions places;
  py::dict told;
  if (!Triggers(data.params).position(mode, trigger, Packed(cell), Packed(offset), places)) {
    return told;
  }
  for (unsigned dim = 0; dim < Triggers::dimensions_d; ++dim) {
    if (places.is_set[dim]) told[py::int_(dim)] = places.value[dim];
  }
  return told;
}

}  // namespace

void AddEvaluation(py::module_& module, DataBaseClass& type) {
  module.def("order", &Order);
  module.def("check", &Check);
  type.def("_diff", Method(&Diff))
      .def("_intervals", Method(&Intervals))
      .def("_order_sources", Method(&OrderSources))
      .def("_axes", Method(&Axes))
      .def("_cell", Method(&CellOf))
      .def("_places", Method(&PlacesOf))
      .def("_extension", Method(+[](const DataBase& data, const std::vector<int>& bands) {
             return data.params.VirtModeExtension(bands.data());
           }))
      .def("_log", Method(+[](const DataBase& data) {
             py::list lines;
             for (const LogLine& line : data.log) {
               lines.append(py::make_tuple(ToStr(line.section), ToStr(line.row), ToStr(line.text)));
             }
             return lines;
           }));
}

}  // namespace kestrin::python
