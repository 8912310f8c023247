#include <pb_decode.h>
#include <pb_encode.h>

#include <cstring>

#include "Codec.h"
#include "values.nanopb.h"

namespace {

class NanopbCodec : public Codec {
public:
    explicit NanopbCodec(const SampleValues& values)
    {
        for (const SampleValue& sample : values) {
            codecBenchmark_Value& message = m_values.values[m_values.values_count++];
            message.oid = sample.oid;
            std::visit(Overloaded{
                           [&](std::uint32_t value) {
                               message.which_value = codecBenchmark_Value_unsigned32_tag;
                               message.value.unsigned32 = value;
                           },
                           [&](std::int32_t value) {
                               message.which_value = codecBenchmark_Value_signed32_tag;
                               message.value.signed32 = value;
                           },
                           [&](std::uint64_t value) {
                               message.which_value = codecBenchmark_Value_unsigned64_tag;
                               message.value.unsigned64 = value;
                           },
                           [&](bool value) {
                               message.which_value = codecBenchmark_Value_flag_tag;
                               message.value.flag = value;
                           },
                           [&](const std::string& value) {
                               message.which_value = codecBenchmark_Value_text_tag;
                               std::strncpy(message.value.text, value.c_str(), sizeof message.value.text - 1);
                           },
                       },
                       sample.value);
        }
    }

    bool encode() override
    {
        pb_ostream_t stream = pb_ostream_from_buffer(m_bytes, sizeof m_bytes);
        const bool isEncoded = pb_encode(&stream, &codecBenchmark_Values_msg, &m_values);
        m_length = stream.bytes_written;
        return isEncoded;
    }

    bool decode() override
    {
        pb_istream_t stream = pb_istream_from_buffer(m_bytes, m_length);
        return pb_decode(&stream, &codecBenchmark_Values_msg, &m_decoded);
    }

    std::size_t encodedSize() const override { return m_length; }

    SampleValues decoded() const override
    {
        SampleValues values;
        for (pb_size_t i = 0; i < m_decoded.values_count; ++i) {
            values.push_back({m_decoded.values[i].oid, valueOf(m_decoded.values[i])});
        }
        return values;
    }

private:
    static decltype(SampleValue::value) valueOf(const codecBenchmark_Value& message)
    {
        switch (message.which_value) {
            case codecBenchmark_Value_unsigned32_tag: return std::uint32_t{message.value.unsigned32};
            case codecBenchmark_Value_signed32_tag: return std::int32_t{message.value.signed32};
            case codecBenchmark_Value_unsigned64_tag: return std::uint64_t{message.value.unsigned64};
            case codecBenchmark_Value_flag_tag: return message.value.flag;
            default: return std::string(message.value.text);
        }
    }

    codecBenchmark_Values m_values = codecBenchmark_Values_init_zero;
    codecBenchmark_Values m_decoded = codecBenchmark_Values_init_zero;
    pb_byte_t m_bytes[4096] = {};
    std::size_t m_length = 0;
};

}  // namespace

std::unique_ptr<Codec> makeNanopbCodec(const SampleValues& values)
{
    return std::make_unique<NanopbCodec>(values);
}
