// kestrindb fmt FILE: a parameter file tidied.

#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "Output.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// The line in which two texts part, from 1.
std::ptrdiff_t LineOfDifference(const std::string& a, const std::string& b) {
  const auto place = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
  return 1 + std::count(a.begin(), place, '\n');
}

}  // namespace

// Bytes need not be UTF-8, and stand in the JSON only as long as it goes to PrintFmt.
Answer DescribeFmt(const Request& request) {
  try {
    if (request.in_place && request.file == "-") {
      throw Failure(file_unusable, "Standard input can't be tidied in place.");
    }
    const std::string name = InputName(request.file);
    const std::string bytes = ReadInput(request.file);
    if (bytes.find('\0') != std::string::npos) {
      throw Failure(file_unusable,
                    "The file '" + name + "' is no text: there is a zero in line " +
                        std::to_string(LineOfDifference(bytes, bytes.substr(0, bytes.find('\0')))) +
                        ".");
    }
    const std::string tidied = Tidied(bytes);
    Json json = {{"tidy", tidied == bytes}};
    if (tidied != bytes) json["line"] = LineOfDifference(bytes, tidied);
    if (request.in_place && tidied != bytes) ReplaceFile(Wide(request.file), tidied);
    if (request.check_only && !request.json && tidied != bytes) {
      json["text"] =
          name + ":" + json["line"].dump() + ": not tidy; kestrindb fmt would change it\n";
    } else if (!request.in_place && !request.check_only && !request.json) {
      json["text"] = tidied;
    }
    return {json, request.check_only && tidied != bytes ? data_bad : fine};
  } catch (const CFileException& error) {
    throw Failure(file_unusable, error.what());
  }
}

void PrintFmt(const Json& json) {
  if (json.contains("text")) std::cout << Unaltered(json["text"].get_ref<const std::string&>());
}

}  // namespace kestrindb
