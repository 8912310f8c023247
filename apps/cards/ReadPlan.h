#ifndef APPS_CARDS_READ_PLAN_H
#define APPS_CARDS_READ_PLAN_H

// How a list of OIDs is split over requests: as few as the 2048 bytes of a request and, as far as sizes are known, of
// its answer allow. A card refuses a request as a whole; one that it refuses for an answer too large, or for an object,
// is halved until what fails stands alone.

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "IfcCardStatusAndControl.h"

/// The requests for these OIDs, in order. `oids` must not hold an OID twice.
std::vector<ObjectIdContainer> requestsFor(const ObjectIdContainer& oids);

/// The halves of a request that was answered `result`; nothing if halving it cannot help.
std::optional<std::pair<ObjectIdContainer, ObjectIdContainer>> halvesOf(const ObjectIdContainer& request,
                                                                        std::int32_t result);

/// The requests to write these values, in order, each as large as 2048 bytes allow. A value that fits into no request
/// stands alone.
std::vector<OidTypeValueContainer> requestsFor(const OidTypeValueContainer& values);

#endif
