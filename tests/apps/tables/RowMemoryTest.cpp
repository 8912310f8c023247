// Reading a file of rows takes the memory of one row and the same time for each row, however many there are.

#include <string>

#include <gtest/gtest.h>

#include "support/Allocations.h"
#include "support/TemporaryDirectory.h"
#include "tables/RowFiles.h"

namespace brantel {
namespace {

// Lets each row go.
class Counter : public RowReceiver {
public:
    void beginTable(const EventTable& /*table*/) override {}
    bool take(SourceRow /*row*/) override
    {
        ++nRows;
        return true;
    }

    std::size_t nRows = 0;
};

struct Costs {
    std::size_t peakBytes;
    std::size_t allocations;
};

class RowMemory : public ::testing::TestWithParam<TableFormat> {
protected:
    static std::string contents(std::size_t nRows)
    {
        const bool isJson = GetParam() == TableFormat::JSON;
        const std::string row = isJson ? R"({"Slot":3,"OID":"5","Rule":"/"})" : "3,5,/\n";
        std::string text = isJson ? R"({"IfcCardsAllowEventsTable":[)" : "Slot,OID,Rule\n";
        for (std::size_t i = 0; i < nRows; ++i) {
            text += ((i == 0) || !isJson) ? row : "," + row;
        }
        return text + (isJson ? "]}" : "");
    }

    Costs costsOf(std::size_t nRows) const
    {
        const SpooledInput input(m_directory.write("rows", contents(nRows)));
        Counter counter;
        AllocationTotals& totals = allocationTotals();
        totals.peakBytes = totals.liveBytes;
        const AllocationTotals before = totals;
        readRows(input, GetParam(), counter);
        EXPECT_EQ(counter.nRows, nRows);
        return {totals.peakBytes - before.liveBytes, totals.count - before.count};
    }

    TemporaryDirectory m_directory;
};

TEST_P(RowMemory, DoesNotGrowWithTheNumberOfRows)
{
    costsOf(10);  // allocated once
    const Costs few = costsOf(40000);
    const Costs many = costsOf(400000);
    EXPECT_LE(many.peakBytes, few.peakBytes + 4096) << "a location has one digit more";
    EXPECT_LT(many.peakBytes, 400000U) << "two buffers and a row";
    EXPECT_NEAR(static_cast<double>(many.allocations), 10.0 * static_cast<double>(few.allocations),
                0.01 * static_cast<double>(many.allocations));
}

INSTANTIATE_TEST_SUITE_P(Of, RowMemory, ::testing::Values(TableFormat::CSV, TableFormat::JSON),
                         [](const ::testing::TestParamInfo<TableFormat>& format) {
                             return (format.param == TableFormat::CSV) ? "Csv" : "Json";
                         });

}  // namespace

}  // namespace brantel
