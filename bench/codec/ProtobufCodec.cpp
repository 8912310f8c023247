#include "Codec.h"
#include "values.pb.h"

namespace {

using codecBenchmark::Value;

void fill(Value& message, const OidTypeValue& value)
{
    message.set_oid(value.oid);
    switch (value.type) {
        case OID_TYPE_UINT32: message.set_unsigned32(boost::any_cast<unsigned int>(value.value)); break;
        case OID_TYPE_INT32: message.set_signed32(boost::any_cast<int>(value.value)); break;
        case OID_TYPE_UINT64: message.set_unsigned64(boost::any_cast<unsigned long long>(value.value)); break;
        default: message.set_text(boost::any_cast<const std::string&>(value.value)); break;
    }
}

void add(OidTypeValueMap& values, const Value& message)
{
    switch (message.value_case()) {
        case Value::kUnsigned32: addValue(values, message.oid(), OID_TYPE_UINT32, message.unsigned32()); break;
        case Value::kSigned32: addValue(values, message.oid(), OID_TYPE_INT32, message.signed32()); break;
        case Value::kUnsigned64:
            addValue(values, message.oid(), OID_TYPE_UINT64, static_cast<unsigned long long>(message.unsigned64()));
            break;
        default: addValue(values, message.oid(), OID_TYPE_STRING, message.text()); break;
    }
}

class ProtobufCodec : public Codec {
public:
    bool encode(const OidTypeValueContainer& values) override
    {
        m_message.clear_values();
        for (const OidTypeValue& value : values) {
            fill(*m_message.add_values(), value);
        }
        return encodeOwn();
    }

    bool decode(const ObjectIdContainer&, OidTypeValueMap& values) override
    {
        if (!decodeOwn()) {
            return false;
        }
        for (const Value& message : m_decoded.values()) {
            add(values, message);
        }
        return true;
    }

    std::size_t encodedSize() const override { return m_bytes.size(); }
    bool hasOwnForm() const override { return true; }
    bool encodeOwn() override { return m_message.SerializeToString(&m_bytes); }
    bool decodeOwn() override { return m_decoded.ParseFromString(m_bytes); }

private:
    // Kept between calls, so that their parts are allocated only once.
    codecBenchmark::Values m_message;
    codecBenchmark::Values m_decoded;
    std::string m_bytes;
};

}  // namespace

std::unique_ptr<Codec> makeProtobufCodec()
{
    return std::make_unique<ProtobufCodec>();
}
