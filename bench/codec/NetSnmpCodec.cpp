#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "Codec.h"

namespace {

// Where the OIDs of the cards stand in the tree of names, as those of any maker: under one enterprise.
constexpr oid ENTERPRISE[] = {1, 3, 6, 1, 4, 1, 54321};
constexpr std::size_t NAME_LENGTH = std::size(ENTERPRISE) + 1;

// A variable of a request or an answer: its name, and its value as the library of the protocol takes it.
struct Variable {
    oid name[NAME_LENGTH] = {};
    u_char type = 0;
    union {
        u_long unsigned32;
        long signed32;
        struct counter64 unsigned64;
        u_char text[16];
    } value = {};
    std::size_t length = 0;
};

Variable toVariable(const SampleValue& sample)
{
    Variable variable;
    std::copy(std::begin(ENTERPRISE), std::end(ENTERPRISE), variable.name);
    variable.name[std::size(ENTERPRISE)] = sample.oid;
    std::visit(Overloaded{
                   [&](std::uint32_t value) {
                       variable.type = ASN_GAUGE;
                       variable.length = sizeof variable.value.unsigned32;
                       variable.value.unsigned32 = value;
                   },
                   [&](std::int32_t value) {
                       variable.type = ASN_INTEGER;
                       variable.length = sizeof variable.value.signed32;
                       variable.value.signed32 = value;
                   },
                   [&](std::uint64_t value) {
                       variable.type = ASN_COUNTER64;
                       variable.length = sizeof variable.value.unsigned64;
                       variable.value.unsigned64.high = static_cast<u_long>(value >> 32);
                       variable.value.unsigned64.low = static_cast<u_long>(value & 0xFFFFFFFF);
                   },
                   [&](bool value) {  // a TruthValue: 1 is true, 2 is false
                       variable.type = ASN_INTEGER;
                       variable.length = sizeof variable.value.signed32;
                       variable.value.signed32 = value ? 1 : 2;
                   },
                   [&](const std::string& value) {
                       variable.type = ASN_OCTET_STR;
                       variable.length = std::min(value.size(), sizeof variable.value.text);
                       std::memcpy(variable.value.text, value.data(), variable.length);
                   },
               },
               sample.value);
    return variable;
}

class NetSnmpCodec : public Codec {
public:
    explicit NetSnmpCodec(const SampleValues& values) : m_samples(values), m_decoded(values.size())
    {
        std::transform(values.begin(), values.end(), std::back_inserter(m_values), toVariable);
    }

    bool encode() override
    {
        u_char* pNext = m_bytes;
        std::size_t left = sizeof m_bytes;
        for (Variable& variable : m_values) {
            std::size_t nameLength = NAME_LENGTH;
            pNext = snmp_build_var_op(pNext, variable.name, &nameLength, variable.type, variable.length,
                                      reinterpret_cast<u_char*>(&variable.value), &left);
            if (pNext == nullptr) {
                return false;
            }
        }
        m_length = sizeof m_bytes - left;
        return true;
    }

    bool decode() override
    {
        u_char* pNext = m_bytes;
        std::size_t left = m_length;
        for (Variable& variable : m_decoded) {
            std::size_t nameLength = NAME_LENGTH;
            u_char* pValue = nullptr;
            pNext =
                snmp_parse_var_op(pNext, variable.name, &nameLength, &variable.type, &variable.length, &pValue, &left);
            if ((pNext == nullptr) || !readValue(pValue, pNext, variable)) {
                return false;
            }
        }
        return left == 0;
    }

    std::size_t encodedSize() const override { return m_length; }

    SampleValues decoded() const override
    {
        SampleValues values;
        for (std::size_t i = 0; i < m_decoded.size(); ++i) {
            const bool isFlag = std::holds_alternative<bool>(m_samples[i].value);
            values.push_back(
                {static_cast<std::uint32_t>(m_decoded[i].name[NAME_LENGTH - 1]), valueOf(m_decoded[i], isFlag)});
        }
        return values;
    }

private:
    static bool readValue(u_char* pValue, const u_char* pEnd, Variable& variable)
    {
        auto length = static_cast<std::size_t>(pEnd - pValue);
        u_char type = 0;
        switch (variable.type) {
            case ASN_INTEGER:
                return asn_parse_int(pValue, &length, &type, &variable.value.signed32,
                                     sizeof variable.value.signed32) != nullptr;
            case ASN_GAUGE:
                return asn_parse_unsigned_int(pValue, &length, &type, &variable.value.unsigned32,
                                              sizeof variable.value.unsigned32) != nullptr;
            case ASN_COUNTER64:
                return asn_parse_unsigned_int64(pValue, &length, &type, &variable.value.unsigned64,
                                                sizeof variable.value.unsigned64) != nullptr;
            case ASN_OCTET_STR:
                variable.length = sizeof variable.value.text;
                return asn_parse_string(pValue, &length, &type, variable.value.text, &variable.length) != nullptr;
            default: return false;
        }
    }

    static decltype(SampleValue::value) valueOf(const Variable& variable, bool isFlag)
    {
        switch (variable.type) {
            case ASN_GAUGE: return static_cast<std::uint32_t>(variable.value.unsigned32);
            case ASN_COUNTER64:
                return (std::uint64_t{variable.value.unsigned64.high} << 32) | variable.value.unsigned64.low;
            case ASN_OCTET_STR: return std::string(reinterpret_cast<const char*>(variable.value.text), variable.length);
            default: break;
        }
        if (isFlag) {
            return variable.value.signed32 == 1;
        }
        return static_cast<std::int32_t>(variable.value.signed32);
    }

    const SampleValues m_samples;
    std::vector<Variable> m_values;
    std::vector<Variable> m_decoded;
    u_char m_bytes[4096] = {};
    std::size_t m_length = 0;
};

}  // namespace

std::unique_ptr<Codec> makeNetSnmpCodec(const SampleValues& values)
{
    return std::make_unique<NetSnmpCodec>(values);
}
