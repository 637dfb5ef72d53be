// Spectrum intervals beyond what cases/spec_intervals.txt tells: what an evaluation keeps.
#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "support.h"

namespace {

using Entry = QVSpecIntervalEntry;
using Spec = CQtSpecInterval;

TEST(SpecIntervals, AreMadeOf32OrdersAtMost) {
  TestStore base(
      "<TInstrumentParam>: {\n7 17 p\n}\n<TIpCalcParameter>: {\n7 2 6\n7 3 Hx\n7 4 11\n}\n");
  CQtSpecIntervalStore store(base.store);
  store.Load(33);
  EXPECT_EQ(base.log.Text(), L"QtSpecIntervalStore: nr_orders 33 > max_orders 32.\n");
  EXPECT_TRUE(store.IpSvOfSpec().empty());
  store.Load(32);
  EXPECT_EQ(store.IpSvOfSpec().size(), 1U);
}

// Nothing is looked up anew while base mode and order sources stay.
TEST(SpecIntervals, KeepTheirTestStepAndAssembly) {
  const std::string machine =
      "<TModeProperty>: {\n7 1\n8 2\n}\n<TRotorSpeed>: {\n1 1 2\n1 2 1\n2 1 2\n2 2 -2\n}\n";
  TestStore base(machine + "<TBaseOrder>: {\n2 20\n}\n");
  Spec evaluation(base.params);
  Entry harmonic;
  harmonic.lower().harmonic() = harmonic.upper().harmonic() = 1;
  const auto place = [&](int mode, int assembly) {
    evaluation.LoadTransformParams(mode, 1, assembly);
    float low = -1;
    float high = -1;
    evaluation.FrequencyRange(harmonic, 1, 1, low, high);
    return low;
  };
  EXPECT_EQ(place(8, 2), 20);
  EXPECT_EQ(evaluation.RatioAssembly2SpeedSrc(), 1);
  EXPECT_EQ(place(INT_MAX, INT_MAX), -1);
  EXPECT_EQ(place(7, 2), 10);
  base.Load(machine + "<TBaseOrder>: {\n2 90\n}\n");
  EXPECT_EQ(place(CQtParamInstance::VirtModeGenerateId(7, 1), 2), 10);
  EXPECT_EQ(place(8, 2), 90);
  EXPECT_EQ(place(8, 9), -1);
}

}  // namespace
