// Channels and the channels that they are derived from. <TChannelInheritance> gives a channel its
// parent, for one test step or for all without a row of their own; a chain of parents ends at the
// base channel. Each load walks the chain of every channel in every test step and keeps where it
// ends and what the channels on it are resampled for, so that a query is one search however long
// the chain:
//
//   <PiBaseChannelId>   mode, channel | base channel, resampling types of the chain together
//
// frame/QtParamInstance.h tells where a chain ends that closes on itself. The resampling types are
// then those of all channels met, and the line of the log names the channels and the first test
// step in which the chain stands.
#pragma once

#include "tables/MapContainers.h"
#include "tables/QParamBaseTable.h"
#include "tables/RowRecords.h"

class CQtParamStore;
class CQtSpeedInfo;

// A reference and a set of bits.
struct QVRefFlag : QValueBase, TableType::Fields<QVRefFlag> {
  int ref = -1;
  int flags = 0;

  QVRefFlag() = default;
  QVRefFlag(int id, int bits) : ref(id), flags(bits) {}

  static constexpr auto fields() {
    return List(At("ref", &QVRefFlag::ref), At("flags", &QVRefFlag::flags));
  }
};

using CBaseChannels = CUniqueTreeMap<QIdx2, QVRefFlag>;

// Modes are base modes here.
class CQtChannelInfo {
 public:
  CQtChannelInfo(const CQtParamStore& param_store, const CQtSpeedInfo& speeds);

  // Derives the table anew.
  void Build();

  // Logs the derived table; all rows with limit 0.
  void Dump(int limit) const { kestrin::DumpRows(base_channels_, limit); }

  // The derived table.
  const CQParamTypedTable<CBaseChannels>& BaseChannels() const { return base_channels_; }

  // Read from the tables as they are: the direct parent or -1, and the channel's own type or 0.
  int ParentChannel(int mode, int channel) const;
  unsigned ResamplingType(int channel) const;

  // As the last load derived them; 0 for a pair that it didn't have.
  int BaseChannel(int mode, int channel) const;
  int ChannelFlags(int mode, int channel) const;

 private:
  const CQtParamStore* store_;
  [[maybe_unused]] const CQtSpeedInfo* speed_info_;  // at hand for channels that follow a rotor
  CQParamTypedTable<CBaseChannels> base_channels_;
};
