#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

#include "Codec.h"

namespace {

using Packer = msgpack::packer<msgpack::sbuffer>;

// A stream is an array of values, a value an array of OID, type code and value.
void pack(Packer& packer, const OidTypeValue& value)
{
    packer.pack_array(3);
    packer.pack_uint32(value.oid);
    packer.pack_uint8(static_cast<std::uint8_t>(value.type));
    switch (value.type) {
        case OID_TYPE_UINT32: packer.pack(boost::any_cast<unsigned int>(value.value)); break;
        case OID_TYPE_INT32: packer.pack(boost::any_cast<int>(value.value)); break;
        case OID_TYPE_UINT64: packer.pack(boost::any_cast<unsigned long long>(value.value)); break;
        default: packer.pack(boost::any_cast<const std::string&>(value.value)); break;
    }
}

void add(OidTypeValueMap& values, const msgpack::object& element)
{
    const msgpack::object* const pParts = element.via.array.ptr;
    const auto oid = pParts[0].as<std::uint32_t>();
    const auto type = static_cast<OidValueType>(pParts[1].as<std::uint8_t>());
    const msgpack::object& value = pParts[2];
    switch (type) {
        case OID_TYPE_UINT32: addValue(values, oid, type, value.as<unsigned int>()); break;
        case OID_TYPE_INT32: addValue(values, oid, type, value.as<int>()); break;
        case OID_TYPE_UINT64: addValue(values, oid, type, value.as<unsigned long long>()); break;
        default: addValue(values, oid, type, value.as<std::string>()); break;
    }
}

class MsgpackCodec : public Codec {
public:
    bool encode(const OidTypeValueContainer& values) override
    {
        m_bytes.clear();
        Packer packer(m_bytes);
        packer.pack_array(static_cast<std::uint32_t>(values.size()));
        for (const OidTypeValue& value : values) {
            pack(packer, value);
        }
        return true;
    }

    bool decode(const ObjectIdContainer&, OidTypeValueMap& values) override
    {
        if (!decodeOwn()) {
            return false;
        }
        const msgpack::object_array& elements = m_decoded->via.array;
        for (std::uint32_t i = 0; i < elements.size; ++i) {
            add(values, elements.ptr[i]);
        }
        return true;
    }

    std::size_t encodedSize() const override { return m_bytes.size(); }
    bool hasOwnForm() const override { return true; }

    // From the objects that decodeOwn() made: encode() makes none.
    bool encodeOwn() override
    {
        m_bytes.clear();
        msgpack::pack(m_bytes, m_decoded.get());
        return true;
    }

    bool decodeOwn() override
    {
        m_decoded = msgpack::unpack(m_bytes.data(), m_bytes.size());
        return m_decoded->type == msgpack::type::ARRAY;
    }

private:
    msgpack::sbuffer m_bytes;
    msgpack::object_handle m_decoded;
};

}  // namespace

std::unique_ptr<Codec> makeMsgpackCodec()
{
    return std::make_unique<MsgpackCodec>();
}
