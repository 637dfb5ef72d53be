// What the bytes of a file tell before anybody reads them as lines.

#include <algorithm>
#include <array>

#include "inspect/ParameterCheckRun.h"
#include "interfaces/text/Utf.h"

namespace kestrin::ParameterCheck {
namespace {

constexpr const char* save = "Save the file as UTF-8 with a byte order mark";

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf::Sequence next = Utf::Read(bytes.data(), bytes.data() + bytes.size());
    if (next.state != Utf::Sequence::whole) return false;
    bytes.remove_prefix(static_cast<std::size_t>(next.length));
  }
  return true;
}

bool IsBeyondAscii(char byte) { return (byte & '\x80') != 0; }

// Of a text in UTF-16 with Latin letters every other byte is 0.
bool IsUtf16(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
  const std::string_view start = bytes.substr(0, 4096);
  std::array<std::size_t, 2> zeros{};
  for (std::size_t i = 0; i < start.size(); ++i) zeros[i % 2] += start[i] == '\0' ? 1 : 0;
  const auto [few, many] = std::minmax(zeros[0], zeros[1]);
  return many > start.size() / 3 && few < start.size() / 16;
}

// Bytes that no text has make up more than one in twenty. The start of a file shows it.
bool IsBinary(std::string_view bytes) {
  bytes = bytes.substr(0, 1U << 16U);
  const auto strange = std::count_if(bytes.begin(), bytes.end(), [](char byte) {
    return static_cast<unsigned char>(byte) < ' ' && (byte < '\t' || byte > '\r');
  });
  return static_cast<std::size_t>(strange) > bytes.size() / 20;
}

void Tell(Findings& findings, Kind kind, std::size_t line, std::string message, Severity severity) {
  Finding* const finding = findings.Add(kind, line);
  finding->message = std::move(message);
  finding->severity = severity;
}

// What is read as UTF-8 although other programs refuse it: halves of a pair, and forms with more
// bytes than the character needs.
void TellLax(Findings& findings, std::string_view bytes) {
  std::size_t line = 1;
  while (!bytes.empty()) {
    const Utf::Sequence next = Utf::Read(bytes.data(), bytes.data() + bytes.size());
    if (next.state != Utf::Sequence::whole) return;  // nothing from there on is read
    if (next.code == '\n') ++line;
    if (Utf::IsHigh(next.code) || Utf::IsLow(next.code) || next.length > Utf::LengthOf(next.code)) {
      return Tell(findings, Kind::not_utf8, line,
                  "this line, the first of such, holds bytes that are read but are not UTF-8, and "
                  "other programs refuse them. Type the character again",
                  Severity::note);
    }
    bytes.remove_prefix(static_cast<std::size_t>(next.length));
  }
}

}  // namespace

bool CheckBytes(Run& run, std::string_view bytes) {
  Findings& findings = run.findings;
  if (IsUtf16(bytes)) {
    Tell(findings, Kind::utf16, 1,
         "the file is UTF-16, and none of its lines can be read. " + std::string(save),
         Severity::error);
    return true;
  }
  if (IsBinary(bytes)) {
    Tell(findings, Kind::binary, 1, "the file holds no text; is it the right one?",
         Severity::error);
    return true;
  }
  const auto first = std::find_if(bytes.begin(), bytes.end(), IsBeyondAscii);
  if (bytes.starts_with(Utf::mark)) {
    TellLax(findings, bytes);
    return false;
  }
  if (first == bytes.end()) return false;
  const auto line = static_cast<std::size_t>(std::count(bytes.begin(), first, '\n')) + 1;
  const bool is_utf8 = IsUtf8(bytes);
  run.is_bytewise = is_utf8;
  Tell(findings, Kind::no_utf8_mark, line,
       is_utf8 ? "the file is UTF-8 without a byte order mark, so that each byte is read as a "
                 "character, and letters such as \xC3\xA4 as two. " +
                     std::string(save)
               : "the file has no byte order mark and is read as Latin-1. If its letters look "
                 "wrong, save it as UTF-8 with a byte order mark",
       is_utf8 ? Severity::loss : Severity::note);
  return false;
}

}  // namespace kestrin::ParameterCheck
