#include "commands/CardList.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <set>
#include <vector>

#include "cards/AsyncReader.h"
#include "cards/OidTable.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "commands/CardJson.h"
#include "common/JsonLine.h"
#include "common/Message.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "message/OBcomponent.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds TIME_TO_CONNECT{1};
constexpr int TIMEOUT = 1;
constexpr int REPLY_WAIT_TIME = 2;

const ObjectIdContainer& identityOids()
{
    static const ObjectIdContainer describing = {oids::CARD_NAME, oids::CARD_SOURCE, oids::CARD_UPTIME};
    return describing;
}

// Asks one slot what is in it. All slots are asked at the same time: empty ones cost no more than one wait.
class SlotInquiry {
public:
    SlotInquiry(OBcomponent& component, std::uint32_t slot) : m_slot(slot), m_proxy(component)
    {
        m_proxy.setReplyWaitTime(REPLY_WAIT_TIME);
        m_proxy.subscribe_asynchronous(icsc::serviceName(slot, icsc::Interface::ASYNC).c_str(), &m_reader);
    }

    std::uint32_t slot() const { return m_slot; }
    bool isServed() const { return m_isServed; }
    bool isAnswered() const { return m_reader.isDone(); }
    std::string obstacle() const { return m_proxy.obstacle(); }
    const OidTypeValueMap& values() const { return m_reader.reading().values; }

    /// 0 if all was read.
    CallOutcome outcome() const
    {
        if (!isAnswered()) {
            return NO_ANSWER;
        }
        const auto& failures = m_reader.reading().failures;
        return failures.empty() ? 0 : failures.begin()->second;
    }

    void askOnceConnected()
    {
        if (!m_isServed && m_proxy.isConnected()) {
            m_isServed = true;
            m_reader.start(ReadPlan(m_slot, identityOids()));
        }
    }

private:
    bool send(const ObjectIdContainer& request)
    {
        buffer_t tlvs;
        int result = 0;
        convertObjectIdContainerToTlvs(request, tlvs);
        return m_proxy.ICSCRead(TIMEOUT, tlvs, result) == 0;
    }

    const std::uint32_t m_slot;
    bool m_isServed = false;
    AsyncReader m_reader{[this](const ObjectIdContainer& request) { return send(request); }};
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
    return valueText(record.type, record.value);
}

void addRow(TextTable& table, const SlotInquiry& inquiry)
{
    const std::string slot = std::to_string(inquiry.slot());
    if (inquiry.outcome() != 0) {
        table.addRow({slot, "-", "-", "failed: " + resultText(inquiry.outcome())}, Colour::RED);
    } else {
        table.addRow({slot, textOf(inquiry, oids::CARD_UPTIME) + " s", textOf(inquiry, oids::CARD_NAME),
                      textOf(inquiry, oids::CARD_SOURCE)});
    }
}

Json jsonOf(const SlotInquiry& inquiry)
{
    Json json = {{"slot", inquiry.slot()}};
    if (inquiry.outcome() != 0) {
        json.update(failureJson(inquiry.outcome()));
    }
    for (const auto& [oid, record] : inquiry.values()) {
        json[objectName(oid)] = valueJson(record);
    }
    return json;
}

// Why slots are not reached that may be served: each reason once.
void printObstacles(const Inquiries& inquiries)
{
    std::set<std::string> obstacles;
    for (const auto& pInquiry : inquiries) {
        obstacles.insert(pInquiry->obstacle());
    }
    obstacles.erase("");
    for (const std::string& obstacle : obstacles) {
        printMessage(obstacle);
    }
}

void printJson(const Inquiries& inquiries, ResultOutput& output)
{
    for (const auto& pInquiry : inquiries) {
        if (pInquiry->isServed()) {
            output.writeLine(jsonLine(jsonOf(*pInquiry)));
        }
    }
}

void printTable(const Inquiries& inquiries, ResultOutput& output)
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
    OBcomponent::requireRoomFor(icsc::N_SLOTS);
    Inquiries inquiries;
    for (std::uint32_t slot = 0; slot < icsc::N_SLOTS; ++slot) {
        inquiries.push_back(std::make_unique<SlotInquiry>(component, slot));
    }
    inquire(component, inquiries);

    const auto isServed = [](const auto& pInquiry) { return pInquiry->isServed(); };
    const bool isAnyServed = std::any_of(inquiries.begin(), inquiries.end(), isServed);
    ResultOutput output;
    if (isJson) {
        printJson(inquiries, output);
    } else if (isAnyServed) {
        printTable(inquiries, output);
    } else {
        output.writeLine("no slot is served");
    }
    output.finish();
    printObstacles(inquiries);
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
        const std::string type = entry.type ? typeText(*entry.type) : "any";
        if (isJson) {
            output.writeLine(jsonLine({{"oid", entry.oid},
                                       {"object", entry.name},
                                       {"type", type},
                                       {"writable", entry.isWritable},
                                       {"meaning", entry.meaning}}));
        } else {
            const std::string access = entry.isWritable ? "writable" : "read only";
            table.addRow({oidText(entry.oid), entry.name, type, access, entry.meaning});
        }
    }
    if (!isJson) {
        table.write(output);
    }
    output.finish();
    return EXIT_FINE;
}

}  // namespace brantel
