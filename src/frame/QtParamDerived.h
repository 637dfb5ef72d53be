// What a load computes from the tables and the tables don't hold directly. Made once with the store
// and built anew by each load; clearing or purging the tables leaves it as the last load made it.
#pragma once

#include "frame/DataSource.h"
#include "queries/Grex.h"
#include "queries/QtChannelInfo.h"
#include "queries/QtModeInfo.h"
#include "queries/QtRotorInfo.h"
#include "queries/QtSpeedInfo.h"
#include "spec/QtSpecIntervalStore.h"

class CQtParamStore;

class CQtParamDerived {
 public:
  explicit CQtParamDerived(CQtParamStore& param_store);
  CQtParamDerived(const CQtParamDerived&) = delete;
  CQtParamDerived& operator=(const CQtParamDerived&) = delete;

  // Runs inside a load, behind the reading of the tables.
  void Build();

  // Writes into each key of <TGrex15> the instrument of its parameter. False at the first row whose
  // parameter is not in <TInstrumentParam>: the rows before it are done, those behind it untouched.
  bool CompleteRelativeLimitKeys();

  // Logs base channels and intervals, and not the order sources; all rows with limit 0.
  void Dump(int limit) const;

  // The trigger of an instrument parameter, or -1.
  int TriggerId(int instrument_param) const;

  const CQtSpeedInfo& SpeedInfo() const { return speed_info_; }
  const CQtSpecIntervalStore& SpecIntervals() const { return spec_intervals_; }
  const CQtChannelInfo& ChannelInfo() const { return channel_info_; }
  const CQtRotorInfo& RotorInfo() const { return rotor_info_; }
  const CQtModeInfo& ModeInfo() const { return mode_info_; }
  const CGrexInfo& GrexInfo() const { return grex_info_; }

 private:
  void ExpandResampling();

  CQtParamStore* store_;
  // Filled by Build, so that reading it from a query changes nothing.
  mutable DataSource::CCandidateSeaDataSource<int> trigger_ids_;
  CQtSpeedInfo speed_info_;
  CQtSpecIntervalStore spec_intervals_;
  CQtChannelInfo channel_info_;
  CQtRotorInfo rotor_info_;
  CQtModeInfo mode_info_;
  CGrexInfo grex_info_;
};
