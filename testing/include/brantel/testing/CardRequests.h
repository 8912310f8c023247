#ifndef BRANTEL_TESTING_CARD_REQUESTS_H
#define BRANTEL_TESTING_CARD_REQUESTS_H

// What a component asks a card for, decoded: the side of the codec (IfcCardStatusAndControl.h) that only cards need.
//
//     parseReadRequest(tlvs)     {1, 2}                             the OIDs, in the order of the request
//     parseWriteRequest(tlvs)    {{1, OID_TYPE_UINT8, 7}}           the values, likewise
//
// Any thread may call these, on a stream of its own: they move its read position.

#include <optional>

#include "IfcCardStatusAndControl.h"
#include "message/buffer_t.h"

namespace brantelTesting {

/// The OIDs that a request to read lists; nothing if `tlvs` is not exactly such a request.
std::optional<ObjectIdContainer> parseReadRequest(const buffer_t& tlvs);

/// The values that a request to write lists; nothing if `tlvs` is not exactly such a request. The codec logs what it
/// cannot decode.
std::optional<OidTypeValueContainer> parseWriteRequest(const buffer_t& tlvs);

}  // namespace brantelTesting

#endif
