// Messages as any peer might send them: the framework finds the fault that the table of its envelope defines, and what
// it understands comes back the same when it is encoded again.

#include <string>

#include "Frame.h"
#include "fuzz/Fuzz.h"
#include "message/buffer_t.h"

using obmessage::FrameFault;

namespace {

constexpr std::size_t COMMON_LENGTH = 16;
constexpr std::size_t FIXED_LENGTH = 20;

std::size_t nameLength(const std::string& message)
{
    return static_cast<unsigned char>(message[FIXED_LENGTH - 1]);
}

FrameFault expectedFault(const std::string& message)
{
    if ((message.size() < COMMON_LENGTH) || (message.compare(0, 2, "OB") != 0) ||
        ((message[3] != 1) && (message[3] != 2))) {
        return FrameFault::NOT_A_MESSAGE;
    }
    if (message[2] != 1) {
        return FrameFault::NOT_UNDERSTOOD;
    }
    if (message.size() < FIXED_LENGTH) {
        return FrameFault::TOO_SHORT;
    }
    if ((nameLength(message) < 1) || (nameLength(message) > 32)) {
        return FrameFault::NOT_UNDERSTOOD;
    }
    const std::size_t headerLength = FIXED_LENGTH + nameLength(message);
    if (message.size() < headerLength) {
        return FrameFault::TOO_SHORT;
    }
    return (message.size() > headerLength + buffer_t::CAPACITY) ? FrameFault::TOO_LONG : FrameFault::NONE;
}

std::string encoded(const obmessage::FrameHeader& header)
{
    const obmessage::EncodedHeader bytes = encodeHeader(header);
    return std::string(reinterpret_cast<const char*>(bytes.bytes), bytes.length);
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string message = textOf(pData, size);
    const obmessage::DecodedFrame frame = obmessage::decodeFrame({pData, size});

    require(frame.fault == expectedFault(message));
    if ((frame.fault == FrameFault::NONE) || (frame.fault == FrameFault::TOO_LONG)) {
        require(encoded(frame.header) == message.substr(0, FIXED_LENGTH + nameLength(message)));
    } else if (frame.fault != FrameFault::NOT_A_MESSAGE) {
        obmessage::FrameHeader header = frame.header;
        header.interfaceName = "any";
        require(encoded(header).substr(3, COMMON_LENGTH - 3) == message.substr(3, COMMON_LENGTH - 3));
    }
    const std::string payload(reinterpret_cast<const char*>(frame.payload.pBytes), frame.payload.length);
    require(payload == ((frame.fault == FrameFault::NONE) ? message.substr(FIXED_LENGTH + nameLength(message)) : ""));
    return 0;
}
