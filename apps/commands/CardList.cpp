#include "commands/CardList.h"

#include <chrono>
#include <memory>
#include <vector>

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t N_SLOTS = 10;
constexpr std::chrono::seconds TIME_TO_CONNECT{1};
constexpr int TIMEOUT = 1;
constexpr int REPLY_WAIT_TIME = 2;

const ObjectIdContainer DESCRIBING_OIDS = {oids::CARD_NAME, oids::CARD_SOURCE, oids::CARD_UPTIME};

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
    std::int32_t result() const { return m_result; }
    const OidTypeValueMap& values() const { return m_values; }

    void askOnceConnected()
    {
        if (m_isServed || !m_proxy.isConnected()) {
            return;
        }
        buffer_t tlvs;
        int result = 0;
        convertObjectIdContainerToTlvs(DESCRIBING_OIDS, tlvs);
        m_isServed = true;
        m_isAnswered = m_proxy.ICSCRead(TIMEOUT, tlvs, result) != 0;
    }

private:
    void ICSCReadReply(const OBmessage&, const buffer_t& tlvs, int result) override
    {
        m_isAnswered = true;
        m_result = result;
        if ((result == 0) && !convertTlvsToOidTypeValueMap(m_slot, tlvs, m_values, &DESCRIBING_OIDS)) {
            m_result = NO_ANSWER;
        }
    }

    const std::uint32_t m_slot;
    bool m_isServed = false;
    bool m_isAnswered = false;
    std::int32_t m_result = NO_ANSWER;
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
    return printable(textOfValue(record.type, record.value));
}

std::vector<std::string> rowOf(const SlotInquiry& inquiry)
{
    const std::string slot = "slot " + std::to_string(inquiry.slot());
    if (inquiry.result() != 0) {
        return {slot, "-", "-", describeResult(inquiry.result())};
    }
    return {slot, textOf(inquiry, oids::CARD_NAME), textOf(inquiry, oids::CARD_SOURCE),
            "up " + textOf(inquiry, oids::CARD_UPTIME) + " s"};
}

Json jsonOf(const SlotInquiry& inquiry)
{
    Json json = {{"slot", inquiry.slot()}};
    if (inquiry.result() != 0) {
        json["failure"] = jsonOfResult(inquiry.result());
    }
    for (const auto& [oid, record] : inquiry.values()) {
        json[nameOfOid(oid)] = jsonOfValue(record);
    }
    return json;
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

    ResultOutput output;
    std::vector<std::vector<std::string>> rows;
    for (const auto& pInquiry : inquiries) {
        if (pInquiry->isServed() && isJson) {
            output.writeLine(lineOfJson(jsonOf(*pInquiry)));
        }
        if (pInquiry->isServed()) {
            rows.push_back(rowOf(*pInquiry));
        }
    }
    for (const std::string& line : isJson ? std::vector<std::string>() : alignedLines(rows)) {
        output.writeLine(line);
    }
    output.finish();
    return rows.empty() ? EXIT_NEGATIVE_ANSWER : EXIT_FINE;
}

ExitCode listObjects(bool isJson)
{
    ResultOutput output;
    std::vector<std::vector<std::string>> rows;
    for (const OidEntry& entry : oidTable()) {
        const std::string type = entry.type ? nameOfType(*entry.type) : "any";
        const std::string access = entry.isWritable ? "writable" : "read only";
        rows.push_back({numberOfOid(entry.oid), entry.name, type, access, entry.meaning});
        if (isJson) {
            const Json json = {{"oid", entry.oid},
                               {"name", entry.name},
                               {"type", type},
                               {"writable", entry.isWritable},
                               {"meaning", entry.meaning}};
            output.writeLine(lineOfJson(json));
        }
    }
    for (const std::string& line : isJson ? std::vector<std::string>() : alignedLines(rows)) {
        output.writeLine(line);
    }
    output.finish();
    return EXIT_FINE;
}
