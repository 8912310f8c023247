// The codec on the buffer of another framework: byte order, framing and exceptions are the framework's.

#include <utility>

#include "IfcCardStatusAndControl.h"
#include "library/cards/ValueTexts.h"
#include "support/Diagnostics.h"

namespace {

class CodecOnForeignBuffer : public DiagnosticsTest {
protected:
    // Decodes a stream whose only element ends before its value.
    bool decodeCutStream()
    {
        buffer_t tlvs;
        tlvs << std::uint32_t{1} << (buffer_t() << std::uint32_t{1} << static_cast<unsigned char>(OID_TYPE_INT32));
        return convertTlvsToOidTypeValueMap(3, tlvs, m_values, nullptr);
    }

    static std::string decoderLine(const std::string& format, const std::string& message)
    {
        return errorLine("IfcCardStatusAndControl.cpp", "convertTlvsToOidTypeValueMap", format, message);
    }

    OidTypeValueMap m_values{{99, {OID_TYPE_BOOL, true}}};
};

TEST_F(CodecOnForeignBuffer, LeavesByteOrderAndFramingToTheBuffer)
{
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{0x01020304, OID_TYPE_MAC_ADDRESS, 0xAABBCCDDEEFFULL}}, tlvs));
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("01000000 0C 04030201 0D 06 AABBCCDDEEFF"));
    EXPECT_TRUE(convertTlvsToOidTypeValueMap(3, tlvs, m_values, nullptr));
    EXPECT_EQ(recordTexts(m_values),
              (RecordTexts{"99: 8, bool true", "16909060: 13, unsigned long long 187723572702975"}));
}

TEST_F(CodecOnForeignBuffer, LeavesTheFormOfStringsAndOfNestedBuffersToTheBuffer)
{
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{1, OID_TYPE_STRING, std::string("abc")},
                                                    {2, OID_TYPE_BUFFER, buffer_t("abc", 3)},
                                                    {3, OID_TYPE_MAC_ADDRESS, 0x616263646566ULL}},
                                                   tlvs));
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("03000000 09 01000000 09 616263 00"
                                         "         09 02000000 0C 03 616263"
                                         "         0C 03000000 0D 06 616263646566"));
    EXPECT_TRUE(convertTlvsToOidTypeValueMap(3, tlvs, m_values, nullptr));
    EXPECT_EQ(recordTexts(m_values), (RecordTexts{"1: 9, string 'abc'", "2: 12, buffer_t 616263",
                                                  "3: 13, unsigned long long 107075202213222", "99: 8, bool true"}));
}

TEST_F(CodecOnForeignBuffer, FailsOnWhateverTheBufferThrows)
{
    buffer_t::fail = [] { throw 7; };
    EXPECT_FALSE(decodeCutStream());
    EXPECT_EQ(recordTexts(m_values), RecordTexts{});
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{decoderLine("slot=%d: an exception occurred", "slot=3: an exception occurred")});
}

TEST_F(CodecOnForeignBuffer, NamesABadCastThatTheBufferThrows)
{
    buffer_t::fail = [] { throw boost::bad_any_cast(); };
    EXPECT_FALSE(decodeCutStream());
    EXPECT_EQ(recordTexts(m_values), RecordTexts{});
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{decoderLine("slot=%d: boost::bad_any_cast occurred: %s",
                                      "slot=3: boost::bad_any_cast occurred: boost::bad_any_cast: failed conversion "
                                      "using boost::any_cast")});
}

}  // namespace
