// How requests and answers look on the wire, and how other bytes are treated.

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Frame.h"
#include "message/OBresult.h"
#include "support/HexBytes.h"

namespace obmessage {
namespace {

const std::string READ_REQUEST =
    "4F42 01 01"             // magic, format, request
    "0102030405060708"       // sequence number
    "FFFFFFFE"               // timeout -2
    "01 01 00 0A"            // operation, version 1.0, ten characters
    "61707073546F49435343";  // appsToICSC

const FrameHeader READ_REQUEST_HEADER = {FrameKind::REQUEST, 0x0102030405060708, -2, 1, 1, 0, "appsToICSC"};

DecodedFrame decoded(const std::string& bytes)
{
    return decodeFrame({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

std::string textOf(const FrameHeader& header)
{
    return "kind " + std::to_string(static_cast<int>(header.kind)) + ", sequence number " +
           std::to_string(header.sequenceNumber) + ", timeout or result " + std::to_string(header.timeoutOrResult) +
           ", operation " + std::to_string(header.operation) + ", " + std::string(header.interfaceName) + " " +
           std::to_string(header.majorVersion) + "." + std::to_string(header.minorVersion);
}

std::string encoded(const FrameHeader& header)
{
    const EncodedHeader bytes = encodeHeader(header);
    return hexOf(bytes.bytes, bytes.length);
}

TEST(Frame, EncodesARequestByteByByte)
{
    EXPECT_EQ(encoded(READ_REQUEST_HEADER), withoutBlanks(READ_REQUEST));
}

TEST(Frame, EncodesAnAnswerByteByByte)
{
    EXPECT_EQ(encoded({FrameKind::ANSWER, 1, 0x02000000, 2, 3, 4, "x"}),
              withoutBlanks("4F42 01 02 0000000000000001 02000000 02 03 04 01 78"));
}

TEST(Frame, DecodesWhatWasEncoded)
{
    const std::string bytes = bytesOf(READ_REQUEST + "CAFE");
    const DecodedFrame frame = decoded(bytes);
    EXPECT_EQ(frame.fault, FrameFault::NONE);
    EXPECT_EQ(textOf(frame.header), textOf(READ_REQUEST_HEADER));
    EXPECT_EQ(hexOf(frame.payload.pBytes, frame.payload.length), "CAFE");
}

TEST(Frame, CarriesUpTo2048BytesOfPayload)
{
    const std::string header = bytesOf(READ_REQUEST);
    EXPECT_EQ(decoded(header).payload.length, 0U);
    EXPECT_EQ(decoded(header + std::string(2048, 'p')).payload.length, 2048U);
    EXPECT_EQ(decoded(header + std::string(2049, 'p')).fault, FrameFault::TOO_LONG);
}

TEST(Frame, CarriesInterfaceNamesOfUpTo32Characters)
{
    const std::string start = "4F42 01 01 0000000000000001 00000005 01 01 00";
    EXPECT_EQ(decoded(bytesOf(start + "20") + std::string(32, 'n')).header.interfaceName, std::string(32, 'n'));
    EXPECT_EQ(decoded(bytesOf(start + "21") + std::string(33, 'n')).fault, FrameFault::NOT_UNDERSTOOD);
    EXPECT_EQ(decoded(bytesOf(start + "00")).fault, FrameFault::NOT_UNDERSTOOD);
}

TEST(Frame, RecognisesBytesThatAreNotAMessage)
{
    const char* const cases[] = {
        "",
        "00",
        "4F42 01 01 0000000000000001 000000",    // cut before the common part ends
        "4E42 01 01 0000000000000001 00000005",  // magic
        "4F43 01 01 0000000000000001 00000005",  // magic
        "4F42 01 00 0000000000000001 00000005",  // kind
        "4F42 01 03 0000000000000001 00000005",  // kind
    };
    for (const char* const bytes : cases) {
        EXPECT_EQ(decoded(bytesOf(bytes)).fault, FrameFault::NOT_A_MESSAGE) << bytes;
    }
}

TEST(Frame, IsTooShortWhereverItsHeaderIsCut)
{
    const std::string bytes = bytesOf(READ_REQUEST);
    for (std::size_t length = 16; length < bytes.size(); ++length) {
        const std::string cut = bytes.substr(0, length);
        const DecodedFrame frame = decoded(cut);
        EXPECT_EQ(frame.fault, FrameFault::TOO_SHORT) << length;
        EXPECT_EQ(frame.header.sequenceNumber, 0x0102030405060708U) << length;
    }
}

TEST(Frame, OfAnotherFormatStillIdentifiesTheRequest)
{
    const DecodedFrame frame = decoded(bytesOf("4F42 02 01 00000000000000FF 00000005"));
    EXPECT_EQ(frame.fault, FrameFault::NOT_UNDERSTOOD);
    EXPECT_EQ(frame.header.kind, FrameKind::REQUEST);
    EXPECT_EQ(frame.header.sequenceNumber, 255U);
}

TEST(Frame, IsOfAnInterfaceOnlyIfNameAndVersionAreTheSame)
{
    EXPECT_TRUE(isOfInterface(READ_REQUEST_HEADER, {"appsToICSC", 1, 0}));
    EXPECT_FALSE(isOfInterface(READ_REQUEST_HEADER, {"appsToICS", 1, 0}));
    EXPECT_FALSE(isOfInterface(READ_REQUEST_HEADER, {"appsToICSC", 2, 0}));
    EXPECT_FALSE(isOfInterface(READ_REQUEST_HEADER, {"appsToICSC", 1, 1}));
}

TEST(Frame, FaultsHaveResults)
{
    EXPECT_EQ(resultOfFault(FrameFault::NONE), 0);
    EXPECT_EQ(resultOfFault(FrameFault::NOT_A_MESSAGE), 0x03000000);
    EXPECT_EQ(resultOfFault(FrameFault::NOT_UNDERSTOOD), 0x03000000);
    EXPECT_EQ(resultOfFault(FrameFault::TOO_LONG), 0x07000000);
    EXPECT_EQ(resultOfFault(FrameFault::TOO_SHORT), 0x08000000);
}

}  // namespace
}  // namespace obmessage
