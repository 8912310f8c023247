// A program that has the rules twice, by libbrantel and by libbrantel_rules. Under the address sanitizer it does not
// even start if a variable is there twice and not weak.

#include "EventMgmtRulesParsing.h"
#include "IfcCardStatusAndControl.h"
#include "support/Diagnostics.h"

namespace {

class BothLibraries : public DiagnosticsTest {};

TEST_F(BothLibraries, LogByTheSameTraceObject)
{
    std::uint32_t oid = 0;
    const auto act = [&oid] { return vemorRules::isValidRule("x") || extractFirstOidFromTlvs(3, buffer_t(), oid); };
    expectAtEveryTraceLevel(
        act, false,
        {debugLine("EventMgmtRulesParsing.cpp", "parseRule", "part %d = '%s'", "part 0 = 'x'"),
         errorLine("EventMgmtRulesParsing.cpp", "parseRule", "Failed to parse part = '%s' of rule = '%s'",
                   "Failed to parse part = 'x' of rule = 'x'"),
         errorLine("IfcCardStatusAndControl.cpp", "extractFirstOidFromTlvs", "slot=%d: tlvs are empty",
                   "slot=3: tlvs are empty")});
}

}  // namespace
