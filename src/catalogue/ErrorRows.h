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
    return TableType::FieldList(
        TableType::Field("first", &QVErrorCode::first),
        TableType::Field("text", &QVErrorCode::text),
        TableType::Field("third", &QVErrorCode::third),
        TableType::Field("fourth", &QVErrorCode::fourth),
        TableType::Field("fifth", &QVErrorCode::fifth, TableType::FieldKind::long_int));
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
    return TableType::FieldList(TableType::Field("first", &QVExternalError::first),
                                TableType::Field("second", &QVExternalError::second),
                                TableType::Field("third", &QVExternalError::third),
                                TableType::Field("fourth", &QVExternalError::fourth),
                                TableType::Field("fifth", &QVExternalError::fifth),
                                TableType::Field("sixth", &QVExternalError::sixth),
                                TableType::Field("seventh", &QVExternalError::seventh));
  }
};

// <TErrorGroup>, by severity: a severity class of errors.
struct QVErrorGroup : QValueBase, TableType::Fields<QVErrorGroup> {
  int first = 0;
  int second = 4;
  wchar_t text_1[TableType::text_width] = {};
  wchar_t text_2[TableType::text_width] = {};

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVErrorGroup::first, TableType::FieldKind::long_int),
        TableType::Field("second", &QVErrorGroup::second, TableType::FieldKind::long_int),
        TableType::Field("text_1", &QVErrorGroup::text_1),
        TableType::Field("text_2", &QVErrorGroup::text_2));
  }
};

// <TShadowGroupProperty>, by shadow group.
struct QVShadowGroupProperty : QValueBase, TableType::Fields<QVShadowGroupProperty> {
  int first = 0;

  static constexpr auto fields() {
    return TableType::FieldList(
        TableType::Field("first", &QVShadowGroupProperty::first, TableType::FieldKind::long_int));
  }
};
