#include <algorithm>
#include <cstring>

#include <pb_decode.h>
#include <pb_encode.h>

#include "Codec.h"
#include "values.nanopb.h"

namespace {

void fill(codecBenchmark_Value& message, const OidTypeValue& value)
{
    message.oid = value.oid;
    switch (value.type) {
        case OID_TYPE_UINT32:
            message.which_value = codecBenchmark_Value_unsigned32_tag;
            message.value.unsigned32 = boost::any_cast<unsigned int>(value.value);
            break;
        case OID_TYPE_INT32:
            message.which_value = codecBenchmark_Value_signed32_tag;
            message.value.signed32 = boost::any_cast<int>(value.value);
            break;
        case OID_TYPE_UINT64:
            message.which_value = codecBenchmark_Value_unsigned64_tag;
            message.value.unsigned64 = boost::any_cast<unsigned long long>(value.value);
            break;
        default: {
            const auto& text = boost::any_cast<const std::string&>(value.value);
            message.which_value = codecBenchmark_Value_text_tag;
            std::memcpy(message.value.text, text.c_str(), std::min(text.size() + 1, sizeof message.value.text));
            break;
        }
    }
}

void add(OidTypeValueMap& values, const codecBenchmark_Value& message)
{
    switch (message.which_value) {
        case codecBenchmark_Value_unsigned32_tag:
            addValue(values, message.oid, OID_TYPE_UINT32, unsigned{message.value.unsigned32});
            break;
        case codecBenchmark_Value_signed32_tag:
            addValue(values, message.oid, OID_TYPE_INT32, int{message.value.signed32});
            break;
        case codecBenchmark_Value_unsigned64_tag:
            addValue(values, message.oid, OID_TYPE_UINT64, static_cast<unsigned long long>(message.value.unsigned64));
            break;
        default: addValue(values, message.oid, OID_TYPE_STRING, std::string(message.value.text)); break;
    }
}

class NanopbCodec : public Codec {
public:
    bool encode(const OidTypeValueContainer& values) override
    {
        m_message.values_count = 0;
        for (const OidTypeValue& value : values) {
            fill(m_message.values[m_message.values_count++], value);
        }
        return encodeOwn();
    }

    bool decode(const ObjectIdContainer&, OidTypeValueMap& values) override
    {
        if (!decodeOwn()) {
            return false;
        }
        for (pb_size_t i = 0; i < m_decoded.values_count; ++i) {
            add(values, m_decoded.values[i]);
        }
        return true;
    }

    std::size_t encodedSize() const override { return m_length; }
    bool hasOwnForm() const override { return true; }

    bool encodeOwn() override
    {
        pb_ostream_t stream = pb_ostream_from_buffer(m_bytes, sizeof m_bytes);
        const bool isEncoded = pb_encode(&stream, &codecBenchmark_Values_msg, &m_message);
        m_length = stream.bytes_written;
        return isEncoded;
    }

    bool decodeOwn() override
    {
        pb_istream_t stream = pb_istream_from_buffer(m_bytes, m_length);
        return pb_decode(&stream, &codecBenchmark_Values_msg, &m_decoded);
    }

private:
    codecBenchmark_Values m_message = codecBenchmark_Values_init_zero;
    codecBenchmark_Values m_decoded = codecBenchmark_Values_init_zero;
    pb_byte_t m_bytes[4096] = {};
    std::size_t m_length = 0;
};

}  // namespace

std::unique_ptr<Codec> makeNanopbCodec()
{
    return std::make_unique<NanopbCodec>();
}
