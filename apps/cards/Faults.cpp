#include "cards/Faults.h"

#include <cstdlib>
#include <sstream>
#include <vector>

#include "cards/TlvElements.h"
#include "cards/ValueText.h"

namespace {

constexpr double LONGEST_DELAY = 3600;
constexpr std::size_t POS_TYPE = sizeof(std::uint32_t);  // in an element: after the OID
constexpr unsigned char TYPE_THAT_DOES_NOT_EXIST = 11;

std::optional<double> secondsOfText(const std::string& text)
{
    char* pEnd = nullptr;
    const double seconds = std::strtod(text.c_str(), &pEnd);
    const bool isNumber = !text.empty() && (*pEnd == '\0');
    return (isNumber && (seconds >= 0) && (seconds <= LONGEST_DELAY)) ? std::optional(seconds) : std::nullopt;
}

bool takeFault(const std::string& kind, const std::string& argument, bool hasArgument, Faults& faults)
{
    if (kind == "delay") {
        faults.delay = secondsOfText(argument);
        return faults.delay.has_value();
    }
    if (kind == "result") {
        const std::optional<std::uint32_t> code = numberOfText(argument);
        faults.result = code ? std::optional(static_cast<std::int32_t>(*code)) : std::nullopt;
        return code.has_value();
    }
    if (kind == "wrong-type") {
        const std::optional<std::uint32_t> code =
            hasArgument ? numberOfText(argument) : std::optional<std::uint32_t>(TYPE_THAT_DOES_NOT_EXIST);
        faults.wrongType = static_cast<unsigned char>(code.value_or(0));
        return code && (*code <= UINT8_MAX);
    }
    const struct {
        const char* kind;
        bool& isOn;
    } switches[] = {
        {"silence", faults.isSilent},
        {"no-answer", faults.isWithoutAnswer},
        {"duplicate-oid", faults.hasDuplicateOid},
        {"missing-oid", faults.hasMissingOid},
        {"foreign-oid", faults.hasForeignOid},
        {"wrong-count", faults.hasWrongCount},
        {"truncated", faults.isTruncated},
    };
    for (const auto& entry : switches) {
        if ((kind == entry.kind) && !hasArgument) {
            entry.isOn = true;
            return true;
        }
    }
    return false;
}

buffer_t withByte(const buffer_t& buffer, std::size_t position, unsigned char byte)
{
    std::string bytes(reinterpret_cast<const char*>(buffer.data()), buffer.size());
    bytes[position] = static_cast<char>(byte);
    return buffer_t(bytes.data(), bytes.size());
}

void spoilElements(const Faults& faults, std::vector<buffer_t>& elements)
{
    if (faults.wrongType) {
        elements.back() = withByte(elements.back(), POS_TYPE, *faults.wrongType);
    }
    if (faults.hasForeignOid) {
        const auto oidByte = static_cast<unsigned char>(elements.back().data()[0] ^ 0x80U);
        elements.back() = withByte(elements.back(), 0, oidByte);
    }
    if (faults.hasDuplicateOid) {
        const buffer_t last = elements.back();
        (elements.size() > 1) ? elements.front() = last : elements.emplace_back(last);
    }
    if (faults.hasMissingOid) {
        elements.pop_back();
    }
}

}  // namespace

std::optional<Faults> faultsOfText(const std::string& text)
{
    Faults faults;
    faults.text = text;
    std::istringstream list(text);
    for (std::string fault; std::getline(list, fault, ',');) {
        const std::size_t posEqual = fault.find('=');
        const bool hasArgument = posEqual != std::string::npos;
        if (!takeFault(fault.substr(0, posEqual), hasArgument ? fault.substr(posEqual + 1) : "", hasArgument, faults)) {
            return std::nullopt;
        }
    }
    return faults;
}

buffer_t spoiltStream(const Faults& faults, const buffer_t& tlvs)
{
    std::vector<buffer_t> elements = *elementsOf(tlvs);
    if (!elements.empty()) {
        spoilElements(faults, elements);
    }
    buffer_t stream;
    stream << static_cast<std::uint32_t>(elements.size() + (faults.hasWrongCount ? 1 : 0));
    for (const buffer_t& element : elements) {
        stream << element;
    }
    return faults.isTruncated ? buffer_t(stream.data(), stream.size() - 1) : stream;
}
