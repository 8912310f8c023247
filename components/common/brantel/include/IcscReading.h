#ifndef ICSC_READING_H
#define ICSC_READING_H

// Reading a card again and again into one map. IcscClientProxy and the codec add to a map, and take an OID that the map
// already has for a duplicate in the answer; these functions empty the map first. Header only.
//
//     OidTypeValueMap values;
//     for (;;) {
//         if (icsc::readOids(client, slot, oids, values) == 0) {
//             evaluate(values);  // one value for each of the OIDs
//         }
//         wait();
//     }
//
//     void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result) override
//     {
//         if ((result == 0) && icsc::decodeAnswer(slot, tlvs, m_values, &m_oids)) {
//             evaluate(m_values);
//         }
//     }
//
//     icsc::readOids(client, 10, oids, values);  // -1, and a report: there is no slot 10
//
// What is logged, and on which thread to call, is as in IcscClientProxy.h and IfcCardStatusAndControl.h.

#include <cstdint>

#include "IcscClientProxy.h"
#include "IfcCardStatusAndControl.h"

namespace icsc {

/// Reads `oids`, each of them once, from the card in `slot` and replaces what `values` holds; waits for the answer.
/// Returns 0 exactly if `values` has a value for each OID, as it has if there are none, and otherwise leaves it empty
/// and returns
///     -1            the call failed, its answer could not be decoded, or OIDs were to be read where there is no such
///                   slot or no synchronous subscription to it (reported)
///     result code   the framework or the card refused
/// More than 255 OIDs do not fit into a request: what buffer_t throws goes to the caller.
inline std::int32_t readOids(IcscClientProxy& client, std::uint32_t slot, const ObjectIdContainer& oids,
                             OidTypeValueMap& values)
{
    values.clear();
    const std::int32_t result = client.getOidsSync(slot, oids, values);
    // The client also returns 0 where it made no call.
    return ((result == 0) && (values.size() != oids.size())) ? -1 : result;
}

/// Decodes an answer to a read and replaces what `values` holds. `requestedOids` and `slot` are as in
/// convertTlvsToOidTypeValueMap. Returns false, after an error line and with `values` empty, if the answer cannot be
/// decoded. Throws nothing.
inline bool decodeAnswer(std::uint32_t slot, const buffer_t& tlvs, OidTypeValueMap& values,
                         const ObjectIdContainer* requestedOids)
{
    values.clear();
    return convertTlvsToOidTypeValueMap(slot, tlvs, values, requestedOids);
}

}  // namespace icsc

#endif
