#include "Codec.h"

#include <algorithm>
#include <iterator>

// Last, because they define names like "oid".
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

namespace {

// Where the OIDs of the cards are in the tree of names: under one enterprise, like those of any vendor.
constexpr oid ENTERPRISE[] = {1, 3, 6, 1, 4, 1, 54321};
constexpr std::size_t NAME_LENGTH = std::size(ENTERPRISE) + 1;

class NetSnmpCodec : public Codec {
public:
    NetSnmpCodec() { std::copy(std::begin(ENTERPRISE), std::end(ENTERPRISE), m_name); }

    bool encode(const OidTypeValueContainer& values) override
    {
        m_pNext = m_bytes;
        m_left = sizeof m_bytes;
        return std::all_of(values.begin(), values.end(), [this](const OidTypeValue& value) { return build(value); });
    }

    bool decode(const ObjectIdContainer&, OidTypeValueMap& values) override
    {
        m_left = encodedSize();
        m_pNext = m_bytes;
        while ((m_pNext != nullptr) && (m_left > 0)) {
            if (!parse(values)) {
                return false;
            }
        }
        return m_pNext != nullptr;
    }

    std::size_t encodedSize() const override { return m_length; }

private:
    bool build(const OidTypeValue& value)
    {
        m_name[NAME_LENGTH - 1] = value.oid;
        switch (value.type) {
            case OID_TYPE_UINT32: {
                u_long number = boost::any_cast<unsigned int>(value.value);
                return build(ASN_GAUGE, &number, sizeof number);
            }
            case OID_TYPE_INT32: {
                long number = boost::any_cast<int>(value.value);
                return build(ASN_INTEGER, &number, sizeof number);
            }
            case OID_TYPE_UINT64: {
                const auto number = boost::any_cast<unsigned long long>(value.value);
                counter64 halves{static_cast<u_long>(number >> 32), static_cast<u_long>(number & 0xFFFFFFFF)};
                return build(ASN_COUNTER64, &halves, sizeof halves);
            }
            default: {
                const auto& text = boost::any_cast<const std::string&>(value.value);
                return build(ASN_OCTET_STR, const_cast<char*>(text.data()), text.size());
            }
        }
    }

    bool build(u_char type, void* pValue, std::size_t length)
    {
        std::size_t nameLength = NAME_LENGTH;
        m_pNext = snmp_build_var_op(m_pNext, m_name, &nameLength, type, length, static_cast<u_char*>(pValue), &m_left);
        m_length = sizeof m_bytes - m_left;
        return m_pNext != nullptr;
    }

    bool parse(OidTypeValueMap& values)
    {
        std::size_t nameLength = NAME_LENGTH;
        u_char type = 0;
        std::size_t valueLength = 0;
        u_char* pValue = nullptr;
        m_pNext = snmp_parse_var_op(m_pNext, m_name, &nameLength, &type, &valueLength, &pValue, &m_left);
        if (m_pNext == nullptr) {
            return false;
        }
        const auto cardOid = static_cast<std::uint32_t>(m_name[NAME_LENGTH - 1]);
        auto left = static_cast<std::size_t>(m_pNext - pValue);
        switch (type) {
            case ASN_GAUGE: {
                u_long number = 0;
                const bool isParsed = asn_parse_unsigned_int(pValue, &left, &type, &number, sizeof number) != nullptr;
                addValue(values, cardOid, OID_TYPE_UINT32, static_cast<unsigned int>(number));
                return isParsed;
            }
            case ASN_INTEGER: {
                long number = 0;
                const bool isParsed = asn_parse_int(pValue, &left, &type, &number, sizeof number) != nullptr;
                addValue(values, cardOid, OID_TYPE_INT32, static_cast<int>(number));
                return isParsed;
            }
            case ASN_COUNTER64: {
                counter64 halves{};
                const bool isParsed = asn_parse_unsigned_int64(pValue, &left, &type, &halves, sizeof halves) != nullptr;
                addValue(values, cardOid, OID_TYPE_UINT64,
                         (static_cast<unsigned long long>(halves.high) << 32) | halves.low);
                return isParsed;
            }
            default: {
                u_char text[64];
                std::size_t length = sizeof text;
                const bool isParsed = asn_parse_string(pValue, &left, &type, text, &length) != nullptr;
                addValue(values, cardOid, OID_TYPE_STRING, std::string(reinterpret_cast<const char*>(text), length));
                return isParsed;
            }
        }
    }

    oid m_name[NAME_LENGTH] = {};
    u_char m_bytes[4096] = {};
    std::size_t m_length = 0;
    u_char* m_pNext = nullptr;
    std::size_t m_left = 0;
};

}  // namespace

std::unique_ptr<Codec> makeNetSnmpCodec()
{
    return std::make_unique<NetSnmpCodec>();
}
