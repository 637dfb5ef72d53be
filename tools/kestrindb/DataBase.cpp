#include "DataBase.h"

#include <chrono>
#include <iostream>

using namespace kestrin;

namespace kestrindb {

// A file with bytes that aren't UTF-8 is read up to them, and can be used as far as that.
std::string ReadCandidateLake(const std::string& file_name) try {
  const bool is_input = file_name == "-";
  std::string bytes = ReadFile(is_input ? L"/dev/stdin" : Wide(file_name));
  CLake& lake = CParameterLake::Lake();
  ReadLake(lake, bytes, is_input ? L"<stdin>" : Wide(file_name));
  const Refusal& refusal = lake.last_refusal();
  if (refusal && refusal.reason != Refusal::broken_text) {
    throw Failure(file_unusable, Utf8(refusal.sentence));
  }
  return bytes;
} catch (const CFileException& error) {
  throw Failure(file_unusable, error.what());
}

DataBase::DataBase(const std::string& file_name) {
  using Clock = std::chrono::steady_clock;
  const auto seconds_since = [](Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
  };
  const LogSink sink([this](std::wstring_view text, auto category, auto style) {
    log.push_back({{"category", category}, {"style", style}, {"text", Utf8(text)}});
    std::cerr << Printable(Utf8(text));
  });
  const auto begin = Clock::now();
  bytes = ReadCandidateLake(file_name);
  reading = seconds_since(begin);
  const auto read = Clock::now();
  params.ReadTablesFromCandidateLake();
  loading = seconds_since(read);
}

void DataBase::RequireAccepted() const {
  if (IsAccepted()) return;
  throw Failure(data_bad,
                "The file '" + Utf8(CParameterLake::Lake().filename()) +
                    "' was not accepted as a data base: " + Utf8(params.LastRefusal().sentence));
}

}  // namespace kestrindb
