#include "cards/Faults.h"

#include <limits>
#include <stdexcept>
#include <vector>

#include "cards/CardObjects.h"
#include "cards/Tlv.h"
#include "common/Numbers.h"

namespace brantel {
namespace {

constexpr double LONGEST_DELAY = 3600;
constexpr unsigned char TYPE_THAT_DOES_NOT_EXIST = 11;

constexpr const char* FAULT_NAMES =
    "delay=SECONDS, silence, no-answer, result=CODE, duplicate-oid, missing-oid, foreign-oid, wrong-count, "
    "wrong-type[=CODE], wrong-length=BYTES and truncated";

std::string rangeText(const std::string& what, const std::string& lowest, const std::string& highest)
{
    return what + " is a number from " + lowest + " to " + highest;
}

// One fault of the list: "NAME" or "NAME=ARGUMENT".
struct WrittenFault {
    explicit WrittenFault(const std::string& text) : name(text.substr(0, text.find('=')))
    {
        if (name.size() < text.size()) {
            argument = text.substr(name.size() + 1);
        }
    }

    std::string name;
    std::optional<std::string> argument;
};

bool takeSwitch(const WrittenFault& fault, Faults& faults)
{
    const struct {
        const char* name;
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
        if ((fault.name == entry.name) && !fault.argument) {
            entry.isOn = true;
            return true;
        }
    }
    return false;
}

// Adds one fault. Returns what is wrong with it, or nothing.
std::string takeFault(const WrittenFault& fault, Faults& faults)
{
    const std::string argument = fault.argument.value_or("");
    if (fault.name == "delay") {
        faults.delay = parseReal(argument, 0, LONGEST_DELAY);
        return faults.delay ? "" : rangeText("the delay", "0", "3600 seconds");
    }
    if (fault.name == "result") {
        const auto code = parseInteger<std::uint32_t>(argument, 1, std::numeric_limits<std::uint32_t>::max());
        faults.result = code ? std::optional(static_cast<std::int32_t>(*code)) : std::nullopt;
        return code ? "" : rangeText("the result code of a failure", "1", "4294967295");
    }
    if (fault.name == "wrong-type") {
        faults.wrongType = fault.argument ? parseInteger<unsigned char>(argument, 0, UINT8_MAX)
                                          : std::optional(TYPE_THAT_DOES_NOT_EXIST);
        return faults.wrongType ? "" : rangeText("a type code", "0", "255");
    }
    if (fault.name == "wrong-length") {
        faults.wrongLength = parseInteger<std::size_t>(argument, 0, MAX_TEXT_LENGTH);
        return faults.wrongLength ? "" : rangeText("the length", "0", std::to_string(MAX_TEXT_LENGTH) + " bytes");
    }
    return takeSwitch(fault, faults) ? "" : std::string("the faults are ") + FAULT_NAMES;
}

std::vector<std::string> partsOf(const std::string& list)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = list.find(','); end != std::string::npos; end = list.find(',', begin)) {
        parts.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    parts.push_back(list.substr(begin));
    return parts;
}

// Returns what is wrong with the list, or nothing.
std::string takeFaults(const std::string& text, Faults& faults)
{
    faults.text = text;
    if (text.empty()) {
        return "";
    }
    for (const std::string& part : partsOf(text)) {
        const std::string reason = takeFault(WrittenFault(part), faults);
        if (!reason.empty()) {
            return "'" + part + "': " + reason;
        }
    }
    return "";
}

buffer_t withByte(const buffer_t& buffer, std::size_t position, unsigned char byte)
{
    std::string bytes(reinterpret_cast<const char*>(buffer.data()), buffer.size());
    bytes[position] = static_cast<char>(byte);
    return buffer_t(bytes.data(), bytes.size());
}

buffer_t withValueLength(const buffer_t& element, std::size_t length)
{
    std::string bytes(reinterpret_cast<const char*>(element.data()), element.size());
    bytes.resize(tlv::POS_VALUE + length);
    return buffer_t(bytes.data(), bytes.size());
}

// There is at least one.
void corruptElements(const Faults& faults, std::vector<buffer_t>& elements)
{
    if (faults.wrongLength) {
        elements.back() = withValueLength(elements.back(), *faults.wrongLength);
    }
    if (faults.wrongType) {
        elements.back() = withByte(elements.back(), tlv::POS_TYPE, *faults.wrongType);
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

std::optional<Faults> parseFaults(const std::string& text)
{
    Faults faults;
    return takeFaults(text, faults).empty() ? std::optional(faults) : std::nullopt;
}

std::string reasonAgainstFaults(const std::string& text)
{
    Faults faults;
    return takeFaults(text, faults);
}

std::optional<buffer_t> corruptedStream(const Faults& faults, const buffer_t& tlvs)
{
    std::vector<buffer_t> elements = elementsOf(tlvs).value_or(std::vector<buffer_t>());
    if (!elements.empty()) {
        corruptElements(faults, elements);
    }
    buffer_t stream;
    stream << static_cast<std::uint32_t>(elements.size() + (faults.hasWrongCount ? 1 : 0));
    try {
        for (const buffer_t& element : elements) {
            stream << element;
        }
    } catch (const std::length_error&) {  // the buffer is full
        return std::nullopt;
    }
    return faults.isTruncated ? buffer_t(stream.data(), stream.size() - 1) : stream;
}

}  // namespace brantel
