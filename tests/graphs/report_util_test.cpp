#include "graphs/report_util.h"

#include <gmock/gmock.h>

#include "platform/object.h"
#include "tests/support/scripted_engine.h"

namespace orvo::test {
namespace {

TEST(ReportUtilTest, EmptyRecordsHaveNoText) {
  ScriptedEngine engine;
  ReportUtil util;
  AddressRecord record{.valid = 1, .type = kAddressIpx, .length = 2, .bytes = {1, 2}};
  std::u16string text;
  util.FormatAddress(record, true, &text);
  EXPECT_EQ(text, u"IPX 1.2");
  util.FormatAddress(record, false, &text);
  EXPECT_EQ(text, u"1.2");
  for (AddressRecord empty : {AddressRecord{.valid = 0, .type = kAddressIpx}, AddressRecord{.valid = 1, .type = 0}}) {
    text = u"left over";
    util.FormatAddress(empty, true, &text);
    EXPECT_EQ(text, u"");
  }
}

TEST(ReportUtilTest, RatesFollowTheMedium) {
  EXPECT_THAT(ReportUtil::DataRateList(0, kSubtype80211b), testing::ElementsAre(2, 4, 11, 22));
  EXPECT_THAT(ReportUtil::DataRateList(0, kSubtype80211a),
              testing::ElementsAre(12, 18, 24, 36, 48, 72, 96, 108, 144, 192, 216));
  EXPECT_EQ(ReportUtil::DataRateList(0, kSubtype80211bg).size(), 17U);
  EXPECT_EQ(ReportUtil::DataRateList(0, 9).size(), 4U);
  EXPECT_THAT(ReportUtil::DataRateList(1, kSubtype80211bg), testing::IsEmpty());
  EXPECT_EQ(ReportUtil::RateTitle(11, RateTitleKind::kPackets), u"5.5 Mbits/s Packets");
  EXPECT_EQ(ReportUtil::RateTitle(22, RateTitleKind::kBytes), u"11 Mbits/s Bytes");
  EXPECT_EQ(ReportUtil::RateTitle(108, RateTitleKind::kRate), u"54 Mbits/s");
  EXPECT_EQ(ReportUtil::RateTitle(108, static_cast<RateTitleKind>(9)), u"54 Mbits/s");
}

/// A context that may have a site, which may be the engine's.
class SitedContext final : public Object<IObjectWithSite, IEngineSite> {
 public:
  Status SetSite(IUnknown* /*site*/) override { return E_NOTIMPL; }
  Status GetSite(const Guid& iid, void** site) override {
    if (!has_site) {
      *site = nullptr;
      return E_FAIL;
    }
    return QueryInterface(iid, site);
  }
  bool has_site = true;
  bool is_engine_site = true;

 protected:
  void* FindInterface(const Guid& iid) override {
    return iid == IEngineSite::kIid && !is_engine_site ? nullptr : Object::FindInterface(iid);
  }
};

TEST(ReportUtilTest, KnowsWhetherACaptureRunsBehindTheContext) {
  ScriptedEngine engine;
  EXPECT_TRUE(ReportUtil::LacksSite(engine.Context().get())) << "the context offers no site at all";
  auto context = MakeObject<SitedContext>();
  IUnknown* asked = static_cast<IObjectWithSite*>(context.get());
  EXPECT_FALSE(ReportUtil::LacksSite(asked));
  context->is_engine_site = false;
  EXPECT_TRUE(ReportUtil::LacksSite(asked));
  context->has_site = false;
  EXPECT_TRUE(ReportUtil::LacksSite(asked));
}

}  // namespace
}  // namespace orvo::test
