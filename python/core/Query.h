// How a query of the handle becomes one of Python's.
//
// A query is declared by its name, the operation, and what each argument means. The rest follows
// from the operation's type: ids may be names or arrays of either, and arrays are broadcast as
// numpy does it; one of each gives one answer, arrays give an array of answers.
#pragma once

#include <array>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataBase.h"

namespace kestrin::python {

struct Argument {
  const char* name;
  IdKind kind = IdKind::none;  // of which ids have names
};

using Ids = py::array_t<long long, py::array::c_style | py::array::forcecast>;

// Ids of a kind: an id, a name, or a sequence or array of these. Throws TypeError, OverflowError or
// LookupError.
Ids ToIds(const DataBase& data, const Argument& argument, py::handle given, long long high);

// What Python gave for one argument of an operation, by the type that the operation takes.
struct Given {
  Ids ids;
  double number = 0;
  std::wstring text;
};

template <class T>
constexpr bool is_id = std::is_integral_v<T> && !std::is_same_v<T, bool>;
template <class T>
constexpr bool is_text = std::is_same_v<T, const wchar_t*>;
template <class T>
constexpr bool is_key = std::is_same_v<T, QClavis>;

// The six ids of a key, each of which may be a name.
Ids ToKey(const DataBase& data, py::handle given);

template <class T>
Given FromPython(const DataBase& data, const Argument& argument, py::handle given) {
  if constexpr (is_text<T>) return {{}, 0, ToWide(given)};
  if constexpr (is_key<T>) return {ToKey(data, given), 0, {}};
  if constexpr (is_id<T>) {
    constexpr bool is_signed = std::is_same_v<T, int>;
    constexpr long long high =
        is_signed ? std::numeric_limits<int>::max() : std::numeric_limits<unsigned>::max();
    return {ToIds(data, argument, given, high), 0, {}};
  }
  const double number = PyFloat_AsDouble(given.ptr());
  if (PyErr_Occurred() != nullptr) throw py::error_already_set();
  return {{}, number, {}};
}

template <class T>
T At(const Given& given, py::ssize_t row) {
  if constexpr (is_text<T>) {
    return given.text.c_str();
  } else if constexpr (is_key<T>) {
    QClavis key;
    for (int i = 0; i < Clavis::element_count; ++i) key[i] = static_cast<int>(given.ids.data()[i]);
    return key;
  } else if constexpr (is_id<T>) {
    return static_cast<T>(given.ids.data()[row]);
  } else {
    return static_cast<T>(given.number);
  }
}

// Brings the arguments that are ids to one shape, and gives it; nothing if each is one id.
std::optional<std::vector<py::ssize_t>> Broadcast(std::span<Ids* const> ids);

// Answers as Python has them: numbers, or texts.
template <class T>
py::object ToPython(const T& answer) {
  if constexpr (std::is_arithmetic_v<T>) {
    return py::cast(answer);
  } else if constexpr (std::is_same_v<T, std::optional<CString>>) {
    return answer ? py::object(ToStr(*answer)) : py::none();
  } else if constexpr (std::is_base_of_v<py::object, T>) {
    return answer;
  } else {
    return ToStr(answer);
  }
}

// An array of them.
template <class Answer, class Ask>
py::object ToPython(const std::vector<py::ssize_t>& shape, Ask ask) {
  if constexpr (std::is_arithmetic_v<Answer>) {
    py::array_t<Answer> answers(shape);
    auto* const places = answers.mutable_data();
    for (py::ssize_t row = 0; row < answers.size(); ++row) places[row] = ask(row);
    return answers;
  } else {
    py::array answers(py::dtype("O"), shape);
    auto* const places = static_cast<PyObject**>(answers.mutable_data());
    for (py::ssize_t row = 0; row < answers.size(); ++row) {
      places[row] = ToPython<std::decay_t<decltype(ask(row))>>(ask(row)).release().ptr();
    }
    return answers;
  }
}

// What the type stubs call an argument and an answer.
template <class T>
const char* TypeName() {
  if constexpr (is_key<T>) return "key";
  if constexpr (std::is_same_v<T, bool>) return "bool";
  if constexpr (std::is_same_v<T, float>) return "float";
  if constexpr (std::is_same_v<T, int>) return "int";
  if constexpr (std::is_integral_v<T>) return "unsigned";
  if constexpr (std::is_same_v<T, std::optional<CString>>) return "str | None";
  return "str";
}

// Adds queries to the class, and to a list from which the type stubs are made.
class QueryList {
 public:
  QueryList(DataBaseClass& type, py::list& list) : type_(type), list_(list) {}

  template <class R, class... A>
  void operator()(const char* name, R (CQtParamInstance::*ask)(A...) const,
                  const std::array<Argument, sizeof...(A)>& arguments, const char* doc) {
    Add<R, std::decay_t<A>...>([ask](DataBase& data, A... a) { return (data.params.*ask)(a...); },
                               name, arguments, doc, std::index_sequence_for<A...>());
  }
  template <class R, class... A>
  void operator()(const char* name, R (*ask)(A...),
                  const std::array<Argument, sizeof...(A)>& arguments, const char* doc) {
    Add<R, std::decay_t<A>...>([ask](DataBase&, A... a) { return ask(a...); }, name, arguments, doc,
                               std::index_sequence_for<A...>());
  }
  template <class R, class... A>
  void operator()(const char* name, R (*ask)(DataBase&, A...),
                  const std::array<Argument, sizeof...(A)>& arguments, const char* doc) {
    Add<R, std::decay_t<A>...>(ask, name, arguments, doc, std::index_sequence_for<A...>());
  }

 private:
  // A text is told from an id when the name is that of two queries.
  template <class T>
  using Object = std::conditional_t<is_text<T>, const py::str&, const py::object&>;

  template <class R, class... A, class Ask, std::size_t... i>
  void Add(Ask ask, const char* name, const std::array<Argument, sizeof...(A)>& arguments,
           const char* doc, std::index_sequence<i...>) {
    type_.def(
        name,
        [=](const std::shared_ptr<DataBase>& self, Object<A>... objects) -> py::object {
          DataBase& data = Made(self);
          if constexpr (sizeof...(A) == 0) {
            return ToPython(ask(data));
          } else {
            std::array<Given, sizeof...(A)> given{FromPython<A>(data, arguments[i], objects)...};
            std::vector<Ids*> ids;
            ((is_id<A> ? ids.push_back(&given[i].ids) : void()), ...);
            const auto one = [&](py::ssize_t row) { return ask(data, At<A>(given[i], row)...); };
            const auto shape = Broadcast(ids);
            return shape ? ToPython<std::decay_t<R>>(*shape, one) : ToPython(one(0));
          }
        },
        py::arg(arguments[i].name)..., DocOf(name, arguments, doc).c_str());
    py::list told;
    (told.append(py::make_tuple(arguments[i].name, TypeName<A>(),
                                HomeOfNames(arguments[i].kind).first != nullptr)),
     ...);
    list_.append(py::make_tuple(name, told, TypeName<std::decay_t<R>>()));
  }

  // With a first line that help() takes for the signature.
  std::string DocOf(const char* name, std::span<const Argument> arguments, const char* doc) const {
    std::string text = std::string(name) + "(self";
    for (const Argument& argument : arguments) text += std::string(", ") + argument.name;
    return text + (py::hasattr(type_, name) ? "): " : ")\n--\n\n") + doc;
  }

  DataBaseClass& type_;
  py::list& list_;
};

}  // namespace kestrin::python
