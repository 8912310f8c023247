// Messages as anybody might send them: the framework finds the same fault in them as the table of its envelope says,
// and what it understands comes back the same when it is encoded again.

#include <cstdlib>
#include <string>

#include "Frame.h"
#include "message/buffer_t.h"

using obmessage::FrameFault;

namespace {

constexpr std::size_t COMMON_LENGTH = 16;
constexpr std::size_t FIXED_LENGTH = 20;

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

std::size_t nameLength(const std::string& message)
{
    return static_cast<unsigned char>(message[FIXED_LENGTH - 1]);
}

FrameFault expectedFault(const std::string& message)
{
    if ((message.size() < COMMON_LENGTH) || (message.compare(0, 2, "OB") != 0) ||
        ((message[3] != 1) && (message[3] != 2))) {
        return FrameFault::NotAMessage;
    }
    if (message[2] != 1) {
        return FrameFault::NotUnderstood;
    }
    if (message.size() < FIXED_LENGTH) {
        return FrameFault::TooShort;
    }
    if ((nameLength(message) < 1) || (nameLength(message) > 32)) {
        return FrameFault::NotUnderstood;
    }
    const std::size_t headerLength = FIXED_LENGTH + nameLength(message);
    if (message.size() < headerLength) {
        return FrameFault::TooShort;
    }
    return (message.size() > headerLength + buffer_t::CAPACITY) ? FrameFault::TooLong : FrameFault::None;
}

std::string encoded(const obmessage::FrameHeader& header)
{
    const obmessage::EncodedHeader bytes = encodeHeader(header);
    return std::string(reinterpret_cast<const char*>(bytes.bytes), bytes.length);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const unsigned char* pData,
                                                                             std::size_t size)
{
    const std::string message(reinterpret_cast<const char*>(pData), size);
    const obmessage::DecodedFrame frame = obmessage::decodeFrame({pData, size});

    require(frame.fault == expectedFault(message));
    if ((frame.fault == FrameFault::None) || (frame.fault == FrameFault::TooLong)) {
        require(encoded(frame.header) == message.substr(0, FIXED_LENGTH + nameLength(message)));
    } else if (frame.fault != FrameFault::NotAMessage) {
        obmessage::FrameHeader header = frame.header;
        header.interfaceName = "any";
        require(encoded(header).substr(3, COMMON_LENGTH - 3) == message.substr(3, COMMON_LENGTH - 3));
    }
    const std::string payload(reinterpret_cast<const char*>(frame.payload.pBytes), frame.payload.length);
    require(payload == ((frame.fault == FrameFault::None) ? message.substr(FIXED_LENGTH + nameLength(message)) : ""));
    return 0;
}
