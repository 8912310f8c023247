#include "commands/CardList.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t N_SLOTS = 10;
constexpr std::chrono::seconds TIME_TO_CONNECT{1};
constexpr int TIMEOUT = 1;
constexpr int REPLY_WAIT_TIME = 2;

const ObjectIdContainer& describingOids()
{
    static const ObjectIdContainer describing = {oids::CARD_NAME, oids::CARD_SOURCE, oids::CARD_UPTIME};
    return describing;
}

// Asks one slot what is in it. All slots are asked at the same time: empty ones cost no more than one wait.
class SlotInquiry : private OBappsToICSC_1_0_PR {
public:
    SlotInquiry(OBcomponent& component, std::uint32_t slot) : m_slot(slot), m_proxy(component)
    {
        m_proxy.setReplyWaitTime(REPLY_WAIT_TIME);
        const std::string name = "ICSCClient" + std::to_string(slot) + ".ReadWriteAsync";
        m_proxy.subscribe_asynchronous(name.c_str(), this);
    }

    std::uint32_t slot() const { return m_slot; }
    bool isServed() const { return m_isServed; }
    bool isAnswered() const { return m_isAnswered; }
    CallOutcome outcome() const { return m_outcome; }
    const OidTypeValueMap& values() const { return m_values; }

    void askOnceConnected()
    {
        if (m_isServed || !m_proxy.isConnected()) {
            return;
        }
        buffer_t tlvs;
        int result = 0;
        convertObjectIdContainerToTlvs(describingOids(), tlvs);
        m_isServed = true;
        m_isAnswered = m_proxy.ICSCRead(TIMEOUT, tlvs, result) != 0;
    }

private:
    void ICSCReadReply(const OBmessage&, const buffer_t& tlvs, int result) override
    {
        m_isAnswered = true;
        m_outcome = result;
        if ((result == 0) && !convertTlvsToOidTypeValueMap(m_slot, tlvs, m_values, &describingOids())) {
            m_outcome = UNSOUND_ANSWER;
        }
    }

    const std::uint32_t m_slot;
    bool m_isServed = false;
    bool m_isAnswered = false;
    CallOutcome m_outcome = NO_ANSWER;
    OidTypeValueMap m_values;
    OBappsToICSC_1_0_P m_proxy;
};

using Inquiries = std::vector<std::unique_ptr<SlotInquiry>>;

void inquire(OBcomponent& component, const Inquiries& inquiries)
{
    const Clock::time_point connected = Clock::now() + TIME_TO_CONNECT;
    const Clock::time_point answered = connected + std::chrono::seconds(REPLY_WAIT_TIME + 1);
    const auto isPending = [&] {
        for (const auto& pInquiry : inquiries) {
            if (pInquiry->isServed() && !pInquiry->isAnswered()) {
                return Clock::now() < answered;
            }
        }
        return false;
    };
    while ((Clock::now() < connected) || isPending()) {
        for (const auto& pInquiry : inquiries) {
            pInquiry->askOnceConnected();
        }
        component.dispatch(std::chrono::milliseconds(20));
    }
}

std::string textOf(const SlotInquiry& inquiry, std::uint32_t oid)
{
    const TypeValueRecord& record = inquiry.values().at(oid);
    return textOfValue(record.type, record.value);
}

void addRow(TextTable& table, const SlotInquiry& inquiry)
{
    const std::string slot = std::to_string(inquiry.slot());
    if (inquiry.outcome() != 0) {
        table.addRow({slot, "-", "-", "failed: " + describeResult(inquiry.outcome())}, Colour::RED);
    } else {
        table.addRow({slot, textOf(inquiry, oids::CARD_UPTIME) + " s", textOf(inquiry, oids::CARD_NAME),
                      textOf(inquiry, oids::CARD_SOURCE)});
    }
}

Json jsonOf(const SlotInquiry& inquiry)
{
    Json json = {{"slot", inquiry.slot()}};
    if (inquiry.outcome() != 0) {
        json["failure"] = jsonOfResult(inquiry.outcome());
    }
    for (const auto& [oid, record] : inquiry.values()) {
        json[nameOfOid(oid)] = jsonOfValue(record);
    }
    return json;
}

void tellJson(const Inquiries& inquiries, ResultOutput& output)
{
    for (const auto& pInquiry : inquiries) {
        if (pInquiry->isServed()) {
            output.writeLine(lineOfJson(jsonOf(*pInquiry)));
        }
    }
}

void tellTable(const Inquiries& inquiries, ResultOutput& output)
{
    TextTable table({{"Slot", Alignment::RIGHT},
                     {"Uptime", Alignment::RIGHT},
                     {"Name", Alignment::LEFT},
                     {"Source", Alignment::LEFT}});
    for (const auto& pInquiry : inquiries) {
        if (pInquiry->isServed()) {
            addRow(table, *pInquiry);
        }
    }
    table.write(output);
}

}  // namespace

ExitCode listCards(bool isJson)
{
    OBcomponent component("brantel");
    Inquiries inquiries;
    for (std::uint32_t slot = 0; slot < N_SLOTS; ++slot) {
        inquiries.push_back(std::make_unique<SlotInquiry>(component, slot));
    }
    inquire(component, inquiries);

    const auto isServed = [](const auto& pInquiry) { return pInquiry->isServed(); };
    const bool isAnyServed = std::any_of(inquiries.begin(), inquiries.end(), isServed);
    ResultOutput output;
    if (isJson) {
        tellJson(inquiries, output);
    } else if (isAnyServed) {
        tellTable(inquiries, output);
    } else {
        output.writeLine("no slot is served");
    }
    output.finish();
    return isAnyServed ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}

ExitCode listObjects(bool isJson)
{
    ResultOutput output;
    TextTable table({{"OID", Alignment::LEFT},
                     {"Name", Alignment::LEFT},
                     {"Type", Alignment::LEFT},
                     {"Access", Alignment::LEFT},
                     {"Meaning", Alignment::LEFT}});
    for (const OidEntry& entry : oidTable()) {
        const std::string type = entry.type ? nameOfType(*entry.type) : "any";
        if (isJson) {
            output.writeLine(lineOfJson({{"oid", entry.oid},
                                         {"name", entry.name},
                                         {"type", type},
                                         {"writable", entry.isWritable},
                                         {"meaning", entry.meaning}}));
        } else {
            const std::string access = entry.isWritable ? "writable" : "read only";
            table.addRow({numberOfOid(entry.oid), entry.name, type, access, entry.meaning});
        }
    }
    if (!isJson) {
        table.write(output);
    }
    output.finish();
    return EXIT_FINE;
}
