#include "cards/Tlv.h"

#include <utility>

#include "cards/OidTable.h"
#include "cards/ValueVisitor.h"

namespace brantel {

namespace {

// The bytes of a stream that are not taken yet.
class Bytes {
public:
    explicit Bytes(const buffer_t& stream) : m_pNext(stream.data()), m_left(stream.size()) {}

    std::size_t left() const { return m_left; }

    std::optional<std::uint32_t> takeNumber()
    {
        const std::optional<TlvElement> bytes = take(tlv::LENGTH_SIZE);
        if (!bytes) {
            return std::nullopt;
        }
        std::uint32_t number = 0;
        buffer_t(bytes->bytes, bytes->length) >> number;
        return number;
    }

    std::optional<TlvElement> take(std::size_t length)
    {
        if (length > m_left) {
            return std::nullopt;
        }
        const TlvElement taken{m_pNext, length};
        m_pNext += length;
        m_left -= length;
        return taken;
    }

private:
    const unsigned char* m_pNext;
    std::size_t m_left;
};

std::uint32_t numberAt(const TlvElement& element, std::size_t position)
{
    std::uint32_t number = 0;
    buffer_t(element.bytes + position, sizeof number) >> number;
    return number;
}

bool isTypeOfObject(std::uint32_t oid, OidValueType type)
{
    const OidEntry* const pEntry = findOid(oid);
    return (pEntry == nullptr) || !pEntry->type || (*pEntry->type == type);
}

// Whether the bytes are one value of a type, no less and no more.
struct IsWholeValue {
    template <typename Number>
    bool operator()(ValueTag<Number>) const
    {
        return value.length == sizeof(Number);
    }
    bool operator()(ValueTag<bool>) const { return (value.length == 1) && (value.bytes[0] <= 1); }
    bool operator()(ValueTag<std::string>) const { return hasOwnLength(); }
    bool operator()(ValueTag<buffer_t>) const { return hasOwnLength(); }
    bool operator()(ValueTag<MacAddress>) const
    {
        return (value.length == tlv::LENGTH_SIZE + tlv::MAC_SIZE) && hasOwnLength();
    }

    bool hasOwnLength() const
    {
        return (value.length >= tlv::LENGTH_SIZE) && (numberAt(value, 0) == value.length - tlv::LENGTH_SIZE);
    }

    TlvElement value;
};

struct ValueSize {
    template <typename Number>
    std::size_t operator()(const Number&) const
    {
        return sizeof(Number);
    }
    std::size_t operator()(bool) const { return 1; }
    std::size_t operator()(const std::string& text) const { return tlv::LENGTH_SIZE + text.size(); }
    std::size_t operator()(const buffer_t& buffer) const { return tlv::LENGTH_SIZE + buffer.size(); }
    std::size_t operator()(MacAddress) const { return tlv::LENGTH_SIZE + tlv::MAC_SIZE; }
};

}  // namespace

std::optional<std::vector<TlvElement>> elementsIn(const buffer_t& tlvs)
{
    Bytes bytes(tlvs);
    const std::optional<std::uint32_t> count = bytes.takeNumber();
    if (!count || (*count > bytes.left() / tlv::LENGTH_SIZE)) {
        return std::nullopt;
    }
    std::vector<TlvElement> elements;
    elements.reserve(*count);
    for (std::uint32_t i = 0; i < *count; ++i) {
        const std::optional<std::uint32_t> length = bytes.takeNumber();
        const std::optional<TlvElement> element = length ? bytes.take(*length) : std::nullopt;
        if (!element) {
            return std::nullopt;
        }
        elements.push_back(*element);
    }
    return (bytes.left() == 0) ? std::optional(std::move(elements)) : std::nullopt;
}

std::optional<std::vector<buffer_t>> elementsOf(const buffer_t& tlvs)
{
    const std::optional<std::vector<TlvElement>> elements = elementsIn(tlvs);
    if (!elements) {
        return std::nullopt;
    }
    std::vector<buffer_t> buffers;
    buffers.reserve(elements->size());
    for (const TlvElement& element : *elements) {
        buffers.emplace_back(element.bytes, element.length);
    }
    return buffers;
}

std::optional<std::uint32_t> oidOfElement(const TlvElement& element)
{
    return (element.length >= tlv::OID_SIZE) ? std::optional(numberAt(element, 0)) : std::nullopt;
}

bool isWellFormedValue(const TlvElement& element)
{
    if (element.length < tlv::POS_VALUE) {
        return false;
    }
    const auto type = static_cast<OidValueType>(element.bytes[tlv::POS_TYPE]);
    const TlvElement value{element.bytes + tlv::POS_VALUE, element.length - tlv::POS_VALUE};
    return visitType(type, IsWholeValue{value}) && isTypeOfObject(numberAt(element, 0), type);
}

std::size_t elementSize(const OidTypeValue& value)
{
    return tlv::LENGTH_SIZE + tlv::POS_VALUE + visitValue(value.type, value.value, ValueSize());
}

}  // namespace brantel
