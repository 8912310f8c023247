// What a component does with a card: it asks for what it needs, and survives answers that it does not like.

#include <IcscReading.h>
#include <OidValue.h>
#include <RuleSample.h>
#include <brantel/testing/CardDouble.h>
#include <brantel/testing/TemporaryDirectory.h>
#include <gtest/gtest.h>

using namespace brantelTesting;

namespace {

// The component under test.
std::optional<unsigned int> readSpeed(std::uint32_t slot, OidTypeValueMap& values)
{
    if (icsc::readOids(IcscClientProxy::getInstance(), slot, {1}, values) != 0) {
        return std::nullopt;
    }
    return icsc::sampleOf<unsigned int>(values.at(1));
}

class FanTest : public testing::Test {
protected:
    FanTest()
    {
        IcscClientProxy::createInstance();
        IcscClientProxy::getInstance().subscribeInterface(3, m_component);
    }

    ~FanTest() override { IcscClientProxy::deleteInstance(); }

    RuntimeDirectory m_directory;  // no other test's cards; before any component
    CardThread m_card{3};
    OBcomponent m_component{"fan control"};
    OidTypeValueMap m_values;
};

}  // namespace

TEST_F(FanTest, ReadsTheSpeedAgainAndAgain)
{
    m_card->setValue(makeOidValue(1, std::uint16_t{850}));
    EXPECT_EQ(readSpeed(3, m_values), 850U);
    m_card->setValue(makeOidValue(1, std::uint16_t{900}));
    EXPECT_EQ(readSpeed(3, m_values), 900U);

    const std::vector<CardRequest> requests = m_card->takeRequests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].oids, (ObjectIdContainer{1}));
}

TEST_F(FanTest, HasNoSpeedWhenTheCardRefuses)
{
    m_card->setValue(makeOidValue(1, std::uint16_t{850}));
    m_card->setResult(icsc::RESULT_GENERAL_ERROR);
    EXPECT_EQ(readSpeed(3, m_values), std::nullopt);
    EXPECT_TRUE(m_values.empty());
}

TEST_F(FanTest, HasNoSpeedFromASlotWithoutSubscription)
{
    EXPECT_EQ(readSpeed(4, m_values), std::nullopt);
}
