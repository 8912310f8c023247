#include "cards/Card.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <arpa/inet.h>

#include "OidValue.h"
#include "cards/OidTable.h"
#include "cards/Tlv.h"
#include "common/PrintableText.h"
#include "message/OBresult.h"

namespace brantel {
namespace {

constexpr int INVALID_NR_OF_TLVS = 0x06000000;

constexpr std::size_t MAX_NAME_LENGTH = 32;  // characters
constexpr std::size_t MAX_LOCATION_LENGTH = 64;
constexpr std::size_t MAX_FAULTS_LENGTH = 256;

template <typename Value>
std::function<int(const boost::any&)> within(int lowest, int highest)
{
    return [lowest, highest](const boost::any& any) {
        const auto value = boost::any_cast<Value>(any);
        return ((value >= lowest) && (value <= highest)) ? icsc::RESULT_OK : icsc::RESULT_WRONG_VALUE;
    };
}

int acceptAny(const boost::any&)
{
    return icsc::RESULT_OK;
}

int checkName(const boost::any& value)
{
    const auto& name = boost::any_cast<const std::string&>(value);
    if (utf8Length(name) < name.size()) {
        return icsc::RESULT_WRONG_VALUE;
    }
    return (characterCount(name, name.size()) <= MAX_NAME_LENGTH) ? icsc::RESULT_OK : icsc::RESULT_TOO_LONG;
}

int checkLocation(const boost::any& value)
{
    return (boost::any_cast<buffer_t>(value).size() <= MAX_LOCATION_LENGTH) ? icsc::RESULT_OK : icsc::RESULT_TOO_LONG;
}

int checkFaults(const boost::any& value)
{
    const auto& text = boost::any_cast<const std::string&>(value);
    if (text.size() > MAX_FAULTS_LENGTH) {
        return icsc::RESULT_TOO_LONG;
    }
    return parseFaults(text) ? icsc::RESULT_OK : icsc::RESULT_WRONG_VALUE;
}

in_addr addressOfSlot(std::uint32_t slot)
{
    in_addr address = {};
    address.s_addr = htonl(0xC0000200U + 10U + slot);  // 192.0.2.10 and on: addresses for documentation
    return address;
}

}  // namespace

Card::Card(std::uint32_t slot, const std::string& source, CardObjects sourceObjects)
    : m_slot(slot), m_objects(std::move(sourceObjects))
{
    addOwnObjects(slot, source);
}

void Card::addOwnObjects(std::uint32_t slot, const std::string& source)
{
    using namespace oids;
    constexpr unsigned long long LOCALLY_ADMINISTERED = 0x020000000000;
    addConstant(m_objects, makeOidValue(CARD_SLOT, static_cast<std::uint8_t>(slot)));
    addConstant(m_objects, makeOidValue(CARD_SOURCE, source.substr(0, MAX_TEXT_LENGTH)));
    addConstant(m_objects, makeOidMacAddress(CARD_MAC, LOCALLY_ADMINISTERED + slot));
    m_objects[CARD_UPTIME] =
        readOnly(OID_TYPE_UINT32, [this] { return static_cast<unsigned int>(steadySeconds() - m_start); });
    m_objects[CARD_READS] = readOnly(OID_TYPE_UINT64, [this] { return static_cast<unsigned long long>(m_reads); });
    m_objects[CARD_WRITES] = readOnly(OID_TYPE_UINT64, [this] { return static_cast<unsigned long long>(m_writes); });

    addWritable(makeOidValue(CARD_NAME, "card " + std::to_string(slot)), checkName);
    addWritable(makeOidValue(CARD_ADDRESS, addressOfSlot(slot)), acceptAny);
    addWritable(makeOidValue(CARD_LOCATION, buffer_t()), checkLocation);
    addWritable(makeOidValue(CARD_ENABLED, true), acceptAny);
    addWritable(makeOidValue(CARD_LED, std::uint8_t{1}), within<std::uint8_t>(0, 3));
    addWritable(makeOidValue(CARD_VLAN, std::uint16_t{1}), within<std::uint16_t>(1, 4094));
    addWritable(makeOidValue(CARD_ALTITUDE, std::int16_t{0}), within<std::int16_t>(-500, 9000));
    addWritable(makeOidValue(CARD_TEMPERATURE_OFFSET, std::int8_t{0}), within<std::int8_t>(-20, 20));
    addWritable(makeOidValue(CARD_ALARM_THRESHOLD, std::int32_t{0}), acceptAny);
    addWritable(makeOidValue(CARD_CLOCK_OFFSET, std::int64_t{0}), acceptAny);
    addWritable(makeOidValue(CARD_SELF_TEST, false), [this](const boost::any&) {
        return boost::any_cast<bool>(m_objects.at(CARD_ENABLED).read()) ? icsc::RESULT_OK : icsc::RESULT_CANNOT_EXEC;
    });
    m_objects[CARD_FAULT] = {
        OID_TYPE_STRING, [this] { return m_faults.text; }, checkFaults,
        [this](const boost::any& value) { m_faults = *parseFaults(boost::any_cast<std::string>(value)); }};
}

void Card::addWritable(const OidTypeValue& initial, const std::function<int(const boost::any&)>& check)
{
    const auto pValue = std::make_shared<boost::any>(initial.value);
    m_objects[initial.oid] = {initial.type, [pValue] { return *pValue; }, check,
                              [pValue](const boost::any& value) { *pValue = value; }};
}

Card::Answer Card::read(const buffer_t& request)
{
    ++m_reads;
    const std::optional<std::vector<buffer_t>> elements = elementsOf(request);
    if (!elements) {
        return {INVALID_NR_OF_TLVS, buffer_t()};
    }
    buffer_t tlvs;
    tlvs << static_cast<std::uint32_t>(elements->size());
    for (const buffer_t& element : *elements) {
        if (element.size() != sizeof(std::uint32_t)) {
            return {icsc::RESULT_WRONG_LEN, buffer_t()};
        }
        std::uint32_t oid = 0;
        element >> oid;
        const auto object = m_objects.find(oid);
        if (object == m_objects.end()) {
            return {icsc::RESULT_WRONG_OID, buffer_t()};
        }
        try {
            tlvs << valueElement(oid, object->second);
        } catch (const std::length_error&) {  // the buffer is full
            return {obResult::MESSAGE_TOO_LARGE, buffer_t()};
        }
    }
    return {icsc::RESULT_OK, tlvs};
}

buffer_t Card::valueElement(std::uint32_t oid, const CardObject& object)
{
    buffer_t stream;
    std::uint32_t count = 0;
    buffer_t element;
    convertOidTypeValueContainerToTlvs({{oid, object.type, object.read()}}, stream);
    stream >> count >> element;
    return element;
}

int Card::write(const buffer_t& request)
{
    ++m_writes;
    const std::optional<std::vector<buffer_t>> elements = elementsOf(request);
    if (!elements) {
        return INVALID_NR_OF_TLVS;
    }
    std::vector<Write> writes(elements->size());
    for (std::size_t i = 0; i < writes.size(); ++i) {
        const int result = checkWrite((*elements)[i], writes[i]);
        if (result != icsc::RESULT_OK) {
            return result;
        }
    }
    for (const Write& each : writes) {
        each.pObject->write(each.value);
    }
    return icsc::RESULT_OK;
}

int Card::checkWrite(const buffer_t& element, Write& write) const
{
    std::uint32_t oid = 0;
    unsigned char type = 0;
    if (element.size() < sizeof oid + sizeof type) {
        return icsc::RESULT_WRONG_LEN;
    }
    element >> oid >> type;
    const auto object = m_objects.find(oid);
    if (object == m_objects.end()) {
        return icsc::RESULT_WRONG_OID;
    }
    if (!object->second.check) {
        return icsc::RESULT_READ_ONLY;
    }
    if (type != object->second.type) {
        return icsc::RESULT_WRONG_TYPE;
    }
    // What is decoded and encoded again must be the same: neither cut nor followed by more.
    buffer_t stream;
    buffer_t streamAgain;
    OidTypeValueMap values;
    stream << std::uint32_t{1} << element;
    if (!convertTlvsToOidTypeValueMap(m_slot, stream, values, nullptr) ||
        !convertOidTypeValueContainerToTlvs({{oid, object->second.type, values[oid].value}}, streamAgain) ||
        (stream.size() != streamAgain.size())) {
        return icsc::RESULT_WRONG_LEN;
    }
    write = {&object->second, values[oid].value};
    return object->second.check(write.value);
}

bool Card::isAboutFaultsOnly(const buffer_t& request)
{
    const std::optional<std::vector<buffer_t>> elements = elementsOf(request);
    if (!elements || (elements->size() != 1) || (elements->front().size() < sizeof(std::uint32_t))) {
        return false;
    }
    std::uint32_t oid = 0;
    elements->front() >> oid;
    return oid == oids::CARD_FAULT;
}

}  // namespace brantel
