#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

#include "Codec.h"

namespace {

// A stream is an array of values, a value an array of its OID, the index of its type and itself.
class MsgpackCodec : public Codec {
public:
    explicit MsgpackCodec(const SampleValues& values) : m_values(values) {}

    bool encode() override
    {
        m_bytes.clear();
        msgpack::packer<msgpack::sbuffer> packer(m_bytes);
        packer.pack_array(static_cast<std::uint32_t>(m_values.size()));
        for (const SampleValue& sample : m_values) {
            packer.pack_array(3);
            packer.pack(sample.oid);
            packer.pack(static_cast<std::uint8_t>(sample.value.index()));
            std::visit([&packer](const auto& value) { packer.pack(value); }, sample.value);
        }
        return true;
    }

    bool decode() override
    {
        m_decoded = msgpack::unpack(m_bytes.data(), m_bytes.size());
        return m_decoded->type == msgpack::type::ARRAY;
    }

    std::size_t encodedSize() const override { return m_bytes.size(); }

    SampleValues decoded() const override
    {
        SampleValues values;
        const msgpack::object_array& elements = m_decoded->via.array;
        for (std::uint32_t i = 0; i < elements.size; ++i) {
            const msgpack::object* const pParts = elements.ptr[i].via.array.ptr;
            values.push_back({pParts[0].as<std::uint32_t>(), valueOf(pParts[1].as<unsigned int>(), pParts[2])});
        }
        return values;
    }

private:
    static decltype(SampleValue::value) valueOf(unsigned int type, const msgpack::object& value)
    {
        switch (type) {
            case 0: return value.as<std::uint32_t>();
            case 1: return value.as<std::int32_t>();
            case 2: return value.as<std::uint64_t>();
            case 3: return value.as<bool>();
            default: return value.as<std::string>();
        }
    }

    const SampleValues m_values;
    msgpack::sbuffer m_bytes;
    msgpack::object_handle m_decoded;
};

}  // namespace

std::unique_ptr<Codec> makeMsgpackCodec(const SampleValues& values)
{
    return std::make_unique<MsgpackCodec>(values);
}
