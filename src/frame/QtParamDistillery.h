// A data base: the store together with everything that is derived from its tables, and the flag
// that says whether one has been loaded. That of the process stands in the server. A host that
// wants another one beside it makes it, and asks through handles on it:
//
//   CQtParamDistillery mine;
//   CQtParamInstance params(&mine);
//   params.ReadTablesFromCandidateLake();
//
// Each data base answers from its own tables, and may be loaded beside queries on another one; the
// handles must not outlive it. What the process has once stays so: the candidate lake, the log, the
// user's language, the seas and their setting ShowIdsInDialogs, and TimeSignalId, which every load
// sets. <TAutoModeParam> of each data base falls back on the application sea and is written to it
// by WriteTablesToLocalSeas. The controls over keys show the server's data base.
#pragma once

#include <memory>

#include "frame/QtParamStore.h"

class CQtParamDerived;

class KESTRIN_API CQtParamDistillery : public CQtParamStore {
 public:
  CQtParamDistillery();
  ~CQtParamDistillery();

  // CQtParamStore::Clear; no data base counts as loaded then.
  void Clear();

  // The load. False if the candidate lake is empty or its version refused, with nothing changed; or
  // if a relative limit names an unknown parameter, with the tables and all derived information
  // replaced. In both cases `initialized` keeps its value.
  bool ReadTablesFromCandidateLake();

  // Why the last load gave false; no reason after one that gave true, and before any.
  const kestrin::Refusal& LastRefusal() const { return last_refusal_; }

  // For the library's own use: hosts ask the handle.
  const CQtParamDerived& Derived() const { return *derived_; }

  // The application signal that carries time, as the last load of the process found it; -1 if there
  // is none.
  static int TimeSignalId();

 private:
  friend class CQtParamInstance;
  friend struct kestrin::LoadForInspection;

  // Derives what the tables don't hold; false if a relative limit names an unknown parameter.
  bool Complete();

  std::unique_ptr<CQtParamDerived> derived_;  // never null
  bool initialized_ = false;
  kestrin::Refusal last_refusal_;
};
