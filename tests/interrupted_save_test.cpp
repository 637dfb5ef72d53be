// What a crash or a refusing system leaves of a sea that is being saved. The save runs in a process
// of its own, which stops before and behind each of its system calls: there it is killed, or the
// call is refused; and so with every one of them in turn.

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "interfaces/PrWin.h"
#include "interfaces/ResourceSea.h"
#include "lake_bytes.h"

namespace {

namespace fs = std::filesystem;

// How the process of a save ends.
constexpr int saved = 0;
constexpr int not_saved = 1;
constexpr int not_traceable = 2;

class TracedSave {
 public:
  TracedSave(const CResourceSea& sea, const std::wstring& name) : child_(fork()) {
    if (child_ == 0) Save(sea, name);
    Wait();
    SetOptions(PTRACE_O_TRACESECCOMP);
  }
  TracedSave(const TracedSave&) = delete;
  TracedSave& operator=(const TracedSave&) = delete;
  ~TracedSave() {
    if (HasEnded()) return;
    kill(child_, SIGKILL);
    Wait();
  }

  // Whether there is a stop of that number; the odd ones stand before a call. If not, it has ended.
  bool RunToStop(int number) {
    while (number > 0 && Continue()) number -= IsAtCall() ? 1 : 0;
    return !HasEnded();
  }

  // Refuses the call that it stands before; returns its number in the system.
  long RefuseCall() {
    __ptrace_syscall_info call{};
    ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof call, &call);
    SetOptions(0);
    RunToStop(1);
    SetOptions(PTRACE_O_TRACESECCOMP);
    return static_cast<long>(call.entry.nr);
  }

  // Its exit status, or minus the signal that ended it.
  int End() {
    while (Continue()) {
    }
    return WIFSIGNALED(status_) ? -WTERMSIG(status_) : WEXITSTATUS(status_);
  }

 private:
  [[noreturn]] static void Save(const CResourceSea& sea, const std::wstring& name) noexcept {
    PrWin::SetSink([](std::wstring_view, auto, auto) {});
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(not_traceable);
    raise(SIGSTOP);
    if (!MakeCallsRefusable()) _exit(not_traceable);
    _exit(sea.Save(name) ? saved : not_saved);
  }

  // A call that is to be traced is refused while the tracer doesn't ask for it. Not so those of
  // memory and of the end, which is also where the address sanitizer looks at the signal stack.
  static bool MakeCallsRefusable() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_brk, 5, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 4, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_munmap, 3, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_sigaltstack, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{std::size(program), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
  }

  void SetOptions(long options) {
    ptrace(PTRACE_SETOPTIONS, child_, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | options);
  }
  bool Continue() {
    if (HasEnded()) return false;
    const bool is_trap = (WSTOPSIG(status_) & 0x7F) == SIGTRAP;
    const long signal = is_trap || WSTOPSIG(status_) == SIGSTOP ? 0 : WSTOPSIG(status_);
    ptrace(PTRACE_SYSCALL, child_, nullptr, signal);
    Wait();
    return !HasEnded();
  }
  void Wait() { waitpid(child_, &status_, 0); }
  bool HasEnded() const { return !WIFSTOPPED(status_); }
  bool IsAtCall() const { return WIFSTOPPED(status_) && WSTOPSIG(status_) == (SIGTRAP | 0x80); }

  pid_t child_;
  int status_ = 0;
};

class InterruptedSave : public testing::Test {
 protected:
  InterruptedSave() {
    CResourceList list(&sea_, L"a list");
    sea_.Save(file_.name());
    old_ = file_.bytes();
    list.AddLineTail()->SetSeaLine(std::wstring(10000, L'n').c_str());  // more than one write
    sea_.Save(file_.name());
    new_ = file_.bytes();
  }

  void SetUp() override {
    if (TracedSave(sea_, file_.name()).End() == not_traceable) {
      GTEST_SKIP() << "no process may be traced here, or its calls refused";
    }
  }

  // A save over the old file.
  TracedSave Begin() const {
    std::ofstream(file_.path(), std::ios::binary) << old_;
    return TracedSave(sea_, file_.name());
  }

  std::string Content() const {
    const std::string bytes = file_.bytes();
    return bytes == old_ ? "old" : bytes == new_ ? "new" : "neither";
  }

  // What stands beside the file and bears its name.
  std::vector<std::string> Remains() const {
    std::vector<std::string> remains;
    for (const auto& entry : fs::directory_iterator(fs::path(file_.path()).parent_path())) {
      const std::string path = entry.path().string();
      if (path.starts_with(file_.path() + ".")) remains.push_back(path);
    }
    return remains;
  }

  CResourceSea sea_;
  const ScratchFile file_;
  std::string old_;
  std::string new_;
};

TEST_F(InterruptedSave, KilledAtAnyCallLeavesTheOldSeaOrTheNewOneAndNoHindrance) {
  std::set<std::string> left;
  std::size_t most_remains = 0;
  // The process lives as long as the condition.
  for (int stop = 1; !HasFailure() && Begin().RunToStop(stop); ++stop) {
    SCOPED_TRACE(stop);
    left.insert(Content());

    // Numbers of processes come again: what remains is where this process will look next.
    const std::vector<std::string> remains = Remains();
    most_remains = std::max(most_remains, remains.size());
    for (const std::string& path : remains) {
      fs::rename(path,
                 file_.path() + "." + std::to_string(getpid()) + path.substr(path.rfind('-')));
    }
    EXPECT_TRUE(sea_.Save(file_.name()));
    EXPECT_EQ(Content(), "new");
    EXPECT_EQ(Remains().size(), remains.size());
    for (const std::string& path : Remains()) fs::remove(path);
  }
  EXPECT_EQ(left, (std::set<std::string>{"new", "old"}));
  EXPECT_EQ(most_remains, 1U);
}

TEST_F(InterruptedSave, RefusedAnyCallReportsItOrDoesWithout) {
  std::set<long> needed;
  for (int call = 1; !HasFailure(); ++call) {
    SCOPED_TRACE(call);
    TracedSave save = Begin();
    if (!save.RunToStop(2 * call - 1)) break;
    const long number = save.RefuseCall();
    EXPECT_FALSE(number == SYS_write && needed.contains(SYS_fsync)) << "written behind the sync";
    const int end = save.End();
    EXPECT_TRUE(end == saved || end == not_saved) << end;
    EXPECT_EQ(Content(), end == saved ? "new" : "old");
    EXPECT_TRUE(Remains().empty());
    if (end == not_saved) needed.insert(number);
  }
  for (const long number : {SYS_write, SYS_fsync, SYS_close}) {
    EXPECT_TRUE(needed.contains(number)) << number;
  }
}

}  // namespace
