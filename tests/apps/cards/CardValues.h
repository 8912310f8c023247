#ifndef TESTS_APPS_CARD_VALUES_H
#define TESTS_APPS_CARD_VALUES_H

// Values of objects as tests write them down and compare them.

#include <map>
#include <string>
#include <vector>

#include "cards/Card.h"
#include "cards/OidTable.h"
#include "cards/ValueText.h"

namespace brantel {

/// By number, as in {0x0001000B, "uint8 1"}.
using ValueTexts = std::map<std::uint32_t, std::string>;

inline std::string typedText(OidValueType type, const boost::any& value)
{
    return typeText(type) + " " + valueText(type, value);
}

inline ValueTexts textsOf(const OidTypeValueMap& values)
{
    ValueTexts texts;
    for (const auto& [oid, record] : values) {
        texts[oid] = typedText(record.type, record.value);
    }
    return texts;
}

/// The present values of all objects.
inline ValueTexts textsOf(const CardObjects& objects)
{
    ValueTexts texts;
    for (const auto& [oid, object] : objects) {
        texts[oid] = typedText(object.type, object.read());
    }
    return texts;
}

inline buffer_t readRequest(const ObjectIdContainer& oids)
{
    buffer_t request;
    convertObjectIdContainerToTlvs(oids, request);
    return request;
}

inline buffer_t writeRequest(const OidTypeValueContainer& values)
{
    buffer_t request;
    convertOidTypeValueContainerToTlvs(values, request);
    return request;
}

/// A value as the shell writes it, which must be one.
inline OidTypeValue written(std::uint32_t oid, OidValueType type, const std::string& text)
{
    return {oid, type, parseValue(type, text).value()};
}

/// What a card answers to a read that it must not refuse.
inline ValueTexts readTexts(Card& card, const ObjectIdContainer& oids)
{
    const Card::Answer answer = card.read(readRequest(oids));
    OidTypeValueMap values;
    convertTlvsToOidTypeValueMap(0, answer.tlvs, values, &oids);
    return textsOf(values);
}

}  // namespace brantel

#endif
