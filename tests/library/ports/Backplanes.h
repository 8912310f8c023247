#ifndef TESTS_LIBRARY_PORTS_BACKPLANES_H
#define TESTS_LIBRARY_PORTS_BACKPLANES_H

// The backplanes seen from the NPU: per type, which slot and link each of its ports leads to. Written
// separately from the library's tables, which go by slot, so that the two can be compared.

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>

constexpr std::uint32_t N_BACKPLANES = 5;

// "port:slot.link"; a link that is not named has no port.
constexpr const char* portsOfBackplanes[N_BACKPLANES] = {
    // type 0
    " 1:9.0   2:9.1   3:9.2 "
    " 4:8.0   5:8.1   6:8.2   7:8.3 "
    " 8:0.0   9:0.1  10:0.2  11:0.3 "
    "12:1.0  13:1.1  14:1.2  15:1.3 "
    "16:2.0  17:2.1  18:2.2  19:2.3 "
    "20:3.0  21:3.1  22:3.2  23:3.3 "
    "25:7.0  26:6.0  27:5.0  28:4.0",

    // type 1
    " 8:0.0   9:0.1  10:0.2  11:0.3 "
    "12:1.0  13:1.1  14:1.2  15:1.3 "
    "16:2.0  17:2.1  18:2.2  19:2.3 "
    "20:3.0  21:3.1  22:3.2  23:3.3",

    // type 2
    " 8:0.0   9:0.1  10:0.2  11:0.3 "
    "12:1.0  13:1.1  14:1.2  15:1.3 "
    "16:2.0  17:2.1  18:2.2  19:2.3 "
    "20:3.0  21:3.1  22:3.2  23:3.3 "
    "27:5.0  28:4.0",

    // type 3
    " 1:9.0   2:9.1   3:9.2 "
    " 4:8.0   5:8.1   6:8.2   7:8.3 "
    " 8:0.0   9:0.1  10:0.2  11:0.3 "
    "12:1.0  13:1.1  14:1.2  15:1.3 "
    "16:2.0  17:2.1  18:2.2  19:2.3 "
    "20:7.0  21:7.1  22:7.2  23:7.3 "
    "25:2.4  26:6.0  27:5.0  28:4.0",

    // type 4: placeholders
    "0:0.0   0:0.1   0:0.2   0:0.3  "
    "0:1.0   0:1.1   0:1.2   0:1.3  "
    "0:2.0   0:2.1   0:2.2   0:2.3  "
    "0:3.0   0:3.1   0:3.2   0:3.3  "
    "0:4.0   0:4.1   0:4.2   0:4.3  "
    "0:5.0   0:5.1   0:5.2   0:5.3  "
    "0:6.0   0:6.1   0:6.2   0:6.3  "
    "0:7.0   0:7.1   0:7.2   0:7.3  "
    "0:8.0   0:8.1   0:8.2   0:8.3  "
    "0:9.0   0:9.1   0:9.2   0:9.3  "
    "0:10.0  0:10.1  0:10.2  0:10.3 "
    "0:11.0  0:11.1  0:11.2  0:11.3 "
    "0:12.0  0:12.1  0:12.2  0:12.3 "
    "0:13.0  0:13.1  0:13.2  0:13.3 "
    "0:14.0  0:14.1  0:14.2  0:14.3",
};

using SlotAndLink = std::pair<std::uint32_t, std::uint32_t>;

/// The port of each slot and link that has one.
inline std::map<SlotAndLink, std::uint32_t> portsOfBackplane(std::uint32_t type)
{
    std::map<SlotAndLink, std::uint32_t> ports;
    std::istringstream text(portsOfBackplanes[type]);
    std::uint32_t port = 0;
    std::uint32_t slot = 0;
    std::uint32_t link = 0;
    char separator = '\0';
    while (text >> port >> separator >> slot >> separator >> link) {
        ports[{slot, link}] = port;
    }
    return ports;
}

#endif
