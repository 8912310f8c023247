// Numbers in rules: extractIntegerValue and handleNumericValue.

#include <utility>
#include <vector>

#include "library/rules/ParsingTest.h"

namespace vemorRules {
namespace {

class ExtractIntegerValue : public ParsingTest {
protected:
    // Accepted or not, and the value left behind, which starts as 42.
    template <typename T>
    static std::string extracted(const std::string& text, bool isUnsigned)
    {
        T value = 42;
        try {
            const bool isAccepted = extractIntegerValue<T>(text, value, isUnsigned);
            return outcome(isAccepted, std::to_string(value));
        } catch (const boost::bad_lexical_cast&) {
            return "throws " + std::to_string(value);
        }
    }

    void expectRefusedSigned(const char* text, const std::string& error)
    {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel([text] { return extracted<int>(text, false); }, "false 42", {error});
    }

    void expectRefusedUnsigned(const char* text, const std::string& error)
    {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel([text] { return extracted<unsigned int>(text, true); }, "false 42", {error});
    }
};

TEST_F(ExtractIntegerValue, ConvertsDecimalNumbersOfItsRange)
{
    const std::vector<std::pair<const char*, const char*>> signedCases = {
        {"0", "true 0"},
        {"007", "true 7"},
        {"2147483647", "true 2147483647"},
        {"-5", "true -5"},
        {"-0", "true 0"},
        {"-2147483648", "true -2147483648"},
        {"00000000000000000000000001", "true 1"},
    };
    for (const auto& [text, result] : signedCases) {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel([text = text] { return extracted<int>(text, false); }, result, {});
    }
    const std::vector<std::pair<const char*, const char*>> unsignedCases = {
        {"0", "true 0"},
        {"007", "true 7"},
        {"2147483648", "true 2147483648"},
        {"4294967295", "true 4294967295"},
    };
    for (const auto& [text, result] : unsignedCases) {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel([text = text] { return extracted<unsigned int>(text, true); }, result, {});
    }
}

TEST_F(ExtractIntegerValue, ThrowsOutsideItsRangeAndForALoneMinus)
{
    for (const char* text : {"2147483648", "-2147483649", "4294967296", "99999999999", "-"}) {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel([text] { return extracted<int>(text, false); }, "throws 42", {});
    }
    expectAtEveryTraceLevel([] { return extracted<unsigned int>("4294967296", true); }, "throws 42", {});
}

TEST_F(ExtractIntegerValue, RefusesTheEmptyText)
{
    const std::string error = lines.error("extractIntegerValue", "Can not extract integer from empty expression");
    expectRefusedSigned("", error);
    expectRefusedUnsigned("", error);
}

TEST_F(ExtractIntegerValue, RefusesAMinusInUnsignedRules)
{
    for (const char* text : {"-5", "-", "-x", "--1"}) {
        expectRefusedUnsigned(text,
                              lines.error("extractIntegerValue", "expression='%s' contains negative number", text));
    }
}

TEST_F(ExtractIntegerValue, RefusesAnythingButDigits)
{
    for (const char* text : {"+5", "5a", "0x10", "1.5", " 5", "5 ", "1,000", "5-", "1/2", "1:2", "\xb2"}) {
        const std::string error = lines.error("extractIntegerValue", "Not all characters of '%s' are digits", text);
        expectRefusedSigned(text, error);
        expectRefusedUnsigned(text, error);
    }
}

TEST_F(ExtractIntegerValue, NamesTheTextWithoutItsMinus)
{
    expectRefusedSigned("-5a", lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "5a"));
    expectRefusedSigned("--5", lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "-5"));
}

TEST_F(ExtractIntegerValue, WrapsANegativeNumberInTheUnsignedInstanceOfASignedRule)
{
    EXPECT_EQ(extracted<unsigned int>("-5", false), "true 4294967291");
    EXPECT_EQ(extracted<unsigned int>("-", false), "throws 42");
    EXPECT_EQ(extracted<int>("-5", true), "false 42");
}

class HandleNumericValue : public ParsingTest {
protected:
    // Accepted or not, and the operand left behind, which starts empty.
    template <typename T>
    static std::string handled(const std::string& number, bool isUnsigned, bool isDelta)
    {
        boost::any operand;
        const bool isAccepted = handleNumericValue<T>("the expression", number, 0, isUnsigned, isDelta, &operand);
        return outcome(isAccepted, described(operand));
    }
};

TEST_F(HandleNumericValue, StoresTheNumberInItsOwnTypeAndLogsIt)
{
    expectAtEveryTraceLevel([] { return handled<int>("-7", false, false); }, "true int -7",
                            {lines.debug("handleNumericValue", "numericValue=%d", -7)});
    expectAtEveryTraceLevel([] { return handled<int>("0", false, true); }, "true int 0",
                            {lines.debug("handleNumericValue", "numericValue=%d", 0)});
    expectAtEveryTraceLevel([] { return handled<unsigned int>("4294967295", true, true); }, "true unsigned 4294967295",
                            {lines.debug("handleNumericValue", "numericValue=%u", 4294967295u)});
}

TEST_F(HandleNumericValue, LogsAsTheFlagSaysWhateverItsInstance)
{
    expectAtEveryTraceLevel([] { return handled<int>("7", true, false); }, "true int 7",
                            {lines.debug("handleNumericValue", "numericValue=%u", 7u)});
    expectAtEveryTraceLevel([] { return handled<unsigned int>("-7", false, true); }, "true unsigned 4294967289",
                            {lines.debug("handleNumericValue", "numericValue=%d", -7)});
}

TEST_F(HandleNumericValue, OnlyChecksWithoutAnOperand)
{
    expectAtEveryTraceLevel([] { return handleNumericValue<int>("e", "-7", 0, false, false, nullptr); }, true, {});
    expectAtEveryTraceLevel([] { return handleNumericValue<unsigned int>("e", "7", 0, true, true, nullptr); }, true,
                            {});
    expectAtEveryTraceLevel([] { return handleNumericValue<int>("e", "x", 0, false, false, nullptr); }, false,
                            {lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "x")});
}

TEST_F(HandleNumericValue, RefusesANegativeDelta)
{
    const Diagnostics all = {
        lines.error("handleNumericValue", "Expression with 'delta' contains negative number (%s)", "the expression")};
    expectAtEveryTraceLevel([] { return handled<int>("-1", false, true); }, "false empty", all);
    expectAtEveryTraceLevel([] { return handleNumericValue<int>("the expression", "-1", 0, false, true, nullptr); },
                            false, all);
}

TEST_F(HandleNumericValue, LeavesTheOperandUnchangedWhenTheNumberIsRefused)
{
    expectAtEveryTraceLevel([] { return handled<int>("", false, true); }, "false empty",
                            {lines.error("extractIntegerValue", "Can not extract integer from empty expression")});
    expectAtEveryTraceLevel([] { return handled<unsigned int>("-1", true, false); }, "false empty",
                            {lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")});
}

TEST_F(HandleNumericValue, LeavesABadNumberToItsCaller)
{
    EXPECT_THROW(handled<int>("2147483648", false, false), boost::bad_lexical_cast);
    EXPECT_THROW(handled<unsigned int>("4294967296", true, false), boost::bad_lexical_cast);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

}  // namespace
}  // namespace vemorRules
