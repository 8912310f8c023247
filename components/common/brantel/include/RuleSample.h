#ifndef RULE_SAMPLE_H
#define RULE_SAMPLE_H

// Samples for rules from the values of objects: what a component does between reading a card (IcscClientProxy.h) and
// evaluating a rule (EventMgmtRulesCppObjects.h). T is the instantiation that the rule text declares, int or unsigned
// int.
//
//     const TypeValueRecord& record = values.at(oid);
//     if (const std::optional<unsigned int> sample = sampleOf<unsigned int>(record)) {
//         isRaised = checkSingleHysteresisRule(rule, *sample, isRaised);
//     } else {
//         report(reasonAgainstSample<unsigned int>(record));
//     }
//
//     sampleOf<unsigned int>({OID_TYPE_INT8, static_cast<signed char>(-1)});  // nothing
//     // "-1 is outside 0 to 4294967295, the range of an unsigned rule"
//
//     type                                         sample
//     integers of 8 to 64 bits                     the number, if it is in the range of T
//     bool                                         1 or 0
//     string, buffer, IPv4 address, MAC address    none
//
// No function keeps state or logs; all may run on any thread. They throw nothing but std::bad_alloc.

#include <optional>
#include <string>

#include "BrantelExport.h"
#include "IfcCardStatusAndControl.h"

namespace icsc {

/// Whether values of `type` are numbers, so that a rule can be about them: the integers and bool.
BRANTEL_EXPORT bool isNumericType(OidValueType type);

/// The sample that the value of `record` is for a rule of the instantiation T. Nothing if it is not a number, not in
/// the range of T, or not held in the type that the record names.
template <typename T>
BRANTEL_EXPORT std::optional<T> sampleOf(const TypeValueRecord& record);

/// Why sampleOf<T>(record) is nothing, in words: what the value is, or the number and the range; empty if it is a
/// sample.
template <typename T>
BRANTEL_EXPORT std::string reasonAgainstSample(const TypeValueRecord& record);

}  // namespace icsc

#endif
