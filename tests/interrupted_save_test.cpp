// What a crash or a refusing system leaves of a sea that is being saved or loaded. That runs in a
// process of its own, which stops before and behind each of its system calls: there it is killed,
// or the call is refused; and so with every one of them in turn.

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
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "interfaces/sea/PrWin.h"
#include "interfaces/sea/ResourceSea.h"
#include "lake_bytes.h"

namespace {

namespace fs = std::filesystem;

// How a process ends.
constexpr int done = 0;
constexpr int not_done = 1;
constexpr int not_traceable = 2;
constexpr int half_done = 3;

class TracedProcess {
 public:
  explicit TracedProcess(const std::function<int()>& run) : child_(fork()) {
    if (child_ == 0) Run(run);
    Wait();
    SetOptions(PTRACE_O_TRACESECCOMP);
  }
  TracedProcess(const TracedProcess&) = delete;
  TracedProcess& operator=(const TracedProcess&) = delete;
  ~TracedProcess() {
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
  [[noreturn]] static void Run(const std::function<int()>& run) noexcept {
    PrWin::SetSink([](std::wstring_view, auto, auto) {});
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(not_traceable);
    raise(SIGSTOP);
    if (!MakeCallsRefusable()) _exit(not_traceable);
    _exit(run());
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
    TracedProcess probe([] { return done; });
    const bool is_named = probe.RunToStop(1) && probe.RefuseCall() == SYS_prctl;
    if (!is_named || probe.End() != done) {
      GTEST_SKIP() << "no process may be traced here, or its calls refused";
    }
  }

  // A save over the old file.
  TracedProcess Begin() const {
    std::ofstream(file_.path(), std::ios::binary) << old_;
    return TracedProcess([this] { return sea_.Save(file_.name()) ? done : not_done; });
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
    TracedProcess save = Begin();
    if (!save.RunToStop(2 * call - 1)) break;
    const long number = save.RefuseCall();
    EXPECT_FALSE(number == SYS_write && needed.contains(SYS_fsync)) << "written behind the sync";
    const int end = save.End();
    EXPECT_TRUE(end == done || end == not_done) << end;
    EXPECT_EQ(Content(), end == done ? "new" : "old");
    EXPECT_TRUE(Remains().empty());
    if (end == not_done) needed.insert(number);
  }
  for (const long number : {SYS_write, SYS_fsync, SYS_close}) {
    EXPECT_TRUE(needed.contains(number)) << number;
  }
}

// A sea that is whole in front of the place where the medium fails is refused, too.
TEST_F(InterruptedSave, ALoadRefusedAnyCallLeavesTheSeaOrDoesWithout) {
  std::ofstream(file_.path(), std::ios::binary) << old_ << std::string(50000, '\n');
  const auto load = [this] {
    CResourceSea sea;
    CResourceList(&sea, L"before").AddLineTail();
    const bool loaded = sea.Load(file_.name());
    if (sea.IsListEntry(L"a list") != loaded || sea.IsListEntry(L"before") == loaded) {
      return half_done;
    }
    return loaded ? done : not_done;
  };
  EXPECT_EQ(TracedProcess(load).End(), done);
  int reads = 0;
  for (int call = 1; !HasFailure(); ++call) {
    SCOPED_TRACE(call);
    TracedProcess process(load);
    if (!process.RunToStop(2 * call - 1)) break;
    const bool is_read = process.RefuseCall() == SYS_read;
    const int end = process.End();
    EXPECT_TRUE(end == not_done || (end == done && !is_read)) << end;
    reads += is_read ? 1 : 0;
  }
  EXPECT_GT(reads, 3);
}

}  // namespace
