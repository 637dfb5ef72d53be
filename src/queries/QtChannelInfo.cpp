// Chains share their ends, so that a load steps from each channel once per test step and no more: a
// walk stops where an earlier one of the same test step has been, and what it finds there holds for
// all channels on its way.
#include "queries/QtChannelInfo.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "frame/QtParamStore.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

constexpr int no_channel = -1;
constexpr int every_mode = -1;

// Closed chains, each of them once, beginning with its lowest channel.
class ClosedChains {
 public:
  void Report(std::vector<int> chain, int mode) {
    std::rotate(chain.begin(), std::min_element(chain.begin(), chain.end()), chain.end());
    const auto [reported, is_new] = chains_.insert(std::move(chain));
    if (!is_new) return;
    const int key[] = {reported->front(), mode};
    const LogSubject subject(L"<TChannelInheritance>", key);
    PrWin::Output(PrWin::category_data_base, PrWin::style_info,
                  L"CQtChannelInfo::BuildBaseChannelLookup(): Parameter database: Channel %d "
                  L"inherits from itself in Mode %d, over %d channel(s), ending the walk there\n",
                  reported->front(), mode, static_cast<int>(reported->size()));
  }

 private:
  std::set<std::vector<int>> chains_;
};

// The walks of one test step.
class Walks {
 public:
  Walks(const CQtChannelInfo& channels, int mode, ClosedChains& closed_chains)
      : channels_(&channels), mode_(mode), closed_chains_(&closed_chains) {}

  QVRefFlag From(int channel) {
    if (!ends_.contains(channel)) Walk(channel);
    return *ends_.at(channel);
  }

 private:
  void Walk(int channel) {
    std::vector<int> path;
    do {
      path.push_back(channel);
      ends_[channel] = std::nullopt;
      channel = channels_->ParentChannel(mode_, channel);
    } while (channel != no_channel && !ends_.contains(channel));
    if (channel == no_channel) return Settle(path, {path.back(), 0});
    if (!ends_.at(channel)) path = SettleClosed(path, channel);
    Settle(path, *ends_.at(channel));
  }

  // From the end of the path back to its start, gathering the types.
  void Settle(const std::vector<int>& path, QVRefFlag end) {
    std::for_each(path.rbegin(), path.rend(), [&](int channel) {
      end.flags |= TypeOf(channel);
      ends_[channel] = end;
    });
  }

  // From `entry` on the path is closed: each channel there ends at the one before itself. What is
  // left is the path in front of it.
  std::vector<int> SettleClosed(const std::vector<int>& path, int entry) {
    const auto first = std::find(path.begin(), path.end(), entry);
    const std::vector<int> chain(first, path.end());
    int types = 0;
    for (const int channel : chain) types |= TypeOf(channel);
    int before = chain.back();
    for (const int channel : chain) {
      ends_[channel] = QVRefFlag(before, types);
      before = channel;
    }
    closed_chains_->Report(chain, mode_);
    return {path.begin(), first};
  }

  int TypeOf(int channel) const { return static_cast<int>(channels_->ResamplingType(channel)); }

  const CQtChannelInfo* channels_;
  int mode_;
  ClosedChains* closed_chains_;
  // By channel; empty while the walk is under way. No hash of ids, which a file could make collide.
  std::map<int, std::optional<QVRefFlag>> ends_;
};

}  // namespace

CQtChannelInfo::CQtChannelInfo(const CQtParamStore& param_store, const CQtSpeedInfo& speeds)
    : store_(&param_store), speed_info_(&speeds), base_channels_(L"<PiBaseChannelId>") {}

void CQtChannelInfo::Build() {
  base_channels_.Purge();
  ClosedChains closed_chains;
  for (const auto& mode : store_->Table<L"<TMode>">()) {
    Walks walks(*this, mode.first[0], closed_chains);
    for (const auto& channel : store_->Table<L"<TChannel>">()) {
      const QIdx2 key(mode.first[0], channel.first[0]);
      base_channels_.insert(base_channels_.end(), {key, walks.From(key[1])});
    }
  }
}

int CQtChannelInfo::ParentChannel(int mode, int channel) const {
  const auto& parents = store_->Table<L"<TChannelInheritance>">();
  const QVRefIdx* const row = RowOf(parents, {channel, mode});
  if (row != nullptr) return row->ref;
  return FieldOr(parents, {channel, every_mode}, &QVRefIdx::ref, no_channel);
}

unsigned CQtChannelInfo::ResamplingType(int channel) const {
  return FieldOr(store_->Table<L"<TChannelProperty>">(), channel,
                 &QVChannelProperty::resampling_type, 0U);
}

int CQtChannelInfo::BaseChannel(int mode, int channel) const {
  return FieldOr(base_channels_, {mode, channel}, &QVRefFlag::ref, 0);
}

int CQtChannelInfo::ChannelFlags(int mode, int channel) const {
  return FieldOr(base_channels_, {mode, channel}, &QVRefFlag::flags, 0);
}
