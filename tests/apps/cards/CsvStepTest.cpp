// A recording that is stepped serves each row once to a reader of all its columns, however the reading is split.

#include <gtest/gtest.h>

#include "cards/Card.h"
#include "cards/OidTable.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

class SteppedRecording : public testing::Test {
protected:
    SteppedRecording() : m_card(3, "csv", objects()) {}

    /// The numbers that one request brings.
    std::vector<int> read(const ObjectIdContainer& oids)
    {
        buffer_t request;
        convertObjectIdContainerToTlvs(oids, request);
        const Card::Answer answer = m_card.read(request);
        OidTypeValueMap values;
        EXPECT_TRUE(convertTlvsToOidTypeValueMap(3, answer.tlvs, values, &oids));
        std::vector<int> numbers;
        for (const std::uint32_t oid : oids) {
            const bool isRow = (oid == oids::CSV_ROW);
            numbers.push_back(isRow ? static_cast<int>(boost::any_cast<unsigned int>(values[oid].value))
                                    : boost::any_cast<int>(values[oid].value));
        }
        return numbers;
    }

    int setRow(unsigned int row)
    {
        buffer_t request;
        convertOidTypeValueContainerToTlvs({{oids::CSV_ROW, OID_TYPE_UINT32, row}}, request);
        return m_card.write(request);
    }

    static constexpr std::uint32_t A = oids::CSV_COLUMN;
    static constexpr std::uint32_t B = oids::CSV_COLUMN + 1;

private:
    CardObjects objects() const
    {
        CsvReplay replay;
        replay.file = m_directory.write("recording.csv", "a,b\n1,-1\n2,-2\n3,-3\n");
        replay.isStepped = true;
        CardObjects objects;
        addCsvObjects(objects, replay);
        return objects;
    }

    TemporaryDirectory m_directory;
    Card m_card;
};

using Numbers = std::vector<int>;

TEST_F(SteppedRecording, ServesEachRowOnceAndStaysAtTheLast)
{
    EXPECT_EQ(read({A, B}), (Numbers{1, -1}));
    EXPECT_EQ(read({A, B}), (Numbers{2, -2}));
    EXPECT_EQ(read({A, B}), (Numbers{3, -3}));
    EXPECT_EQ(read({A, B}), (Numbers{3, -3}));
}

TEST_F(SteppedRecording, ServesOneRowToAReadingInSeveralRequests)
{
    EXPECT_EQ(read({A}), (Numbers{1}));
    EXPECT_EQ(read({B}), (Numbers{-1}));
    EXPECT_EQ(read({A}), (Numbers{2}));
    EXPECT_EQ(read({B}), (Numbers{-2}));
}

TEST_F(SteppedRecording, ShowsAndSetsTheRowThatItServes)
{
    EXPECT_EQ(read({oids::CSV_ROW}), (Numbers{1}));
    read({A, B});
    EXPECT_EQ(read({A, oids::CSV_ROW}), (Numbers{2, 2}));
    EXPECT_EQ(setRow(1), icsc::RESULT_OK);
    EXPECT_EQ(read({A, B}), (Numbers{1, -1}));
    EXPECT_EQ(setRow(0), icsc::RESULT_WRONG_VALUE);
    EXPECT_EQ(setRow(4), icsc::RESULT_WRONG_VALUE);
    EXPECT_EQ(read({oids::CSV_ROW}), (Numbers{1}));
}

}  // namespace

}  // namespace brantel
