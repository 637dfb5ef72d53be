// Channel look-ups: the questions of the handle.
#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "queries/QtChannelInfo.h"

int CQtParamInstance::ParentChannel(int mode, int channel) const {
  return store_->Derived().ChannelInfo().ParentChannel(VirtMode2BaseMode(mode), channel);
}

int CQtParamInstance::BaseChannel(int mode, int channel) const {
  return store_->Derived().ChannelInfo().BaseChannel(VirtMode2BaseMode(mode), channel);
}

int CQtParamInstance::ChannelFlags(int mode, int channel) const {
  return store_->Derived().ChannelInfo().ChannelFlags(VirtMode2BaseMode(mode), channel);
}

unsigned CQtParamInstance::ChannelResamplingType(int channel) const {
  return store_->Derived().ChannelInfo().ResamplingType(channel);
}

bool CQtParamInstance::ChannelIsSync(int channel) const {
  return (ChannelResamplingType(channel) & channel_sync) != 0;
}

bool CQtParamInstance::ChannelIsMix(int channel) const {
  return (ChannelResamplingType(channel) & channel_mix) != 0;
}

bool CQtParamInstance::ChannelIsFix(int channel) const {
  return (ChannelResamplingType(channel) & channel_fix) != 0;
}
