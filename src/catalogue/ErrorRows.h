// Rows of the tables of errors and their severity, and of shadow groups.
#pragma once

#include "tables/RowRecords.h"

// <TErrorCode>, by error code: what an error of a test means.
struct QVErrorCode : QValueBase, TableType::Fields<QVErrorCode> {
  int first = 0;
  wchar_t text[TableType::text_width] = {};
  int third = -1;
  int fourth = -1;
  int fifth = 0;

  static constexpr auto fields() {
    return List(At("first", &QVErrorCode::first), At("text", &QVErrorCode::text),
                At("third", &QVErrorCode::third), At("fourth", &QVErrorCode::fourth),
                At("fifth", &QVErrorCode::fifth, TableType::FieldKind::long_int));
  }
};

// <TExternalError>, by error code.
struct QVExternalError : QValueBase, TableType::Fields<QVExternalError> {
  int first = -1;
  int second = -1;
  int third = -1;
  int fourth = -1;
  int fifth = -1;
  int sixth = -1;
  int seventh = -1;

  static constexpr auto fields() {
    return List(At("first", &QVExternalError::first), At("second", &QVExternalError::second),
                At("third", &QVExternalError::third), At("fourth", &QVExternalError::fourth),
                At("fifth", &QVExternalError::fifth), At("sixth", &QVExternalError::sixth),
                At("seventh", &QVExternalError::seventh));
  }
};

// <TErrorGroup>, by severity: a severity class of errors.
struct QVErrorGroup : QValueBase, TableType::Fields<QVErrorGroup> {
  int first = 0;
  int second = 4;
  wchar_t text_1[TableType::text_width] = {};
  wchar_t text_2[TableType::text_width] = {};

  static constexpr auto fields() {
    return List(At("first", &QVErrorGroup::first, TableType::FieldKind::long_int),
                At("second", &QVErrorGroup::second, TableType::FieldKind::long_int),
                At("text_1", &QVErrorGroup::text_1), At("text_2", &QVErrorGroup::text_2));
  }
};

// <TShadowGroupProperty>, by shadow group.
struct QVShadowGroupProperty : QValueBase, TableType::Fields<QVShadowGroupProperty> {
  int first = 0;

  static constexpr auto fields() {
    return List(At("first", &QVShadowGroupProperty::first, TableType::FieldKind::long_int));
  }
};
