#include "backplane/BackplanePorts.h"

#include <string>

#include <gtest/gtest.h>

#include "backplane/BackplanePicture.h"
#include "library/ports/Backplanes.h"

namespace brantel {
namespace {

class BackplanePortsOfType : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(BackplanePortsOfType, AreThoseOfTheBackplane)
{
    std::map<SlotAndLink, std::uint32_t> found;
    const BackplanePorts ports = portsOfBackplaneType(GetParam());
    for (std::uint32_t slot = 0; slot < ports.size(); ++slot) {
        for (std::uint32_t link = 0; link < ports[slot].size(); ++link) {
            if (const BackplaneLink& port = ports[slot][link]) {
                found[{slot, link}] = port->npuPort;
                EXPECT_EQ(port->dcnVlan, 4031 + port->npuPort);
                EXPECT_EQ(port->maxBandwidth, (port->npuPort >= 25) ? 10000000U : 1000000U);
            }
        }
    }
    EXPECT_EQ(found, portsOfBackplane(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Every, BackplanePortsOfType, ::testing::Range(0U, N_BACKPLANES));

TEST(BackplanePorts, ShowSlotsWithoutLinksAndLinksWithoutPorts)
{
    const BackplanePorts ports = portsOfBackplaneType(3);
    ASSERT_EQ(ports.size(), 10U);
    EXPECT_TRUE(ports[3].empty());
    ASSERT_EQ(ports[9].size(), 4U);
    EXPECT_FALSE(ports[9][3].has_value());
}

std::size_t occurrences(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t pos = text.find(part); pos != std::string::npos; pos = text.find(part, pos + 1)) {
        ++count;
    }
    return count;
}

// The elements of the picture of a type.
struct Parts {
    std::size_t slots;
    std::size_t links;
    std::size_t linksWithoutPort;
    std::size_t fastLines;
    std::size_t lines;
    std::size_t ports;

    bool operator==(const Parts& other) const
    {
        return (slots == other.slots) && (links == other.links) && (linksWithoutPort == other.linksWithoutPort) &&
               (fastLines == other.fastLines) && (lines == other.lines) && (ports == other.ports);
    }
};

void PrintTo(const Parts& parts, std::ostream* pStream)
{
    *pStream << parts.slots << " slots, " << parts.links << " links, " << parts.linksWithoutPort << " without port, "
             << parts.fastLines << " fast of " << parts.lines << " lines, " << parts.ports << " ports";
}

Parts partsOfPicture(std::uint32_t type)
{
    const std::string svg = backplanePicture(portsOfBackplaneType(type), "title");
    return {occurrences(svg, "<rect class=\"slot\""),
            occurrences(svg, "<title>slot "),
            occurrences(svg, "<rect class=\"link none\""),
            occurrences(svg, "<line class=\"link fast\""),
            occurrences(svg, "<line "),
            occurrences(svg, "<rect class=\"port\"")};
}

TEST(BackplanePicture, ShowsSlotsLinksAndPorts)
{
    EXPECT_EQ(partsOfPicture(0), (Parts{10, 28, 1, 4, 27, 28}));
    EXPECT_EQ(partsOfPicture(1), (Parts{4, 16, 0, 0, 16, 28}));
    EXPECT_EQ(partsOfPicture(2), (Parts{6, 18, 0, 2, 18, 28}));
    EXPECT_EQ(partsOfPicture(3), (Parts{10, 28, 1, 4, 27, 28}));
    EXPECT_EQ(partsOfPicture(4), (Parts{15, 60, 0, 0, 0, 28})) << "placeholders lead to no port";
}

TEST(BackplanePicture, NamesEachLink)
{
    const std::string svg = backplanePicture(portsOfBackplaneType(3), "title");
    EXPECT_EQ(occurrences(svg, "<title>slot 2 link 4: NPU port 25, bandwidth 10000000, VLAN 4056</title>"), 1U);
    EXPECT_EQ(occurrences(svg, "<title>slot 9 link 3: no NPU port</title>"), 1U);
    EXPECT_EQ(occurrences(backplanePicture(portsOfBackplaneType(4), ""),
                          "<title>slot 14 link 3: placeholder port 0, bandwidth 1000000, VLAN 4031</title>"),
              1U);
}

TEST(BackplanePicture, LeadsEachLinkToItsPort)
{
    const std::string svg = backplanePicture(portsOfBackplaneType(1), "title");
    // 28 ports of width 30 in a picture of 880: port 8 is at 230 to 260.
    EXPECT_EQ(occurrences(svg, "x2=\"245\" y2=\"280\""), 1U);
    EXPECT_EQ(occurrences(svg,
                          "<rect class=\"port\" x=\"230\" y=\"280\" width=\"30\" height=\"30\"/>\n"
                          "<text x=\"245\" y=\"300\">8</text>"),
              1U);
}

}  // namespace

}  // namespace brantel
