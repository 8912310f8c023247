#ifndef APPS_CARDS_SLOT_OBSTACLE_H
#define APPS_CARDS_SLOT_OBSTACLE_H

// Why the card of a slot is not reached: calls that wait for their answers do not say.

#include <cstdint>

#include "Icsc.h"

namespace brantel {

/// Looks for the slot's service for a moment, without calling it, and reports on standard error why it is not reached,
/// as far as known. Throws std::runtime_error if the process may not open enough files.
void printObstacleOfSlot(std::uint32_t slot, icsc::Interface interface);

}  // namespace brantel

#endif
