// The one object behind all handles of a process.
#pragma once

#include "frame/QtParamDistillery.h"

class KESTRIN_API CQtParamServer {
 public:
  // Makes the server on the first call, with all tables empty. Lives to the end of the process. Any
  // thread.
  static CQtParamServer& Object();

  // Does nothing: the server is complete once Object has returned.
  void Create();

  // Erases the rows, unbinds the tables from their seas and forgets that a data base was loaded.
  // Beside no query, as a load.
  void Clear();

 private:
  friend class CQtParamInstance;

  CQtParamServer();
  CQtParamDistillery& store() { return distillery_; }

  CQtParamDistillery distillery_;
};
