#ifndef APPS_CARDS_TLV_ELEMENTS_H
#define APPS_CARDS_TLV_ELEMENTS_H

#include <optional>
#include <vector>

#include "message/buffer_t.h"

/// The elements of a stream of either kind; nothing if there are fewer or more bytes than its count and lengths say.
std::optional<std::vector<buffer_t>> elementsOf(const buffer_t& tlvs);

#endif
