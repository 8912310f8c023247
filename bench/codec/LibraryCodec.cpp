#include "Codec.h"
#include "IfcCardStatusAndControl.h"

namespace {

OidTypeValue toOidTypeValue(const SampleValue& sample)
{
    return std::visit(Overloaded{
                          [&](std::uint32_t value) {
                              return OidTypeValue{sample.oid, OID_TYPE_UINT32, value};
                          },
                          [&](std::int32_t value) {
                              return OidTypeValue{sample.oid, OID_TYPE_INT32, value};
                          },
                          [&](std::uint64_t value) {
                              return OidTypeValue{sample.oid, OID_TYPE_UINT64, static_cast<unsigned long long>(value)};
                          },
                          [&](bool value) {
                              return OidTypeValue{sample.oid, OID_TYPE_BOOL, value};
                          },
                          [&](const std::string& value) {
                              return OidTypeValue{sample.oid, OID_TYPE_STRING, value};
                          },
                      },
                      sample.value);
}

SampleValue toSampleValue(std::uint32_t oid, const TypeValueRecord& record)
{
    switch (record.type) {
        case OID_TYPE_UINT32: return {oid, std::uint32_t{boost::any_cast<unsigned int>(record.value)}};
        case OID_TYPE_INT32: return {oid, std::int32_t{boost::any_cast<int>(record.value)}};
        case OID_TYPE_UINT64: return {oid, std::uint64_t{boost::any_cast<unsigned long long>(record.value)}};
        case OID_TYPE_BOOL: return {oid, boost::any_cast<bool>(record.value)};
        default: return {oid, boost::any_cast<const std::string&>(record.value)};
    }
}

class LibraryCodec : public Codec {
public:
    explicit LibraryCodec(const SampleValues& values)
    {
        for (const SampleValue& value : values) {
            m_values.push_back(toOidTypeValue(value));
            m_oids.push_back(value.oid);
        }
    }

    bool encode() override
    {
        m_tlvs.clear();
        return convertOidTypeValueContainerToTlvs(m_values, m_tlvs);
    }

    bool decode() override
    {
        m_decoded.clear();
        // Reading moves the stream's read position, so each time it is a copy that is read.
        const buffer_t answer(m_tlvs);
        return convertTlvsToOidTypeValueMap(0, answer, m_decoded, &m_oids);
    }

    std::size_t encodedSize() const override { return m_tlvs.size(); }

    SampleValues decoded() const override
    {
        SampleValues values;
        for (const auto& [oid, record] : m_decoded) {
            values.push_back(toSampleValue(oid, record));
        }
        return values;
    }

private:
    OidTypeValueContainer m_values;
    ObjectIdContainer m_oids;
    buffer_t m_tlvs;
    OidTypeValueMap m_decoded;
};

}  // namespace

std::unique_ptr<Codec> makeLibraryCodec(const SampleValues& values)
{
    return std::make_unique<LibraryCodec>(values);
}
