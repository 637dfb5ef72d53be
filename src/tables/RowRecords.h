// How a record tells its fields, and what is derived from that.
//
// A row record lists its fields once, each with its name and its member, in the order of the row's
// text. The kind of a field follows from the member's type, but for the kind long: its members are
// plain ints, since it has 32 bits on every platform, and the list says so.
//
//   struct QVTrigger : QValueBase, TableType::Fields<QVTrigger> {
//     wchar_t name[TableType::text_width] = {};
//     int second = 0;
//     static constexpr auto fields() {
//       return List(At("name", &QVTrigger::name), At("second", &QVTrigger::second));
//     }
//   };
//
// The mixin makes tuple() from it: a std::tuple of references to the fields, a text as a pointer to
// its buffer, and constant ones from a constant record. Key records give a tuple() of their own and
// no list. Reading, writing, dumping and describing a record (RowText.h, TableCatalogue.h) see its
// fields as kinds and places alone, so that one piece of code serves every record.
#pragma once

#include <array>
#include <cstddef>
#include <cwchar>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "keys/IndexRecords.h"

namespace TableType {

// Width of a text field in wide characters, the terminator included.
inline constexpr int text_width = QIdxName::width;

// The text in a record's buffer, which ends with the buffer if a host has left no zero in it.
template <std::size_t n>
std::wstring_view TextIn(const wchar_t (&buffer)[n]) {
  return {buffer, wcsnlen(buffer, n)};
}

enum class FieldKind { integer, unsigned_int, long_int, long_long, real, text, key };

// One field of a record at hand: its kind and where it stands.
template <class Place>
struct BasicFieldRef {
  FieldKind kind;
  Place place;
};
using FieldRef = BasicFieldRef<void*>;         // for reading a row's text into the record
using FieldView = BasicFieldRef<const void*>;  // for writing the record as text

template <class T>
constexpr FieldKind KindOf() {
  using Plain = std::remove_cv_t<T>;
  static_assert(!std::is_same_v<Plain, long>,
                "a field of kind long is an int, and the record's list of fields says long_int");
  if constexpr (std::is_same_v<Plain, int>) return FieldKind::integer;
  if constexpr (std::is_same_v<Plain, unsigned>) return FieldKind::unsigned_int;
  if constexpr (std::is_same_v<Plain, long long>) return FieldKind::long_long;
  if constexpr (std::is_same_v<Plain, float>) return FieldKind::real;
  if constexpr (std::is_same_v<Plain, QClavis>) return FieldKind::key;
  if constexpr (std::is_same_v<std::remove_cv_t<std::remove_pointer_t<std::decay_t<T>>>, wchar_t>) {
    return FieldKind::text;
  }
}

// A field as a record declares it. The note, if there is one, tells people of a default that isn't
// a fixed value.
template <class Record, class T>
struct Field {
  const char* name;
  T Record::*member;
  FieldKind kind = KindOf<T>();
  const char* default_note = nullptr;

  constexpr Field(const char* field_name, T Record::*field_member)
      : name(field_name), member(field_member) {}
  constexpr Field(const char* field_name, T Record::*field_member, FieldKind field_kind)
      : name(field_name), member(field_member), kind(field_kind) {}
  constexpr Field(const char* field_name, T Record::*field_member, const char* note)
      : name(field_name), member(field_member), default_note(note) {}
};

// The fields of a record in order, by its list or else by its tuple().
template <class Record>
auto Refs(Record& record) {
  using Ref = std::conditional_t<std::is_const_v<Record>, FieldView, FieldRef>;
  if constexpr (requires { Record::fields(); }) {
    return std::apply(
        [&record](const auto&... field) {
          return std::array{Ref{field.kind, &(record.*field.member)}...};
        },
        Record::fields());
  } else {
    const auto ref = []<class T>(T& field) {
      if constexpr (std::is_pointer_v<T>) {
        return Ref{KindOf<T>(), field};
      } else {
        return Ref{KindOf<T>(), &field};
      }
    };
    const auto tuple = record.tuple();
    return std::apply([&](auto&... field) { return std::array{ref(field)...}; }, tuple);
  }
}

// Those of a row's key and then those of its value.
template <class Key, class Value>
auto Refs(Key& key, Value& value) {
  return std::apply([](auto... field) { return std::array{field...}; },
                    std::tuple_cat(Refs(key), Refs(value)));
}

// Gives a record its tuple() from its fields().
template <class Record>
class Fields {
 public:
  auto tuple() { return Tie(static_cast<Record&>(*this)); }
  auto tuple() const { return Tie(static_cast<const Record&>(*this)); }

 protected:
  // The words of fields(): each field with its name and member, and what else Field takes.
  template <class T, class Base, class... Rest>
  static constexpr auto At(const char* name, T Base::*member, Rest... rest) {
    return Field<Base, T>(name, member, rest...);
  }
  template <class... F>
  static constexpr std::tuple<F...> List(F... field) {
    return {field...};
  }

 private:
  friend Record;
  Fields() = default;

  template <class T>
  static constexpr T& Reach(T& field) {
    return field;
  }
  template <class T, std::size_t n>
  static constexpr T* Reach(T (&text)[n]) {
    return text;
  }
  template <class Self>
  static auto Tie(Self& self) {
    return std::apply(
        [&self](auto... field) {
          return std::tuple<decltype(Reach(self.*field.member))...>(Reach(self.*field.member)...);
        },
        Record::fields());
  }
};

}  // namespace TableType
