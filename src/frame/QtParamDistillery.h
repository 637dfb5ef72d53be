// The store together with everything that is derived from its tables, and the flag that says
// whether a data base has been loaded. The one of the process stands in the server.
#pragma once

#include <memory>

#include "frame/QtParamStore.h"

class CQtParamDerived;

class KESTRIN_API CQtParamDistillery : public CQtParamStore {
 public:
  CQtParamDistillery();
  ~CQtParamDistillery();

  // The load. False if the candidate lake is empty or its version refused, with nothing changed; or
  // if a relative limit names an unknown parameter, with the tables and all derived information
  // replaced. In both cases `initialized` keeps its value.
  bool ReadTablesFromCandidateLake();

  // Why the last load gave false; no reason after one that gave true, and before any.
  const kestrin::Refusal& LastRefusal() const { return last_refusal; }

  const CQtParamDerived& Derived() const { return *derived; }

  // The application signal that carries time, as the last load of the process found it; -1 if there
  // is none.
  static int TimeSignalId();

 private:
  friend class CQtParamServer;
  friend class CQtParamInstance;

  std::unique_ptr<CQtParamDerived> derived;  // never null
  bool initialized = false;
  kestrin::Refusal last_refusal;
};
