// Reads samples, one number a line, and prints how often each of some thresholds would have raised an event.

#include <iostream>
#include <optional>
#include <vector>

#include <EventMgmtCompiledRules.h>
#include <EventMgmtRulesParsing.h>

int main()
{
    std::vector<int> samples;
    for (int sample = 0; std::cin >> sample;) {
        samples.push_back(sample);
    }
    vemorRules::RuleObject rule;
    if (!vemorRules::parseRule("expr=signed(hyshigh(70,80))", &rule)) {
        return 1;
    }
    std::optional<vemorRules::CompiledRule> compiled = vemorRules::compileRule<int>(rule);
    if (!compiled) {
        return 1;  // a rule for the check functions
    }
    for (int threshold = 75; threshold <= 90; threshold += 5) {
        compiled->setThreshold(1, threshold);  // the one that raises
        vemorRules::RuleState state;
        vemorRules::SeriesCounts counts;
        vemorRules::checkSeries(*compiled, samples.data(), samples.size(), state, {nullptr, nullptr, &counts});
        std::cout << "above " << threshold << ": raised " << counts.raised.raises << " times, for "
                  << counts.raised.raisedSamples << " samples\n";
    }
    return 0;
}
