// The list of all sea tables of a store, and the loop over them. Every bulk operation on the data
// base is one call here that walks the tables in the order of their registration. The manager also
// accepts or refuses a data base by its version.
//
// The manager knows a table only through two interfaces. Tables are owned by the store. Nothing
// here is synchronised: loads, purges and clears don't run beside anything else.
#pragma once

#include <vector>

#include "interfaces/Export.h"
#include "lake/Refusal.h"

class CLake;
class CResourceSea;

class CQParamBaseTableInterface {
 public:
  virtual ~CQParamBaseTableInterface() = default;
  virtual void Clear() = 0;          // erases the rows and forgets the local sea, for good
  virtual void Purge() = 0;          // erases the rows
  virtual void Dump(int limit) = 0;  // logs the rows: all with limit 0, else one more than limit
};

class CQParamSeaTable : public virtual CQParamBaseTableInterface {
 public:
  // Both read operations replace the rows; false if a line was bad or there was nothing to read.
  virtual bool ReadTable(const CResourceSea* sea) = 0;
  virtual bool ReadTable(CLake& lake) = 0;
  // Into the sea given, or the local sea if that is null; false if both are null.
  virtual bool WriteTable(CResourceSea* sea) = 0;

 protected:
  CResourceSea* sea = nullptr;  // the table's local sea, null for none; not owned
};

class KESTRIN_API CQTableManager {
 public:
  CQTableManager();

  // The lines that tell a version, and what is read: exactly this major version, from the least
  // minor one on.
  static constexpr const wchar_t* major_key = L"<DbDesign.CacheVersion>";
  static constexpr const wchar_t* minor_key = L"<DbDesign.CacheMinorVersion>";
  static constexpr int supported_major = 215;
  static constexpr int least_minor = 1;

  // Why a load of the lake would end in front of the tables, if it would.
  static kestrin::Refusal WhyRefused(const CLake& lake);

  // The number of tables now registered: the table's index in Table() plus 1.
  unsigned int RegisterTable(CQParamSeaTable& table);

  // Null if the index is not below the number of tables.
  const CQParamSeaTable* Table(unsigned int index) const;

  void Clear();
  void PurgeTables();

  // Reads every table from the candidate lake. False, with no table touched, if the lake is empty
  // or its version is refused; the refusal is one log line. What a table reports doesn't count: a
  // missing section is normal and a bad line is in the log.
  bool ReadTablesFromCandidateLake();

  // Each table writes to its own local sea, if it has one.
  void WriteTablesToLocalSeas() const;

  // All rows with limit 0.
  void DumpTables(int limit) const;

 private:
  friend class CQtParamStore;

  // Reads every table from any lake, whatever its version.
  void ReadTables(const CLake& lake);

  std::vector<CQParamSeaTable*> tables_;
};
