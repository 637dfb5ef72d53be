#include "tables/QTableManager.h"

#include <cstddef>
#include <string>

#include "interfaces/Number.h"
#include "interfaces/PrWin.h"
#include "lake/Lake.h"

using namespace kestrin;

namespace {

constexpr std::size_t expected_tables = 100;
constexpr int supported_major = 215;
constexpr int least_minor = 1;

void Append(std::wstring& text, int number) {
  Number::Append(text, static_cast<long long>(number));
}

void AppendVersion(std::wstring& text, int major, int minor) {
  Append(text, major);
  text.push_back(L'.');
  Append(text, minor);
}

void LogRefusal(int major, int minor) {
  std::wstring text =
      L"CQTableManager::ReadTablesFromCandidateLake(): Loading parameter data base failed:\n"
      L"\tTable version ";
  AppendVersion(text, major, minor);
  if (major <= supported_major) {
    text.append(L" is less than least supported version ");
    AppendVersion(text, supported_major, least_minor);
    text.append(
        L"\n\tDelete all cache files and try again.\n"
        L"\tIf the load still fails, please contact Tavrel.\n");
  } else {
    text.append(L" is greater than highest supported major version ");
    Append(text, supported_major);
    text.append(L"\tPlease contact Tavrel for a software update.\n");
  }
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_refusal);
}

}  // namespace

bool CQTableManager::IsSupported(int major, int minor) {
  return major == supported_major && minor >= least_minor;
}

CQTableManager::CQTableManager() { tables_.reserve(expected_tables); }

unsigned int CQTableManager::RegisterTable(CQParamSeaTable& table) {
  tables_.push_back(&table);
  return static_cast<unsigned int>(tables_.size());
}

const CQParamSeaTable* CQTableManager::Table(unsigned int index) const {
  return index < tables_.size() ? tables_[index] : nullptr;
}

void CQTableManager::Clear() {
  for (CQParamSeaTable* table : tables_) table->Clear();
}

void CQTableManager::PurgeTables() {
  for (CQParamSeaTable* table : tables_) table->Purge();
}

bool CQTableManager::ReadTablesFromCandidateLake() {
  CLake& lake = CParameterLake::Lake();
  if (lake.empty()) return false;
  const int major = lake[L"<DbDesign.CacheVersion>"];
  const int minor = lake[L"<DbDesign.CacheMinorVersion>"];
  if (!IsSupported(major, minor)) {
    LogRefusal(major, minor);
    return false;
  }
  for (CQParamSeaTable* table : tables_) table->ReadTable(lake);
  return true;
}

void CQTableManager::WriteTablesToLocalSeas() const {
  for (CQParamSeaTable* table : tables_) table->WriteTable(nullptr);
}

void CQTableManager::DumpTables(int limit) const {
  for (CQParamSeaTable* table : tables_) table->Dump(limit);
}
