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
    const SourceLines parser("EventMgmtRulesParsing.cpp");
    const SourceLines codec("IfcCardStatusAndControl.cpp");
    expectAtEveryTraceLevel(act, false,
                            {parser.debug("parseRule", "part %d = '%s'", 0, "x"),
                             parser.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "x", "x"),
                             codec.error("extractFirstOidFromTlvs", "slot=%d: tlvs are empty", 3)});
}

}  // namespace
