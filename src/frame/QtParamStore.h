// The store owns every table of the data base, the names of the four documents that come with it,
// and the manager that drives the tables.
//
//   Clear         erases the rows, and unbinds the tables from their seas for good
//   PurgeTables   erases the rows, the indexes of the name tables and the four names
//
// Nothing here takes a lock: loads, purges and clears must not run beside queries.
#pragma once

#include <memory>

#include "frame/TableList.h"
#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

class CLake;

namespace kestrin {
struct LoadForInspection;
}

class KESTRIN_API CQtParamStore {
 public:
  // The lines that name the four documents.
  static constexpr const wchar_t* base_type_key = L"<QType><FBaseName>";
  static constexpr const wchar_t* alias_type_key = L"<QType><FAliasName>";
  static constexpr const wchar_t* calib_file_key = L"<QCalib><FCalibFileName>";
  static constexpr const wchar_t* learn_file_key = L"<QLearn><FLearnArcName>";

  // All tables empty. Asks for the application sea once.
  CQtParamStore();
  ~CQtParamStore();
  CQtParamStore(const CQtParamStore&) = delete;
  CQtParamStore& operator=(const CQtParamStore&) = delete;

  void Clear();
  void PurgeTables();

  // Reads the tables and then the four names from the candidate lake. False, with nothing changed,
  // if the lake is empty or its version refused.
  bool ReadTablesFromCandidateLake();

  // Writes each table that is bound to a sea back to it.
  void WriteTablesToLocalSeas() const;

  // Logs the rows of every table; all of them with limit 0.
  void DumpTables(int limit) const;

  // The table of that section: Table<L"<TMode>">().
  template <kestrin::tables::Word Section>
  kestrin::tables::TableOf<Section>& Table() {
    return kestrin::tables::TableIn<Section>(tables_);
  }
  template <kestrin::tables::Word Section>
  const kestrin::tables::TableOf<Section>& Table() const {
    return kestrin::tables::TableIn<Section>(tables_);
  }

  const CString& LearnFileName() const { return learn_archive_name_; }
  const CString& CalibFileName() const { return calibration_file_name_; }
  const CString& BaseType() const { return type_base_name_; }
  const CString& AliasType() const { return type_alias_name_; }

 private:
  friend struct kestrin::LoadForInspection;

  // The tables and the four names of any lake, whatever its version.
  void ReadTables(const CLake& lake);
  void ReadNames(const CLake& lake);

  void RegisterTables();

  kestrin::tables::Members<kestrin::tables::All> tables_;
  CString learn_archive_name_;
  CString calibration_file_name_;
  CString type_base_name_;
  CString type_alias_name_;
  std::unique_ptr<CQTableManager> manager_;
};
