#include "Codec.h"

namespace {

class LibraryCodec : public Codec {
public:
    bool encode(const OidTypeValueContainer& values) override
    {
        m_requestedOids.resize(values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            m_requestedOids[i] = values[i].oid;
        }
        m_tlvs.clear();
        return convertOidTypeValueContainerToTlvs(values, m_tlvs);
    }

    bool decode(OidTypeValueMap& values) override
    {
        const buffer_t answer(m_tlvs);  // its read position moves
        return convertTlvsToOidTypeValueMap(0, answer, values, &m_requestedOids);
    }

    std::size_t encodedSize() const override { return m_tlvs.size(); }

private:
    ObjectIdContainer m_requestedOids;
    buffer_t m_tlvs;
};

}  // namespace

std::unique_ptr<Codec> makeLibraryCodec()
{
    return std::make_unique<LibraryCodec>();
}
