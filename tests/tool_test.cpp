// What the command-line host tells a user who asks for what isn't there, or what a load costs.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

#include "tool_session.h"

namespace {

struct Result {
  int status;  // -1: it did not end by itself
  std::string text;
};

// What a command line of the shell prints behind kestrindb.
Result RunInShell(const std::string& arguments) {
  Result result{-1, {}};
  FILE* const pipe = popen(("'" KESTRINDB "' " + arguments).c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer;
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    result.text.append(buffer.data(), count);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

TEST(ToolFailures, WhatTheDataBaseDoesNotHoldIsNoAnswer) {
  const std::string file = " '" + std::string(sample) + "' ";
  const std::string lines = " --speed-source 1 --resolution 0.125 --lines 1600";
  const struct {
    std::string arguments;
    std::string sentence;
  } cases[] = {
      {"mode" + file + "99", "There is no test step 99; see kestrindb names FILE mode."},
      {"mode" + file + "--make 99 0 0",
       "There is no test step 99, the base of 133219; see kestrindb names FILE mode."},
      {"rotors" + file + "99", "There is no test step 99; see kestrindb names FILE mode."},
      {"channel" + file + "99 1", "There is no test step 99; see kestrindb names FILE mode."},
      {"channel" + file + "130 99", "There is no channel 99; see kestrindb names FILE channel."},
      {"intervals" + file + "99" + lines,
       "There is no test step 99; see kestrindb names FILE mode."},
      {"intervals" + file + "130 99" + lines,
       "The parameter 99 has no spectrum intervals: it lacks one of the calculation parameters 2, "
       "3 and 4, or the data base doesn't have it."},
      {"calc" + file + "99", "There is no parameter 99; see kestrindb names FILE parameter."},
      {"trigger" + file + "99 3", "There is no test step 99; see kestrindb names FILE mode."},
      {"trigger" + file + "130 99", "Trigger 99 has no axes in test step 130."},
      {"polygon" + file + "1 2 3 4 5 6",
       "The key 1 2 3 4 5 6 has no track polygon: <TIpParamAndStore> doesn't list it."},
      {"dump" + file + "TNone", "There is no table 'TNone'; see kestrindb tables."},
      {"tables TNone", "There is no table 'TNone'."},
  };
  for (const auto& [arguments, sentence] : cases) {
    const auto [status, text] = RunInShell(arguments + " 2>&1");
    EXPECT_EQ(status, 1) << arguments;
    EXPECT_EQ(text, "kestrindb: " + sentence + "\n") << arguments;
  }
}

TEST(ToolLoad, TheCostOfALoadIsMeasured) {
  const auto [status, text] = RunInShell("load '" + std::string(sample) + "' --time --json");
  EXPECT_EQ(status, 0);
  for (const std::string field : {"reading_ms", "loading_ms", "peak_memory_kib"}) {
    const std::size_t place = text.find('"' + field + "\": ");
    ASSERT_NE(place, std::string::npos) << text;
    EXPECT_GT(std::stod(text.substr(place + field.size() + 4)), 0) << field;
  }
}

}  // namespace
