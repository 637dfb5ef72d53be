#include "DataBase.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <iostream>

using namespace kestrin;

namespace kestrindb {
namespace {

// Anything but a terminal and /dev/null, which end.
bool IsEndlessDevice(const std::string& path) {
  struct stat device {};
  struct stat null {};
  if (stat(path.c_str(), &device) != 0 || !S_ISCHR(device.st_mode)) return false;
  if (stat("/dev/null", &null) == 0 && null.st_rdev == device.st_rdev) return false;
  const int handle = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  const bool is_terminal = handle >= 0 && isatty(handle) != 0;
  if (handle >= 0) close(handle);
  return !is_terminal;
}

}  // namespace

std::string ReadInput(const std::string& file_name) try {
  const std::string path = file_name == "-" ? "/dev/stdin" : file_name;
  if (IsEndlessDevice(path)) {
    throw Failure(file_unusable, "'" + InputName(file_name) + "' is a device and no file.");
  }
  return ReadFile(Wide(path));
} catch (const CFileException& error) {
  throw Failure(file_unusable, error.what());
}

std::string InputName(const std::string& file_name) {
  return file_name == "-" ? "<stdin>" : file_name;
}

// A file with bytes that aren't UTF-8 is read up to them, and can be used as far as that.
std::string ReadCandidateLake(const std::string& file_name) {
  std::string bytes = ReadInput(file_name);
  CLake& lake = CParameterLake::Lake();
  ReadLake(lake, bytes, Wide(InputName(file_name)));
  const Refusal& refusal = lake.last_refusal();
  if (refusal && refusal.reason != Refusal::broken_text) {
    throw Failure(file_unusable, Utf8(refusal.sentence));
  }
  return bytes;
}

void TellIfCut() {
  const Refusal& refusal = CParameterLake::Lake().last_refusal();
  if (refusal) std::cerr << "kestrindb: " << Printable(Utf8(refusal.sentence)) << '\n';
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
  TellIfCut();
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
