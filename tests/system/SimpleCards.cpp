// Cards in the slots 0, 1, ..., fast, so that what is measured is their caller's: OID i is an unsigned int, i % 100.
//
//     simple_cards CARDS [SILENT_SLOT]
//
// The card in SILENT_SLOT takes requests and answers none. Prints "ready", and after SIGTERM a line for each slot:
// "SLOT READINGS MEAN LONGEST", the latter two the milliseconds between the beginnings of readings. A reading begins
// with the request for OID 0.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cards/Tlv.h"
#include "common/Signals.h"
#include "icsc/OBappsToICSC_1_0_C.h"
#include "message/OBcomponent.h"

namespace {

using Clock = std::chrono::steady_clock;

class SimpleCard : public OBappsToICSC_1_0_C {
public:
    SimpleCard(OBcomponent& component, const std::string& serviceName, bool isSilent)
        : OBappsToICSC_1_0_C(component, serviceName.c_str()), m_isSilent(isSilent)
    {
    }

    void printReadings(int slot) const
    {
        double sum = 0;
        double longest = 0;
        for (std::size_t i = 1; i < m_readings.size(); ++i) {
            const double gap = std::chrono::duration<double, std::milli>(m_readings[i] - m_readings[i - 1]).count();
            sum += gap;
            longest = std::max(longest, gap);
        }
        const std::size_t gaps = std::max<std::size_t>(m_readings.size(), 2) - 1;
        std::printf("%d %zu %.3f %.3f\n", slot, m_readings.size(), sum / static_cast<double>(gaps), longest);
    }

protected:
    void ICSCRead(const OBmessage& request, int, const buffer_t& tlvs) override
    {
        const std::vector<buffer_t> elements = brantel::elementsOf(tlvs).value();
        buffer_t answer;
        answer << static_cast<std::uint32_t>(elements.size());
        for (const buffer_t& element : elements) {
            std::uint32_t oid = 0;
            element >> oid;
            if (oid == 0) {
                m_readings.push_back(Clock::now());
            }
            buffer_t value;
            value << oid << std::uint8_t{1} << std::uint32_t{oid % 100};
            answer << value;
        }
        if (m_isSilent) {
            giveUp(request);
        } else {
            reply(request, answer, 0);
        }
    }

private:
    const bool m_isSilent;
    std::vector<Clock::time_point> m_readings;
};

}  // namespace

int main(int argc, char** argv)
{
    const int nCards = (argc > 1) ? std::atoi(argv[1]) : 1;       // NOLINT(cert-err34-c)
    const int silentSlot = (argc > 2) ? std::atoi(argv[2]) : -1;  // NOLINT(cert-err34-c)
    OBcomponent component("simple cards");
    const brantel::StopOnSignals stopOnSignals([&] { component.stop(); });
    std::vector<std::unique_ptr<SimpleCard>> cards;
    for (int slot = 0; slot < nCards; ++slot) {
        const std::string name = "ICSCClient" + std::to_string(slot) + ".ReadWriteAsync";
        cards.push_back(std::make_unique<SimpleCard>(component, name, slot == silentSlot));
    }
    static_cast<void>(std::puts("ready"));
    static_cast<void>(std::fflush(stdout));
    component.run();
    for (int slot = 0; slot < nCards; ++slot) {
        cards[static_cast<std::size_t>(slot)]->printReadings(slot);
    }
    return 0;
}
