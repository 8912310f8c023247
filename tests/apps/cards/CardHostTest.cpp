// The source "host": live counters of this machine.

#include <ctime>
#include <fstream>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"
#include "cards/CardObjects.h"

namespace brantel {

using namespace oids;

namespace {

class CardHost : public testing::Test {
protected:
    CardHost() { addHostObjects(m_objects); }

    template <typename Value>
    Value valueOf(std::uint32_t oid) const
    {
        return boost::any_cast<Value>(m_objects.at(oid).read());
    }

    CardObjects m_objects;
};

TEST_F(CardHost, HasReadOnlyObjectsOfTheTable)
{
    for (const auto& [oid, object] : m_objects) {
        const OidEntry* const pEntry = findOid(oid);
        ASSERT_NE(pEntry, nullptr) << oid;
        EXPECT_EQ(pEntry->type, object.type) << pEntry->name;
        EXPECT_FALSE(pEntry->isWritable || object.check) << pEntry->name;
        EXPECT_NE(typedText(object.type, object.read()), "") << pEntry->name;  // throws if it holds another type
    }
}

TEST_F(CardHost, HasEveryCounterThatHostsHave)
{
    for (const OidEntry& entry : oidTable()) {
        const bool isOfEveryHost = (entry.oid >= HOST_NAME) && (entry.oid < TEMPERATURE);
        EXPECT_TRUE(!isOfEveryHost || (m_objects.count(entry.oid) == 1)) << entry.name;
    }
}

TEST_F(CardHost, ShowsWhatTheSystemReports)
{
    char name[256] = "";
    gethostname(name, sizeof name);
    EXPECT_EQ(valueOf<std::string>(HOST_NAME), name);
    EXPECT_EQ(valueOf<unsigned short>(CPU_COUNT), sysconf(_SC_NPROCESSORS_ONLN));
    unsigned int kib = 0;
    std::string label;
    std::ifstream("/proc/meminfo") >> label >> kib;
    EXPECT_EQ(valueOf<unsigned int>(MEMORY_TOTAL), kib);
}

TEST_F(CardHost, ShowsPlausibleValues)
{
    EXPECT_GT(valueOf<unsigned int>(HOST_UPTIME), 0U);
    EXPECT_LE(valueOf<unsigned char>(CPU_BUSY), 100);
    EXPECT_LE(valueOf<unsigned int>(MEMORY_FREE), valueOf<unsigned int>(MEMORY_TOTAL));
    EXPECT_LE(valueOf<unsigned int>(MEMORY_AVAILABLE), valueOf<unsigned int>(MEMORY_TOTAL));
    EXPECT_LE(valueOf<unsigned int>(SWAP_FREE), valueOf<unsigned int>(SWAP_TOTAL));
}

TEST_F(CardHost, ShowsTheCpuTimeThatWasSpent)
{
    const auto spent = [this] { return valueOf<unsigned long long>(CPU_USER_TIME); };
    const unsigned long long before = spent();
    const std::clock_t start = std::clock();
    while ((spent() == before) && (std::clock() - start < 30 * CLOCKS_PER_SEC)) {
        // busy: the kernel counts by samples, so one step may be a while in coming
    }
    EXPECT_GT(spent(), before);
}

}  // namespace

}  // namespace brantel
