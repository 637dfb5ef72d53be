// Tables as numpy has them: a column of numbers is a view on the rows of the data base where these
// lie at equal distances, and a copy where they don't; texts are copied.
#include <cstring>
#include <memory>

#include "Query.h"

namespace kestrin::python {

namespace {

using TableCatalogue::RowsInfo;
using TableType::FieldKind;

// Where the values of one column stand, as a distance as long as that will do.
class Places {
 public:
  void Add(const void* place) {
    const auto* const at = static_cast<const char*>(place);
    if (count_ == 0) first_ = at;
    if (count_ == 1) stride_ = at - first_;
    if (IsEven() && at != first_ + stride_ * count_) {
      for (py::ssize_t row = 0; row < count_; ++row) all_.push_back(first_ + stride_ * row);
    }
    if (!IsEven()) all_.push_back(at);
    ++count_;
  }

  bool IsEven() const { return all_.empty(); }
  const char* First() const { return first_; }
  py::ssize_t Stride() const { return stride_; }
  py::ssize_t Count() const { return count_; }
  const char* At(py::ssize_t row) const {
    return IsEven() ? first_ + stride_ * row : all_[static_cast<std::size_t>(row)];
  }

 private:
  const char* first_ = nullptr;
  py::ssize_t stride_ = 0;
  py::ssize_t count_ = 0;
  std::vector<const char*> all_;  // of each row, once they lie at different distances
};

py::dtype TypeOf(FieldKind kind) {
  switch (kind) {
    case FieldKind::unsigned_int:
      return py::dtype::of<unsigned>();
    case FieldKind::long_long:
      return py::dtype::of<long long>();
    case FieldKind::real:
      return py::dtype::of<float>();
    case FieldKind::text:
    case FieldKind::key:  // no column is one
      return py::dtype("O");
    default:
      return py::dtype::of<int>();
  }
}

py::object AsView(py::array array) {
  array.attr("setflags")(py::arg("write") = false);
  return array;
}

const RowsInfo& Known(const std::string& section) {
  const RowsInfo* const info = TableCatalogue::FindRows(section);
  if (info == nullptr) Raise(PyExc_KeyError, "There is no table " + section);
  return *info;
}

// A table of a data base, which it keeps alive.
class Rows {
 public:
  Rows(std::shared_ptr<DataBase> data, const RowsInfo& info)
      : data_(std::move(data)), info_(info), columns_(info.columns.size()) {}

  py::ssize_t Size() const { return static_cast<py::ssize_t>(info_.row_count(data_->data)); }

  // `self` is the object that a view keeps alive.
  py::object Column(const py::object& self, std::size_t index) {
    const Places& places = PlacesOf(index);
    const FieldKind kind = info_.columns.at(index).kind;
    const py::dtype type = TypeOf(kind);
    const py::ssize_t count = places.Count();
    if (kind == FieldKind::text) {
      return ToPython<CString>({count}, [&](py::ssize_t row) {
        return std::wstring_view(reinterpret_cast<const wchar_t*>(places.At(row)));
      });
    }
    if (places.IsEven()) {
      return AsView(py::array(type, {count}, {places.Stride()}, places.First(), self));
    }
    py::array copy(type, std::vector<py::ssize_t>{count});
    auto* to = static_cast<char*>(copy.mutable_data());
    for (py::ssize_t row = 0; row < count; ++row, to += type.itemsize()) {
      std::memcpy(to, places.At(row), static_cast<std::size_t>(type.itemsize()));
    }
    return AsView(copy);
  }

  // All columns as one view, if all of them are numbers at one distance; None otherwise.
  py::object View(const py::object& self) {
    py::list names;
    py::list types;
    py::list offsets;
    const Places& first = PlacesOf(0);
    py::ssize_t end = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const Places& places = PlacesOf(i);
      const py::dtype type = TypeOf(info_.columns[i].kind);
      const py::ssize_t offset = places.First() - first.First();
      if (info_.columns[i].kind == FieldKind::text || !places.IsEven() || offset < end ||
          places.Stride() != first.Stride()) {
        return py::none();
      }
      end = offset + type.itemsize();
      names.append(info_.columns[i].name);
      types.append(type);
      offsets.append(offset);
    }
    if (first.Count() == 0) return py::none();
    return AsView(py::array(py::dtype(names, types, offsets, end), {first.Count()},
                            {first.Stride()}, first.First(), self));
  }

  // The names of a column's ids, empty where an id has none; None if such ids have no names.
  py::object Names(std::size_t index) {
    const auto [home, name_column] = HomeOfNames(info_.columns.at(index).id);
    if (home == nullptr) return py::none();
    std::map<int, py::str> names;
    home->walk(data_->data, [&, column = name_column](auto columns) {
      names.emplace(*static_cast<const int*>(columns[0].place),
                    ToStr(static_cast<const wchar_t*>(columns[column].place)));
    });
    const Places& places = PlacesOf(index);
    return ToPython<py::str>({places.Count()}, [&](py::ssize_t row) {
      const auto name = names.find(*reinterpret_cast<const int*>(places.At(row)));
      return name == names.end() ? py::str() : name->second;
    });
  }

  bool UniqueKeys() const { return info_.unique_loaded; }

 private:
  // Found by one walk over the rows, and anew if there are more of them since.
  const Places& PlacesOf(std::size_t index) {
    if (columns_.at(index).Count() != Size()) {
      columns_.assign(columns_.size(), {});
      info_.walk(data_->data, [this](auto columns) {
        for (std::size_t i = 0; i < columns.size(); ++i) columns_[i].Add(columns[i].place);
      });
    }
    return columns_[index];
  }

  std::shared_ptr<DataBase> data_;
  const RowsInfo& info_;
  std::vector<Places> columns_;
};

// Of each column its name, its type, whether it belongs to the key, and what its ids are.
py::list Columns(const std::string& section) {
  const RowsInfo& info = Known(section);
  py::list told;
  for (const auto& column : info.columns) {
    const bool is_id = column.id != IdKind::none;
    told.append(py::make_tuple(column.name, TypeOf(column.kind), py::len(told) < info.key_columns,
                               is_id ? TableCatalogue::HomeOf(column.id).what : ""));
  }
  return told;
}

}  // namespace

void AddRows(py::module_& module) {
  py::class_<Rows, std::shared_ptr<Rows>>(module, "Rows")
      .def(py::init([](const std::shared_ptr<DataBase>& data, const std::string& section) {
        Made(data);
        return std::make_shared<Rows>(data, Known(section));
      }))
      .def("__len__", Method(+[](const Rows& rows) { return rows.Size(); }))
      .def_property_readonly("unique_keys",
                             Method(+[](const Rows& rows) { return rows.UniqueKeys(); }))
      .def("_column",
           [](const py::object& self, std::size_t i) {
             return Made(self.cast<std::shared_ptr<Rows>>()).Column(self, i);
           })
      .def("_view",
           [](const py::object& self) {
             return Made(self.cast<std::shared_ptr<Rows>>()).View(self);
           })
      .def("_names", Method(+[](Rows& rows, std::size_t i) { return rows.Names(i); }));

  module.def("columns", &Columns);
  // The tables in the order of reading, then what a load derives.
  py::list sections;
  for (const auto& table : TableCatalogue::Tables()) sections.append(table.section);
  for (const auto& table : TableCatalogue::DerivedTables()) sections.append(table.section);
  module.attr("sections") = sections;
  module.def("hint", [](const std::string& section) {
    std::vector<std::wstring> known;
    for (const auto& table : TableCatalogue::Tables())
      known.push_back(Text::FromUtf8(table.section));
    return Hint(Text::FromUtf8(section), known);
  });
}

}  // namespace kestrin::python
