#include "NpuDataPortsConfiguration.h"

#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "Backplanes.h"
#include "SegmentCalls.h"
#include "support/Diagnostics.h"

namespace {

constexpr std::uint32_t MAX_UINT32 = std::numeric_limits<std::uint32_t>::max();

// Numbers around those that matter, and from all over the range.
std::vector<std::uint32_t> sampledNumbers()
{
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t number = 0; number <= 0x10000; ++number) {
        numbers.push_back(number);
    }
    for (std::uint32_t bit = 17; bit < 32; ++bit) {
        for (std::uint32_t offset = 0; offset < 5000; ++offset) {
            numbers.push_back((1U << bit) + offset);
        }
    }
    for (std::uint32_t offset = 0; offset < 5000; ++offset) {
        numbers.push_back(MAX_UINT32 - offset);
    }
    return numbers;
}

// Assertion reports with their lines, which are fixed.
Diagnostics reports;

void captureReportAndLine(const char* condition, const char* file, int line, const char* function)
{
    reports.push_back(assertReport(condition, std::string(file) + ":" + std::to_string(line), function));
}

class KatanaDataPorts : public DiagnosticsTest {
protected:
    KatanaDataPorts() : m_handlerBefore(setAssertFailedHandler(captureReportAndLine))
    {
        reports.clear();
        setSegment(segmentOf(1, 0));
    }
    ~KatanaDataPorts() override { setAssertFailedHandler(m_handlerBefore); }

    const std::unique_ptr<const INpuDataPortsConfiguration> m_pPorts = std::make_unique<DefaultKatanaDataPortsConfig>();

private:
    AssertFailedHandler m_handlerBefore;
};

Diagnostics reportOf(const std::string& condition, int line, const std::string& function)
{
    return {assertReport(condition,
                         "components/common/brantel/src/NpuDataPortsConfiguration.cpp:" + std::to_string(line),
                         "virtual bool DefaultKatanaDataPortsConfig::" + function + "(uint32_t) const")};
}

// Whether a check accepts a number, and what it reports.
struct Verdict {
    bool accepted;
    Diagnostics reported;

    bool operator==(const Verdict& other) const { return (accepted == other.accepted) && (reported == other.reported); }
};

void PrintTo(const Verdict& verdict, std::ostream* pStream)
{
    *pStream << (verdict.accepted ? "accepted" : "refused");
    for (const std::string& report : verdict.reported) {
        *pStream << ", " << report;
    }
}

template <typename Check>
Verdict verdictOf(const Check& check)
{
    reports.clear();
    const bool accepted = check();
    return {accepted, reports};
}

const Verdict accepted{true, {}};
const Verdict refusedPort{false, reportOf("((port != 0) && (port <= N_KATANA_DATA_PORTS))", 31, "checkNpuPort")};
const Verdict refusedLowVlan{false, reportOf("DCN_VLAN_NUMBER_MIN <= vlan", 37, "checkDcnVlan")};
const Verdict refusedHighVlan{false, reportOf("DCN_VLAN_NUMBER_MAX >= vlan", 38, "checkDcnVlan")};

TEST_F(KatanaDataPorts, AreDescribedByTheseConstants)
{
    EXPECT_EQ(DefaultKatanaDataPortsConfig::N_KATANA_DATA_PORTS, 28U);
    EXPECT_EQ(DefaultKatanaDataPortsConfig::DCN_VLAN_NUMBER_MIN, 4032U);
    EXPECT_EQ(DefaultKatanaDataPortsConfig::DCN_VLAN_NUMBER_MAX, 4059U);
    EXPECT_EQ(DefaultKatanaDataPortsConfig::DCN_MPLS_LABEL_VALUE, 1000U);
}

TEST_F(KatanaDataPorts, Are28)
{
    EXPECT_EQ(m_pPorts->getNrOfNpuDataPorts(), 28U);
}

TEST_F(KatanaDataPorts, PortsAreValidFrom1To28AndReportedOtherwise)
{
    for (const std::uint32_t port : {1U, 28U}) {
        EXPECT_EQ(verdictOf([&] { return m_pPorts->checkNpuPort(port); }), accepted) << port;
    }
    for (const std::uint32_t port : {0U, 29U}) {
        EXPECT_EQ(verdictOf([&] { return m_pPorts->checkNpuPort(port); }), refusedPort) << port;
    }
}

TEST_F(KatanaDataPorts, PortsOutsideTheRangeAreReportedAllOverTheNumbers)
{
    for (const std::uint32_t port : sampledNumbers()) {
        const bool isPort = (port >= 1) && (port <= 28);
        ASSERT_EQ(verdictOf([&] { return m_pPorts->checkNpuPort(port); }), isPort ? accepted : refusedPort) << port;
    }
}

TEST_F(KatanaDataPorts, DcnVlansAreValidFrom4032To4059AndReportedOtherwise)
{
    const auto verdict = [&](std::uint32_t vlan) { return verdictOf([&] { return m_pPorts->checkDcnVlan(vlan); }); };
    EXPECT_EQ(verdict(4031), refusedLowVlan);
    EXPECT_EQ(verdict(4032), accepted);
    EXPECT_EQ(verdict(4059), accepted);
    EXPECT_EQ(verdict(4060), refusedHighVlan);
}

TEST_F(KatanaDataPorts, DcnVlansOutsideTheRangeAreReportedAllOverTheNumbers)
{
    for (const std::uint32_t vlan : sampledNumbers()) {
        const Verdict& expected = (vlan < 4032) ? refusedLowVlan : (vlan > 4059) ? refusedHighVlan : accepted;
        ASSERT_EQ(verdictOf([&] { return m_pPorts->checkDcnVlan(vlan); }), expected) << vlan;
    }
}

TEST_F(KatanaDataPorts, TheDcnMplsLabelIs1000AndNoOtherIsReported)
{
    const Verdict refusedSilently{false, {}};
    for (const std::uint32_t label : sampledNumbers()) {
        ASSERT_EQ(verdictOf([&] { return m_pPorts->checkDcnMpls(label); }),
                  (label == 1000) ? accepted : refusedSilently)
            << label;
    }
}

TEST_F(KatanaDataPorts, TheDcnMplsLabelIsTheSameOnEveryLinkWithoutALookAtTheBackplane)
{
    setSegment(noSegment());
    EXPECT_EQ(m_pPorts->getDcnMplsLabel(0, 0), 1000U);
    EXPECT_EQ(m_pPorts->getDcnMplsLabel(MAX_UINT32, MAX_UINT32), 1000U);
    EXPECT_EQ(takeSegmentCalls(), std::vector<std::string>{});
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(KatanaDataPorts, ChecksReportWithoutATraceObject)
{
    m_diagnostics.removeTraceObject();
    EXPECT_EQ(verdictOf([&] { return m_pPorts->checkNpuPort(0); }), refusedPort);
}

// What the three operations answer for one slot and link.
struct LinkAnswer {
    bool hasPort;
    std::uint32_t bandwidth;
    std::uint32_t vlan;

    bool operator==(const LinkAnswer& other) const
    {
        return (hasPort == other.hasPort) && (bandwidth == other.bandwidth) && (vlan == other.vlan);
    }
};

void PrintTo(const LinkAnswer& answer, std::ostream* pStream)
{
    *pStream << (answer.hasPort ? "port" : "no port") << ", bandwidth " << answer.bandwidth << ", VLAN " << answer.vlan;
}

const LinkAnswer noPort{false, 0, 0};

class SlotLinks : public KatanaDataPorts {
protected:
    LinkAnswer answerOf(std::uint32_t slot, std::uint32_t link) const
    {
        return {m_pPorts->hasNpuPortForSlotLink(slot, link), m_pPorts->getMaxBandwidth(slot, link),
                m_pPorts->getDcnVlanNumber(slot, link)};
    }
};

TEST_F(SlotLinks, OfBackplaneType0)
{
    setSegment(segmentOf(1, 0));
    EXPECT_EQ(answerOf(9, 3), noPort);
    EXPECT_EQ(answerOf(4, 0), (LinkAnswer{true, 10000000, 4059}));
    EXPECT_EQ(answerOf(0, 0), (LinkAnswer{true, 1000000, 4039}));
    EXPECT_EQ(answerOf(10, 0), noPort);
    EXPECT_EQ(answerOf(4, 1), noPort);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(SlotLinks, AreThoseOfASegmentWhoseIdIs0)
{
    setSegment(segmentOfId(0, 3));
    EXPECT_EQ(m_pPorts->getDcnVlanNumber(2, 4), 4056U);
    EXPECT_EQ(takeSegmentCalls()[1], "shmat(0, NULL, 0)");
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(SlotLinks, OfBackplaneType3)
{
    setSegment(segmentOf(1, 3));
    for (const std::uint32_t link : {0U, 1U, 2U, 3U, 4U, MAX_UINT32}) {
        EXPECT_EQ(answerOf(3, link), noPort) << link;
    }
    EXPECT_EQ(answerOf(2, 4), (LinkAnswer{true, 10000000, 4056}));
}

TEST_F(SlotLinks, OfBackplaneType4HavePlaceholdersBelowTheDcnRange)
{
    setSegment(segmentOf(1, 4));
    for (std::uint32_t slot = 0; slot <= 14; ++slot) {
        for (std::uint32_t link = 0; link <= 3; ++link) {
            EXPECT_EQ(answerOf(slot, link), (LinkAnswer{true, 1000000, 4031})) << slot << "." << link;
        }
    }
}

class SlotLinksOfType : public SlotLinks, public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(SlotLinksOfType, AreThoseOfTheBackplaneAndNoneBeyond)
{
    setSegment(segmentOf(1, GetParam()));
    const auto ports = portsOfBackplane(GetParam());
    const std::vector<std::uint32_t> numbers{0,  1,  2,  3,  4,  5,  6,  7,  8,   9,          10,         11,        12,
                                             13, 14, 15, 16, 17, 31, 32, 63, 256, 0x7fffffff, 0x80000000, MAX_UINT32};
    for (const std::uint32_t slot : numbers) {
        for (const std::uint32_t link : numbers) {
            const auto found = ports.find({slot, link});
            LinkAnswer expected = noPort;
            if (found != ports.end()) {
                const bool isFast = (found->second >= 25) && (found->second <= 28);
                expected = {true, isFast ? 10000000U : 1000000U, found->second + 4031};
            }
            EXPECT_EQ(answerOf(slot, link), expected) << slot << "." << link;
        }
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

INSTANTIATE_TEST_SUITE_P(Every, SlotLinksOfType, ::testing::Range(0U, N_BACKPLANES));

// The DCN VLANs of the ports are the whole range, each once.
TEST_F(KatanaDataPorts, MapOneToOneOntoTheDcnVlans)
{
    for (std::uint32_t port = 1; port <= 28; ++port) {
        EXPECT_EQ(DefaultKatanaDataPortsConfig::dcnVlanOfPort(port), 4031 + port);
    }
}

TEST_F(KatanaDataPorts, FourOfThemAreFast)
{
    std::vector<std::uint32_t> fastPorts;
    for (std::uint32_t port = 0; port <= 1000; ++port) {
        if (DefaultKatanaDataPortsConfig::maxBandwidthOfPort(port) == 10000000) {
            fastPorts.push_back(port);
        }
    }
    EXPECT_EQ(fastPorts, (std::vector<std::uint32_t>{25, 26, 27, 28}));
}

// The three operations that read the backplane type, as data.
struct Operation {
    const char* name;
    std::uint32_t (*run)(const INpuDataPortsConfiguration&, std::uint32_t slot, std::uint32_t link);
    std::size_t nReadsAfterSuccess;

    std::uint32_t (*answerOfPort)(std::uint32_t port);
};

void PrintTo(const Operation& operation, std::ostream* pStream)
{
    *pStream << operation.name;
}

const Operation operations[] = {
    {"hasNpuPortForSlotLink",
     [](const INpuDataPortsConfiguration& ports, std::uint32_t slot, std::uint32_t link) {
         return std::uint32_t{ports.hasNpuPortForSlotLink(slot, link)};
     },
     1, [](std::uint32_t) { return 1U; }},
    {"getMaxBandwidth",
     [](const INpuDataPortsConfiguration& ports, std::uint32_t slot, std::uint32_t link) {
         return ports.getMaxBandwidth(slot, link);
     },
     0, [](std::uint32_t port) { return ((port >= 25) && (port <= 28)) ? 10000000U : 1000000U; }},
    {"getDcnVlanNumber",
     [](const INpuDataPortsConfiguration& ports, std::uint32_t slot, std::uint32_t link) {
         return ports.getDcnVlanNumber(slot, link);
     },
     0, [](std::uint32_t port) { return port + 4031; }},
};

// What an operation answers and which calls it makes.
struct Course {
    std::uint32_t answer;
    std::vector<std::string> segmentCalls;
    Diagnostics lines;

    bool operator==(const Course& other) const
    {
        return (answer == other.answer) && (segmentCalls == other.segmentCalls) && (lines == other.lines);
    }
};

void PrintTo(const Course& course, std::ostream* pStream)
{
    *pStream << course.answer << " after " << ::testing::PrintToString(course.segmentCalls) << " and "
             << ::testing::PrintToString(course.lines);
}

const Diagnostics unknownTypeLines{
    "3 SWERR ERROR DETECTED: %s %d  => SWERR ERROR DETECTED: bcm_include/customer/phy_otnCommon.h 730 ",
    "3 phy_getNpuPortForSlotBpPort called while backplaneType unknown, this should not happen => "
    "phy_getNpuPortForSlotBpPort called while backplaneType unknown, this should not happen",
};

class SegmentReads : public KatanaDataPorts, public ::testing::WithParamInterface<Operation> {
protected:
    Course courseOf(std::uint32_t slot, std::uint32_t link)
    {
        const std::uint32_t answer = GetParam().run(*m_pPorts, slot, link);
        return {answer, takeSegmentCalls(), m_diagnostics.take()};
    }

    Course success(std::uint32_t port, const Diagnostics& lines = {}) const
    {
        return {GetParam().answerOfPort(port), segmentReads(4 + GetParam().nReadsAfterSuccess), lines};
    }
};

TEST_P(SegmentReads, AreOneForTheCheckAndOneForEachStep)
{
    EXPECT_EQ(courseOf(4, 0), success(28));
    EXPECT_EQ(courseOf(10, 0), (Course{0, segmentReads(2), {}})) << "no such slot";
    EXPECT_EQ(courseOf(4, 1), (Course{0, segmentReads(3), {}})) << "no such link";
    EXPECT_EQ(courseOf(9, 3), (Course{0, segmentReads(4), {}})) << "a link without a port";
}

TEST_P(SegmentReads, WithoutASegmentAreTriedAgainAtEachStepAndReportedOnce)
{
    setSegment(noSegment());
    const auto nReads = 4 + GetParam().nReadsAfterSuccess;
    EXPECT_EQ(courseOf(0, 0), (Course{GetParam().answerOfPort(8),
                                      std::vector<std::string>(nReads, "shmget(5678, 12, 0666)"), unknownTypeLines}));
}

TEST_P(SegmentReads, DetachAlsoWhatAFailedAttachReturned)
{
    setSegment(unattachableSegment());
    std::vector<std::string> calls;
    for (int i = 0; i < 2; ++i) {
        calls.insert(calls.end(), {"shmget(5678, 12, 0666)", "shmat(7, NULL, 0)", "shmdt(-1)"});
    }
    EXPECT_EQ(courseOf(10, 0), (Course{0, calls, unknownTypeLines}));
}

TEST_P(SegmentReads, TakeASegmentThatIsNotValidForType0AndReportItOnce)
{
    setSegment(segmentOf(0, 3));
    EXPECT_EQ(courseOf(7, 0), success(25, unknownTypeLines));
}

TEST_P(SegmentReads, TakeATypeAbove4ForType0AndReportItOnce)
{
    for (const std::uint32_t type : {5U, 6U, 0x80000000U, MAX_UINT32}) {
        setSegment(segmentOf(1, type));
        EXPECT_EQ(courseOf(7, 0), success(25, unknownTypeLines)) << type;
    }
}

TEST_P(SegmentReads, TakeEveryValidWordButZeroForValid)
{
    for (const std::uint32_t valid : {1U, 2U, 0x01000000U, 0x80000000U, MAX_UINT32}) {
        setSegment(segmentOf(valid, 3));
        EXPECT_EQ(courseOf(7, 0), success(20)) << valid;
    }
}

TEST_P(SegmentReads, DoNotLookAtTheThirdWord)
{
    SegmentState state = segmentOf(1, 3);
    state.words[2] = MAX_UINT32;
    setSegment(state);
    EXPECT_EQ(courseOf(7, 0), success(20));
}

TEST_P(SegmentReads, ReportAnUnknownTypeWhateverTheTraceLevel)
{
    setSegment(noSegment());
    m_diagnostics.setTraceLevel(0);
    EXPECT_EQ(courseOf(10, 0).lines, unknownTypeLines);
    m_diagnostics.removeTraceObject();
    EXPECT_EQ(courseOf(10, 0).lines, unknownTypeLines);
}

TEST_P(SegmentReads, ReportOnlyWhatTheCheckSaw)
{
    setSegments({noSegment(), segmentOf(1, 3)});
    EXPECT_EQ(courseOf(7, 3).lines, unknownTypeLines);
    setSegments({segmentOf(1, 3), noSegment()});
    EXPECT_EQ(courseOf(7, 0).lines, Diagnostics{});
}

// The type changes after the check, after the slot was found, after the link was found.
TEST_P(SegmentReads, TakeATypeThatChangesBetweenTwoStepsFromTheNextStepOn)
{
    const SegmentState type0 = segmentOf(1, 0);
    const SegmentState type1 = segmentOf(1, 1);
    const SegmentState type3 = segmentOf(1, 3);

    setSegments({type1, type0});
    EXPECT_EQ(courseOf(8, 0), success(4)) << "slot 8 is there from the first step on";

    setSegments({type0, type1});
    EXPECT_EQ(courseOf(8, 0), (Course{0, segmentReads(2), {}})) << "slot 8 went before the first step";

    setSegments({type0, type0, type3});
    EXPECT_EQ(courseOf(3, 0), (Course{0, segmentReads(3), {}})) << "the links of slot 3 went before the second step";

    setSegments({type3, type3, type0});
    EXPECT_EQ(courseOf(3, 3), success(23)) << "the links of slot 3 came before the second step";

    setSegments({type0, type0, type0, type3});
    EXPECT_EQ(courseOf(7, 0), success(20)) << "slot 7 got another port before the third step";
}

TEST_P(SegmentReads, FindNoPortWhereATypeThatComesLateHasNoSuchLink)
{
    const SegmentState type1 = segmentOf(1, 1);
    const SegmentState type3 = segmentOf(1, 3);
    const SegmentState type4 = segmentOf(1, 4);

    setSegments({type4, type4, type1});
    EXPECT_EQ(courseOf(14, 3), (Course{0, segmentReads(3), {}}));

    setSegments({type3, type3, type3, type1});
    EXPECT_EQ(courseOf(2, 4), (Course{0, segmentReads(4), {}}));

    setSegments({type4, type4, type4, type1});
    EXPECT_EQ(courseOf(14, 3), (Course{0, segmentReads(4), {}}));
}

TEST_P(SegmentReads, FallBackToType0AtAStepThatFindsNoSegment)
{
    const SegmentState type3 = segmentOf(1, 3);
    setSegments({type3, type3, type3, segmentOf(0, 3)});
    EXPECT_EQ(courseOf(7, 0), success(25));
}

INSTANTIATE_TEST_SUITE_P(Of, SegmentReads, ::testing::ValuesIn(operations),
                         [](const auto& test) { return std::string(test.param.name); });

// What a component may derive from.
class NoPorts : public INpuDataPortsConfiguration {
public:
    explicit NoPorts(bool& destroyed) : m_destroyed(destroyed) {}
    ~NoPorts() override { m_destroyed = true; }
    std::uint32_t getNrOfNpuDataPorts() const override { return 0; }
    bool checkNpuPort(std::uint32_t) const override { return false; }
    bool checkDcnVlan(std::uint32_t) const override { return false; }
    bool checkDcnMpls(std::uint32_t) const override { return false; }
    bool hasNpuPortForSlotLink(std::uint32_t, std::uint32_t) const override { return false; }
    std::uint32_t getMaxBandwidth(std::uint32_t, std::uint32_t) const override { return 0; }
    std::uint32_t getDcnMplsLabel(std::uint32_t, std::uint32_t) const override { return 0; }
    std::uint32_t getDcnVlanNumber(std::uint32_t, std::uint32_t) const override { return 0; }

private:
    bool& m_destroyed;
};

TEST(NpuDataPortsInterface, DeletesTheImplementationBehindIt)
{
    bool destroyed = false;
    const INpuDataPortsConfiguration* pPorts = new NoPorts(destroyed);
    delete pPorts;
    EXPECT_TRUE(destroyed);
}

}  // namespace
