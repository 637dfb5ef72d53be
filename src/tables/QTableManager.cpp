#include "tables/QTableManager.h"

#include <cstddef>
#include <optional>
#include <string>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "lake/Lake.h"

using namespace kestrin;

namespace {

constexpr std::size_t expected_tables = 100;  // of the suite; the data base has 56 of them
constexpr int supported_major = CQTableManager::supported_major;
constexpr int least_minor = CQTableManager::least_minor;

void AppendVersion(std::wstring& text, int major, int minor) {
  Number::Append(text, major);
  text.push_back(L'.');
  Number::Append(text, minor);
}

// The number at the start of a line's value, 0 if there is none; nothing without the line.
std::optional<int> VersionNumber(const CLake& lake, const wchar_t* key) {
  const RootLine line = lake.root_line(key);
  if (!line.exists) return std::nullopt;
  return Number::ScanInt(line.value).value;
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
    Number::Append(text, supported_major);  // no line end behind it, as the suite's readers know it
    text.append(L"\tPlease contact Tavrel for a software update.\n");
  }
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_refusal);
}

}  // namespace

kestrin::Refusal CQTableManager::WhyRefused(const CLake& lake) {
  using kestrin::Refusal;
  if (lake.empty()) return {Refusal::empty_lake, L"There are no lines to load."};
  const auto major = VersionNumber(lake, major_key);
  const auto minor = VersionNumber(lake, minor_key);
  if (major == supported_major && minor >= least_minor) return {};
  const bool too_high = major > supported_major;
  std::wstring text = L"A version line is missing";
  if (major && minor) {
    text = L"Version ";
    AppendVersion(text, *major, *minor);
    text.append(too_high ? L" is too high" : L" is too low");
  }
  text.append(L": the file must say ").append(major_key).append(L": ");
  Number::Append(text, supported_major);
  text.append(L" and ").append(minor_key).append(L": ");
  Number::Append(text, least_minor);
  text.append(L" or more.");
  if (!major || !minor) return {Refusal::no_version, text};
  return {too_high ? Refusal::version_too_high : Refusal::version_too_low, text};
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
  const CLake& lake = CParameterLake::Lake();
  if (const kestrin::Refusal refusal = WhyRefused(lake)) {
    if (refusal.reason != kestrin::Refusal::empty_lake) {
      LogRefusal(VersionNumber(lake, major_key).value_or(0),
                 VersionNumber(lake, minor_key).value_or(0));
    }
    return false;
  }
  ReadTables(lake);
  return true;
}

void CQTableManager::ReadTables(const CLake& lake) {
  // A table is handed a lake that it could change, and doesn't.
  auto& same_lake = const_cast<CLake&>(lake);
  for (CQParamSeaTable* table : tables_) table->ReadTable(same_lake);
}

void CQTableManager::WriteTablesToLocalSeas() const {
  for (CQParamSeaTable* table : tables_) table->WriteTable(nullptr);
}

void CQTableManager::DumpTables(int limit) const {
  for (CQParamSeaTable* table : tables_) table->Dump(limit);
}
