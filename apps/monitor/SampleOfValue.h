#ifndef APPS_MONITOR_SAMPLE_OF_VALUE_H
#define APPS_MONITOR_SAMPLE_OF_VALUE_H

// Which values of objects are samples for rules.

#include <optional>

#include "IfcCardStatusAndControl.h"
#include "rules/RuleSession.h"

namespace brantel {

/// The number that a value is, true and false being 1 and 0; nothing if it is none: a text, an address, bytes. A number
/// above the largest SampleValue becomes that, which is out of range for every rule.
std::optional<SampleValue> sampleOfValue(const TypeValueRecord& record);

}  // namespace brantel

#endif
