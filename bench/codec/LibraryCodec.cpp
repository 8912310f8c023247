#include "Codec.h"

namespace {

class LibraryCodec : public Codec {
public:
    bool encode(const OidTypeValueContainer& values) override
    {
        m_tlvs.clear();
        return convertOidTypeValueContainerToTlvs(values, m_tlvs);
    }

    bool decode(const ObjectIdContainer& requestedOids, OidTypeValueMap& values) override
    {
        const buffer_t answer(m_tlvs);  // its read position moves
        return convertTlvsToOidTypeValueMap(0, answer, values, &requestedOids);
    }

    std::size_t encodedSize() const override { return m_tlvs.size(); }

private:
    buffer_t m_tlvs;
};

}  // namespace

std::unique_ptr<Codec> makeLibraryCodec()
{
    return std::make_unique<LibraryCodec>();
}
