#include "Codec.h"
#include "values.pb.h"

namespace {

class ProtobufCodec : public Codec {
public:
    explicit ProtobufCodec(const SampleValues& values)
    {
        for (const SampleValue& sample : values) {
            codecBenchmark::Value& message = *m_values.add_values();
            message.set_oid(sample.oid);
            std::visit(Overloaded{
                           [&](std::uint32_t value) { message.set_unsigned32(value); },
                           [&](std::int32_t value) { message.set_signed32(value); },
                           [&](std::uint64_t value) { message.set_unsigned64(value); },
                           [&](bool value) { message.set_flag(value); },
                           [&](const std::string& value) { message.set_text(value); },
                       },
                       sample.value);
        }
    }

    bool encode() override { return m_values.SerializeToString(&m_bytes); }

    bool decode() override { return m_decoded.ParseFromString(m_bytes); }

    std::size_t encodedSize() const override { return m_bytes.size(); }

    SampleValues decoded() const override
    {
        SampleValues values;
        for (const codecBenchmark::Value& message : m_decoded.values()) {
            values.push_back({message.oid(), valueOf(message)});
        }
        return values;
    }

private:
    static decltype(SampleValue::value) valueOf(const codecBenchmark::Value& message)
    {
        switch (message.value_case()) {
            case codecBenchmark::Value::kUnsigned32: return std::uint32_t{message.unsigned32()};
            case codecBenchmark::Value::kSigned32: return std::int32_t{message.signed32()};
            case codecBenchmark::Value::kUnsigned64: return std::uint64_t{message.unsigned64()};
            case codecBenchmark::Value::kFlag: return message.flag();
            default: return message.text();
        }
    }

    codecBenchmark::Values m_values;
    codecBenchmark::Values m_decoded;
    std::string m_bytes;
};

}  // namespace

std::unique_ptr<Codec> makeProtobufCodec(const SampleValues& values)
{
    return std::make_unique<ProtobufCodec>(values);
}
