// A key on the command line and as an answer, for the commands that tell all texts of a key.
#pragma once

#include <string>
#include <vector>

#include "Command.h"

namespace kestrindb {

// The six ids with blanks between them, as the command line takes them.
std::string IdsText(const QClavis& key);

// Prints a key and all texts that the library has for it; `separator` is that of the nice text.
void PrintKey(const CQtParamInstance& params, const QClavis& key, const std::string& separator,
              bool as_json);

// The six ids of a key, and the option --separator.
CLI::Option* AddIds(CLI::App& command, std::vector<int>& ids);
void AddSeparator(CLI::App& command, std::string& separator);

}  // namespace kestrindb
