#include "IcscReading.h"

#include <string>

#include "icsc/OBappsToICSC_1_0_PR.h"
#include "library/cards/ValueTexts.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"
#include "support/Diagnostics.h"

namespace {

const ObjectIdContainer OIDS{1};

class IcscReading : public DiagnosticsTest {
protected:
    IcscReading()
    {
        IcscClientProxy::createInstance();
        client().subscribeInterface(3, m_component);
    }
    ~IcscReading() override { IcscClientProxy::deleteInstance(); }

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    static void answerWith(const std::string& hex, int resultCode, int returned = 0)
    {
        platformDouble::answer = [=](buffer_t& tlvs, int& result) {
            tlvs = bufferOf(hex);
            result = resultCode;
            return returned;
        };
    }

    OBcomponent m_component{"evm"};
    OidTypeValueMap m_values{{9, {OID_TYPE_BOOL, true}}};
};

TEST_F(IcscReading, ReplacesTheValuesOfTheReadingBefore)
{
    answerWith("00000001 00000006 00000001 03 07", 0);
    EXPECT_EQ(icsc::readOids(client(), 3, OIDS, m_values), 0);
    EXPECT_EQ(recordTexts(m_values), (RecordTexts{"1: 3, unsigned char 7"}));
    answerWith("00000001 00000006 00000001 03 08", 0);
    EXPECT_EQ(icsc::readOids(client(), 3, OIDS, m_values), 0);
    EXPECT_EQ(recordTexts(m_values), (RecordTexts{"1: 3, unsigned char 8"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscReading, LeavesNoValuesWhenItFails)
{
    const struct {
        std::string answer;
        int resultCode;
        int returned;
        std::int32_t outcome;
    } cases[] = {
        {"00000001 00000006 00000001 03 07", 7, 0, 7},
        {"00000001 00000006 00000001 03 07", 0, -1, -1},
        {"00000001 00000006 00000002 03 07", 0, 0, -1},
    };
    for (const auto& each : cases) {
        OidTypeValueMap values = m_values;
        answerWith(each.answer, each.resultCode, each.returned);
        EXPECT_EQ(icsc::readOids(client(), 3, OIDS, values), each.outcome) << each.answer;
        EXPECT_TRUE(values.empty()) << each.answer;
    }
}

TEST_F(IcscReading, FailsWithoutASubscription)
{
    const std::string function =
        "int32_t IcscClientProxy::getOidsSync(uint32_t, const ObjectIdContainer&, OidTypeValueMap&)";
    const std::string file = "components/common/brantel/src/IcscClientProxy.cpp";
    for (const std::uint32_t slot : {4U, 10U}) {
        OidTypeValueMap values = m_values;
        EXPECT_EQ(icsc::readOids(client(), slot, OIDS, values), -1) << slot;
        EXPECT_TRUE(values.empty()) << slot;
    }
    EXPECT_EQ(m_diagnostics.take(), (Diagnostics{assertReport("m_pOBappsToICSC_sync[slot] != 0", file, function),
                                                 assertReport("slot < 10", file, function)}));
}

TEST_F(IcscReading, DecodesAnAnswerInPlaceOfTheOneBefore)
{
    for (const char* const value : {"07", "08"}) {
        const buffer_t answer = bufferOf(std::string("00000001 00000006 00000001 03 ") + value);
        EXPECT_TRUE(icsc::decodeAnswer(3, answer, m_values, &OIDS));
        EXPECT_EQ(recordTexts(m_values), (RecordTexts{std::string("1: 3, unsigned char ") + value[1]}));
    }
    EXPECT_FALSE(icsc::decodeAnswer(3, buffer_t(), m_values, &OIDS));
    EXPECT_TRUE(m_values.empty());
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{SourceLines("IfcCardStatusAndControl.cpp")
                              .error("convertTlvsToOidTypeValueMap", "slot=%d: tlvs are empty", 3)});
}

}  // namespace
