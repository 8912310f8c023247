#include "backplane/BackplanePicture.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "NpuDataPortsConfiguration.h"

namespace brantel {
namespace {

// Sizes in units of the picture.
constexpr int MARGIN = 20;
constexpr int LINK_WIDTH = 26;
constexpr int LINK_HEIGHT = 22;
constexpr int SLOT_PADDING = 6;
constexpr int SLOT_GAP = 10;
constexpr int SLOT_TOP = 50;
constexpr int SLOT_HEIGHT = 80;
constexpr int PORT_TOP = 280;
constexpr int PORT_WIDTH = 30;
constexpr int PORT_HEIGHT = 30;
constexpr int HEIGHT = 350;

constexpr int N_PORTS = static_cast<int>(DefaultKatanaDataPortsConfig::N_KATANA_DATA_PORTS);

int slotWidth(std::size_t nLinks)
{
    return std::max(static_cast<int>(nLinks), 2) * LINK_WIDTH + 2 * SLOT_PADDING;
}

int widthOfSlots(const BackplanePorts& ports)
{
    int width = 0;
    for (const std::vector<BackplaneLink>& links : ports) {
        width += slotWidth(links.size()) + SLOT_GAP;
    }
    return width - SLOT_GAP;
}

// "link", "link fast" for those with more than the normal bandwidth, "link none" for those without a port.
std::string linkClass(const BackplaneLink& link)
{
    if (!link) {
        return "link none";
    }
    const bool isFast = link->maxBandwidth > DefaultKatanaDataPortsConfig::maxBandwidthOfPort(0);
    return isFast ? "link fast" : "link";
}

std::string linkTitle(std::size_t slot, std::size_t link, const BackplaneLink& port)
{
    std::string title = "slot " + std::to_string(slot) + " link " + std::to_string(link) + ": ";
    if (!port) {
        return title + "no NPU port";
    }
    title += (port->npuPort == 0) ? "placeholder port 0" : "NPU port " + std::to_string(port->npuPort);
    return title + ", bandwidth " + std::to_string(port->maxBandwidth) + ", VLAN " + std::to_string(port->dcnVlan);
}

class Picture {
public:
    Picture(const BackplanePorts& ports, const std::string& title)
        : m_width(std::max(widthOfSlots(ports), N_PORTS * PORT_WIDTH) + 2 * MARGIN)
    {
        start(title);
        int x = (m_width - widthOfSlots(ports)) / 2;
        for (std::size_t slot = 0; slot < ports.size(); ++slot) {
            drawSlot(slot, ports[slot], x);
            x += slotWidth(ports[slot].size()) + SLOT_GAP;
        }
        drawNpu();
        m_svg << "</svg>";
    }

    std::string text() const { return m_svg.str(); }

private:
    void start(const std::string& title)
    {
        m_svg << R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 )" << m_width << ' ' << HEIGHT << "\">\n"
              << "<style>\n"
              << "  text { font: 11px sans-serif; text-anchor: middle; }\n"
              << "  rect { fill: #fff; stroke: #444; }\n"
              << "  .fast { fill: #fd8; stroke: #b60; }\n"
              << "  .none { fill: #ddd; stroke: #aaa; }\n"
              << "  line { stroke: #48a; }\n"
              << "  line.fast { stroke: #b60; stroke-width: 2; }\n"
              << "</style>\n"
              << "<rect width=\"" << m_width << "\" height=\"" << HEIGHT << "\" style=\"stroke: none\"/>\n";
        drawText(m_width / 2, 24, title);
    }

    void drawSlot(std::size_t slot, const std::vector<BackplaneLink>& links, int x)
    {
        const int width = slotWidth(links.size());
        drawBox("slot", x, SLOT_TOP, width, SLOT_HEIGHT);
        drawText(x + width / 2, SLOT_TOP + 20, "slot " + std::to_string(slot));
        int linkX = x + (width - static_cast<int>(links.size()) * LINK_WIDTH) / 2;
        for (std::size_t link = 0; link < links.size(); ++link) {
            drawLink(linkTitle(slot, link, links[link]), links[link], linkX);
            linkX += LINK_WIDTH;
        }
    }

    void drawLink(const std::string& title, const BackplaneLink& link, int x)
    {
        constexpr int TOP = SLOT_TOP + SLOT_HEIGHT - LINK_HEIGHT;
        const int middle = x + LINK_WIDTH / 2;
        m_svg << "<g><title>" << title << "</title>\n";
        drawBox(linkClass(link), x, TOP, LINK_WIDTH, LINK_HEIGHT);
        drawText(middle, TOP + 15, link ? std::to_string(link->npuPort) : "-");
        if (link && (link->npuPort != 0)) {
            m_svg << "<line class=\"" << linkClass(link) << "\" x1=\"" << middle << "\" y1=\"" << TOP + LINK_HEIGHT
                  << "\" x2=\"" << portX(static_cast<int>(link->npuPort)) + PORT_WIDTH / 2 << "\" y2=\"" << PORT_TOP
                  << "\"/>\n";
        }
        m_svg << "</g>\n";
    }

    void drawNpu()
    {
        for (int port = 1; port <= N_PORTS; ++port) {
            drawBox("port", portX(port), PORT_TOP, PORT_WIDTH, PORT_HEIGHT);
            drawText(portX(port) + PORT_WIDTH / 2, PORT_TOP + 20, std::to_string(port));
        }
        drawText(m_width / 2, PORT_TOP + PORT_HEIGHT + 24, "NPU data ports");
    }

    int portX(int port) const { return (m_width - N_PORTS * PORT_WIDTH) / 2 + (port - 1) * PORT_WIDTH; }

    void drawBox(const std::string& boxClass, int x, int y, int width, int height)
    {
        m_svg << "<rect class=\"" << boxClass << "\" x=\"" << x << "\" y=\"" << y << "\" width=\"" << width
              << "\" height=\"" << height << "\"/>\n";
    }

    void drawText(int x, int y, const std::string& text)
    {
        m_svg << "<text x=\"" << x << "\" y=\"" << y << "\">" << text << "</text>\n";
    }

    int m_width;
    std::ostringstream m_svg;
};

}  // namespace

std::string backplanePicture(const BackplanePorts& ports, const std::string& title)
{
    return Picture(ports, title).text();
}

}  // namespace brantel
