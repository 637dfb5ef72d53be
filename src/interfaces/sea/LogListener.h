// What log lines speak of, and who listens to them on one thread.
//
// A log line says in words which row it means. Whoever has to find that row again listens: then the
// line comes with the subject that the code around it has named. Without a listener a subject costs
// two stores, and the line goes its usual way, to the sink.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "interfaces/Export.h"

namespace kestrin {

// The row that the log lines of this thread are about while this lives; the innermost one counts.
class KESTRIN_API LogSubject {
 public:
  // A row that is being read. Its line is that of CLake::CNode::bytes, or of a sea in that form,
  // and need not last.
  explicit LogSubject(const wchar_t* table);
  // A row that has been read, by its key. The ids must outlive this.
  LogSubject(const wchar_t* table, std::span<const int> ids);
  LogSubject(const LogSubject&) = delete;
  LogSubject& operator=(const LogSubject&) = delete;
  ~LogSubject();

  const wchar_t* section;
  std::optional<std::string_view> line;
  std::span<const int> key;

 private:
  const LogSubject* around_;
};

// Takes what this thread logs while it lives, before any sink; of two the inner one takes it. The
// subject is null where none is named. What `take` throws comes out of the operation that logged.
class KESTRIN_API LogListener {
 public:
  using Take = std::function<void(std::wstring_view text, const LogSubject* subject)>;

  explicit LogListener(Take take);
  LogListener(const LogListener&) = delete;
  LogListener& operator=(const LogListener&) = delete;
  ~LogListener();

  // True if somebody on this thread listens, and has got the text.
  static bool Tell(std::wstring_view text);

 private:
  Take take_;
  const LogListener* around_;
};

}  // namespace kestrin
