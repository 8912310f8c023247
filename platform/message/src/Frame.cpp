#include "Frame.h"

#include <cstring>

#include "message/OBresult.h"
#include "message/buffer_t.h"

namespace obmessage {
namespace {

constexpr unsigned char MAGIC[] = {'O', 'B'};
constexpr unsigned char FORMAT = 1;

constexpr std::size_t FORMAT_OFFSET = 2;
constexpr std::size_t KIND_OFFSET = 3;
constexpr std::size_t SEQUENCE_NUMBER_OFFSET = 4;
constexpr std::size_t TIMEOUT_OR_RESULT_OFFSET = 12;
constexpr std::size_t LENGTH_COMMON_TO_ALL_FORMATS = 16;
constexpr std::size_t OPERATION_OFFSET = 16;
constexpr std::size_t MAJOR_VERSION_OFFSET = 17;
constexpr std::size_t MINOR_VERSION_OFFSET = 18;
constexpr std::size_t NAME_LENGTH_OFFSET = 19;

template <typename Unsigned>
void putBigEndian(unsigned char* pBytes, Unsigned value)
{
    for (std::size_t i = sizeof value; i > 0; --i) {
        pBytes[i - 1] = static_cast<unsigned char>(value);
        value = static_cast<Unsigned>(value >> 8U);
    }
}

template <typename Unsigned>
Unsigned getBigEndian(const unsigned char* pBytes)
{
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i) {
        value = static_cast<Unsigned>((value << 8U) | pBytes[i]);
    }
    return value;
}

bool isKind(unsigned char kind)
{
    return (kind == static_cast<unsigned char>(FrameKind::REQUEST)) ||
           (kind == static_cast<unsigned char>(FrameKind::ANSWER));
}

void decodeCommonPart(const unsigned char* pBytes, FrameHeader& header)
{
    header.kind = static_cast<FrameKind>(pBytes[KIND_OFFSET]);
    header.sequenceNumber = getBigEndian<std::uint64_t>(pBytes + SEQUENCE_NUMBER_OFFSET);
    header.timeoutOrResult = static_cast<std::int32_t>(getBigEndian<std::uint32_t>(pBytes + TIMEOUT_OR_RESULT_OFFSET));
}

void decodeInterface(const unsigned char* pBytes, std::size_t nameLength, FrameHeader& header)
{
    header.operation = pBytes[OPERATION_OFFSET];
    header.majorVersion = pBytes[MAJOR_VERSION_OFFSET];
    header.minorVersion = pBytes[MINOR_VERSION_OFFSET];
    header.interfaceName = {reinterpret_cast<const char*>(pBytes + FIXED_HEADER_LENGTH), nameLength};
}

}  // namespace

EncodedHeader encodeHeader(const FrameHeader& header)
{
    EncodedHeader encoded;
    unsigned char* const pBytes = encoded.bytes;
    std::memcpy(pBytes, MAGIC, sizeof MAGIC);
    pBytes[FORMAT_OFFSET] = FORMAT;
    pBytes[KIND_OFFSET] = static_cast<unsigned char>(header.kind);
    putBigEndian(pBytes + SEQUENCE_NUMBER_OFFSET, header.sequenceNumber);
    putBigEndian(pBytes + TIMEOUT_OR_RESULT_OFFSET, static_cast<std::uint32_t>(header.timeoutOrResult));
    pBytes[OPERATION_OFFSET] = header.operation;
    pBytes[MAJOR_VERSION_OFFSET] = header.majorVersion;
    pBytes[MINOR_VERSION_OFFSET] = header.minorVersion;
    pBytes[NAME_LENGTH_OFFSET] = static_cast<unsigned char>(header.interfaceName.size());
    std::memcpy(pBytes + FIXED_HEADER_LENGTH, header.interfaceName.data(), header.interfaceName.size());
    encoded.length = FIXED_HEADER_LENGTH + header.interfaceName.size();
    return encoded;
}

DecodedFrame decodeFrame(ByteView message)
{
    DecodedFrame frame{FrameFault::NOT_A_MESSAGE, {}, {message.pBytes, 0}};
    const unsigned char* const pBytes = message.pBytes;
    if ((message.length < LENGTH_COMMON_TO_ALL_FORMATS) || (std::memcmp(pBytes, MAGIC, sizeof MAGIC) != 0) ||
        !isKind(pBytes[KIND_OFFSET])) {
        return frame;
    }

    decodeCommonPart(pBytes, frame.header);
    if (pBytes[FORMAT_OFFSET] != FORMAT) {
        frame.fault = FrameFault::NOT_UNDERSTOOD;
        return frame;
    }
    if (message.length < FIXED_HEADER_LENGTH) {
        frame.fault = FrameFault::TOO_SHORT;
        return frame;
    }

    const std::size_t nameLength = pBytes[NAME_LENGTH_OFFSET];
    if ((nameLength == 0) || (nameLength > MAX_INTERFACE_NAME_LENGTH)) {
        frame.fault = FrameFault::NOT_UNDERSTOOD;
        return frame;
    }
    if (nameLength > message.length - FIXED_HEADER_LENGTH) {
        frame.fault = FrameFault::TOO_SHORT;
        return frame;
    }
    decodeInterface(pBytes, nameLength, frame.header);

    const std::size_t headerLength = FIXED_HEADER_LENGTH + nameLength;
    if (message.length - headerLength > buffer_t::CAPACITY) {
        frame.fault = FrameFault::TOO_LONG;
        return frame;
    }
    frame.fault = FrameFault::NONE;
    frame.payload = {pBytes + headerLength, message.length - headerLength};
    return frame;
}

bool isOfInterface(const FrameHeader& header, const OBinterface& interface)
{
    return (header.interfaceName == interface.name) && (header.majorVersion == interface.majorVersion) &&
           (header.minorVersion == interface.minorVersion);
}

int resultOfFault(FrameFault fault)
{
    switch (fault) {
        case FrameFault::NONE: return obResult::SUCCESS;
        case FrameFault::TOO_SHORT: return obResult::MESSAGE_TOO_SHORT;
        case FrameFault::TOO_LONG: return obResult::MESSAGE_TOO_LARGE;
        case FrameFault::NOT_UNDERSTOOD:
        case FrameFault::NOT_A_MESSAGE: break;
    }
    return obResult::INVALID_RESPONSE;
}

}  // namespace obmessage
