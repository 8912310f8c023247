// Whether a client calls a slot at all.

#include "cards/CardClient.h"

#include <thread>

#include <gtest/gtest.h>

#include "cards/CardServer.h"
#include "cards/OidTable.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

constexpr std::uint32_t SLOT = 3;

class CardClientTest : public testing::Test {
protected:
    const RuntimeDirectory m_folder;
};

TEST_F(CardClientTest, MakesNoCallWhereNoCardIs)
{
    CardClient client(SLOT);
    EXPECT_FALSE(client.mayBeServed(std::chrono::milliseconds(0)));
    EXPECT_EQ(client.read({1, 2}, 1).failures,
              (std::map<std::uint32_t, CallOutcome>{{1, NOT_SERVED}, {2, NOT_SERVED}}));
    EXPECT_EQ(client.write({{1, OID_TYPE_BOOL, true}}, 1), NOT_SERVED);
}

TEST_F(CardClientTest, WaitsForACardThatStarts)
{
    CardClient client(SLOT);
    EXPECT_FALSE(client.mayBeServed(std::chrono::milliseconds(0)));
    OBcomponent component("card");
    std::thread starting([&] {
        Card card(SLOT, "", {});
        CardServer server(component, SLOT, card);
        server.run();
    });
    EXPECT_TRUE(client.mayBeServed(std::chrono::minutes(1)));
    EXPECT_TRUE(client.read({oids::CARD_LED}, 60).failures.empty());
    component.stop();
    starting.join();
}

}  // namespace
}  // namespace brantel
