#include "Command.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <utility>

using namespace kestrin;

namespace kestrindb {
namespace {

// Keeps what is logged while it lives, and prints it.
class LogKeeper {
 public:
  LogKeeper(std::vector<LogLine>& lines)
      : before_(PrWin::SetSink([&lines](std::wstring_view text, auto category, auto style) {
          lines.push_back({category, style, Utf8(text)});
          std::cerr << lines.back().text;
        })) {}
  LogKeeper(const LogKeeper&) = delete;
  LogKeeper& operator=(const LogKeeper&) = delete;
  ~LogKeeper() { PrWin::SetSink(std::move(before_)); }

 private:
  PrWin::Sink before_;
};

// The library takes a file that can't be opened for one with nothing in it, so ask first.
void RequireUsable(const std::string& file_name) {
  const std::filesystem::path path(file_name);
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw Failure(file_unusable, "'" + file_name + "' is a folder, not a parameter file.");
  }
  if (!std::ifstream(path)) {
    throw Failure(file_unusable,
                  "The file '" + file_name + "' can't be opened: " + std::strerror(errno) + ".");
  }
}

std::string WhyNotAccepted() {
  CLake& lake = CParameterLake::Lake();
  if (lake.empty()) return "it has no lines";
  const int major = lake[L"<DbDesign.CacheVersion>"];
  const int minor = lake[L"<DbDesign.CacheMinorVersion>"];
  if (!CQTableManager::IsSupported(major, minor)) {
    return "version " + std::to_string(major) + "." + std::to_string(minor) + " is not supported";
  }
  return "a relative limit names an unknown parameter; kestrindb check tells which";
}

bool LooksLikeNumber(const std::string& cell) {
  return cell.find_first_of("0123456789") != std::string::npos &&
         cell.find_first_not_of("0123456789.+-e") == std::string::npos;
}

// Whether all cells of a column are numbers, as far as there is something in them.
bool IsOfNumbers(const std::vector<std::vector<std::string>>& rows, std::size_t column) {
  return std::all_of(rows.begin(), rows.end(), [column](const auto& row) {
    if (column >= row.size()) return true;
    const std::string& cell = row[column];
    return cell.empty() || cell == "null" || LooksLikeNumber(cell);
  });
}

// Places on a terminal: one a character, without combining marks and wide characters being told
// apart.
std::size_t Width(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

std::string Utf8(std::wstring_view text) { return Text::ToUtf8(text); }
std::wstring Wide(std::string_view text) { return Text::FromUtf8(text); }

void ReadLake(const std::string& file_name) {
  RequireUsable(file_name);
  if (!CParameterLake::Lake().read(Wide(file_name))) {
    throw Failure(file_unusable,
                  "The file '" + file_name +
                      "' can't be read: it begins with a broken UTF-8 mark, or reading failed.");
  }
}

DataBase::DataBase(const std::string& file_name) : file_name_(file_name) {
  using Clock = std::chrono::steady_clock;
  const auto seconds_since = [](Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
  };
  const LogKeeper keeper(log);
  const auto begin = Clock::now();
  ReadLake(file_name);
  reading = seconds_since(begin);
  const auto read = Clock::now();
  accepted = params.ReadTablesFromCandidateLake();
  loading = seconds_since(read);
  if (!accepted) reason = WhyNotAccepted();
}

void DataBase::RequireAccepted() const {
  if (accepted) return;
  throw Failure(data_bad,
                "The file '" + file_name_ + "' was not accepted as a data base: " + reason + ".");
}

void DataBase::RequireMode(int mode) const {
  const int base = CQtParamInstance::VirtMode2BaseMode(mode);
  if (params.IsValidMode(mode) || params.IsValidMode(base)) return;
  throw Failure(data_bad, "There is no test step " + std::to_string(base) +
                              (base == mode ? "" : ", the base of " + std::to_string(mode)) +
                              "; see kestrindb names FILE mode.");
}

CommandLine::CommandLine() {
  app.set_version_flag("--version", "kestrindb " + std::string(LibraryVersion()),
                       "Print the version and exit");
  std::string tags;
  for (const Language& language : Languages()) {
    tags += (tags.empty() ? "" : ", ") + std::string(language.tag);
  }
  app.add_option_function<std::string>(
         "--lang", [](const std::string& tag) { SetUserLanguage(tag); },
         "Language of the library's texts: " + tags + "; without it that of the environment")
      ->check([tags](const std::string& tag) {
        return FindLanguage(tag) ? std::string()
                                 : "There is no language '" + tag + "', only " + tags + ".";
      });
}

CLI::App* CommandLine::Add(const std::string& name, const std::string& description,
                           std::function<Status()> run) {
  CLI::App* command = app.add_subcommand(name, description);
  command->add_flag("--json", json, "Give the answer as JSON");
  command->fallthrough();
  command->callback([this, run = std::move(run)] { status = run(); });
  return command;
}

// By way of the text: as a double the float itself would show digits that it doesn't have.
Json ShortNumber(float number) {
  if (!std::isfinite(number)) return nullptr;
  char text[32];
  const auto written = std::to_chars(std::begin(text), std::end(text), number);
  double value = 0.0;
  std::from_chars(text, written.ptr, value);
  return value;
}

void Print(const Json& json) { std::cout << json.dump(2) << '\n'; }

std::string WithName(const Json& id, const Json& name) {
  const auto text = name.get<std::string>();
  return text.empty() ? id.dump() : id.dump() + "  " + text;
}

void PrintTable(const std::vector<std::string>& headings,
                const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  widths.reserve(headings.size());
  for (const std::string& heading : headings) widths.push_back(Width(heading));
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  const auto print = [&widths](const std::vector<std::string>& row, const auto& to_the_right) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string gap(widths[i] - Width(row[i]), ' ');
      if (i != 0) line += "  ";
      line += to_the_right(i) ? gap + row[i] : row[i] + gap;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  };
  std::vector<bool> is_of_numbers;
  for (std::size_t i = 0; i < headings.size(); ++i) is_of_numbers.push_back(IsOfNumbers(rows, i));
  print(headings, [](std::size_t) { return false; });
  for (const auto& row : rows) print(row, [&](std::size_t i) { return is_of_numbers[i]; });
}

}  // namespace kestrindb
