#ifndef MESSAGE_FRAME_H
#define MESSAGE_FRAME_H

// How a request or an answer looks on the wire: an envelope, and the payload as the rest of the message.
//
//     offset  size  field
//          0     2  'O' 'B'
//          2     1  format: 1
//          3     1  kind: 1 request, 2 answer
//          4     8  sequence number, repeated in the answer
//         12     4  request: timeout in seconds; answer: result; signed
//         16     1  operation
//         17     1  interface's major version
//         18     1  interface's minor version
//         19     1  length of the interface's name: 1 to 32
//         20        interface's name
//
// Integers are most significant byte first. Offsets 0 to 15 keep their meaning in every format, so that a message of
// another format can still be answered.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "message/OBmessage.h"

namespace obmessage {

struct ByteView {
    const unsigned char* pBytes = nullptr;
    std::size_t length = 0;
};

enum class FrameKind : std::uint8_t { REQUEST = 1, ANSWER = 2 };

struct FrameHeader {
    FrameKind kind;
    std::uint64_t sequenceNumber;
    std::int32_t timeoutOrResult;
    std::uint8_t operation;
    std::uint8_t majorVersion;
    std::uint8_t minorVersion;
    std::string_view interfaceName;
};

constexpr std::size_t MAX_INTERFACE_NAME_LENGTH = 32;
constexpr std::size_t FIXED_HEADER_LENGTH = 20;
constexpr std::size_t MAX_HEADER_LENGTH = FIXED_HEADER_LENGTH + MAX_INTERFACE_NAME_LENGTH;

/// An encoded envelope, without the payload.
struct EncodedHeader {
    unsigned char bytes[MAX_HEADER_LENGTH] = {};
    std::size_t length = 0;

    ByteView view() const { return {bytes, length}; }
};

/// The header's interface name must be 1 to 32 characters long.
EncodedHeader encodeHeader(const FrameHeader& header);

enum class FrameFault {
    NONE,
    NOT_A_MESSAGE,   // nothing in the header can be relied on
    NOT_UNDERSTOOD,  // in this and the faults below, kind, sequence number and timeout or result are known
    TOO_SHORT,
    TOO_LONG
};

struct DecodedFrame {
    FrameFault fault = FrameFault::NONE;
    FrameHeader header;  // points into the decoded bytes
    ByteView payload;    // likewise; empty unless the fault is None
};

DecodedFrame decodeFrame(ByteView message);

/// Whether the header names exactly this interface and version.
bool isOfInterface(const FrameHeader& header, const OBinterface& interface);

/// The result with which a request with this fault is answered, or which an answer with this fault counts as.
int resultOfFault(FrameFault fault);

}  // namespace obmessage

#endif
