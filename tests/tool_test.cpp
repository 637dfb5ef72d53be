// What the command-line host tells a user who asked for what isn't there, or who waits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "test_store.h"
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

// A file whose reader waits until the test has written it.
class SlowFile {
 public:
  SlowFile() {
    std::filesystem::remove(file_.path());
    mkfifo(file_.path().c_str(), S_IRUSR | S_IWUSR);
    end_ = open(file_.path().c_str(), O_RDWR | O_CLOEXEC);
  }
  SlowFile(const SlowFile&) = delete;
  SlowFile& operator=(const SlowFile&) = delete;
  ~SlowFile() { close(end_); }

  const std::string& path() const { return file_.path(); }
  void Finish(const std::string& bytes) {
    EXPECT_EQ(write(end_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    // The bytes would go with the last end that is open.
    for (int left = 1; left > 0 && ioctl(end_, FIONREAD, &left) == 0;) usleep(1000);
    close(end_);
    end_ = -1;
  }

 private:
  const ScratchFile file_;
  int end_ = -1;
};

using ProgressAtTerminal = AtTerminal;

TEST_F(ProgressAtTerminal, ABarStandsThereWhileTheFirstLoadTakesLong) {
  SlowFile file;
  const auto begin = std::chrono::steady_clock::now();
  Session session({"bench", file.path()});
  ASSERT_TRUE(session.WaitFor("[..............................] 0 %  first load"));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
  file.Finish(std::string("\xEF\xBB\xBF") + testing_support::version + "<TMode>: {\nx\n}\n");
  EXPECT_EQ(session.End(), 2);
  // A line of the log takes the bar's place, and nothing of the bar is left at the end.
  const std::string shown = session.Screen();
  const std::string erased = "\r\x1B[K";
  EXPECT_NE(shown.find("first load" + erased + "Error"), std::string::npos) << shown;
  const std::string end = shown.substr(shown.rfind("first load"));
  EXPECT_TRUE(end.starts_with("first load" + erased)) << shown;
  EXPECT_NE(end.find("can't be read again and again"), std::string::npos) << shown;
}

TEST_F(ProgressAtTerminal, TheMeasurementsMoveTheBarThatAPipeDoesNotGet) {
  Session session({"bench", sample, "--seconds", "0.1"});
  ASSERT_TRUE(session.WaitFor("[###")) << session.Screen();
  EXPECT_EQ(session.End(), 0);
  EXPECT_TRUE(session.Screen().ends_with("\r\x1B[K")) << session.Screen();
  EXPECT_NE(session.Answer().find("median"), std::string::npos);

  const auto [status, text] =
      RunInShell("bench '" + std::string(sample) + "' --seconds 0.1 2>&1 > /dev/null");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(text, "");
}

}  // namespace
