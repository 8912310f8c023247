#ifndef APPS_CARDS_WRITE_PLAN_H
#define APPS_CARDS_WRITE_PLAN_H

// Writing many values with requests of 2048 bytes.

#include <vector>

#include "IfcCardStatusAndControl.h"

namespace brantel {

/// Whether the value fits into a request at all.
bool fitsIntoRequest(const OidTypeValue& value);

/// The requests to write these values, in order, as few as possible. Each value must fit.
std::vector<OidTypeValueContainer> writeRequests(const OidTypeValueContainer& values);

}  // namespace brantel

#endif
