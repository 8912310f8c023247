#ifndef BENCH_RULE_EVALUATORS_H
#define BENCH_RULE_EVALUATORS_H

// The ways to evaluate a rule that the benchmark compares. Each is made for one rule and has some of
//
//     checkValue(sample)   checkDelta(first, second)   checkSingle(sample, state)   checkDouble(sample, upper, lower)
//
// The script engines are used as their manuals advise for speed: compiled once, variables bound or passed as arguments.
// For a delta rule they get the size of the change, computed here in C++.

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

#include <muParser.h>

#include "EventMgmtCompiledRules.h"
#include "EventMgmtRulesCppObjects.h"
#include "EventMgmtRulesParsing.h"
#include "LuaInterface.h"
#include "library/rules/SubstitutionEvaluator.h"

template <typename T>
long long sizeOfChange(T firstSample, T secondSample)
{
    return std::llabs(static_cast<long long>(secondSample) - static_cast<long long>(firstSample));
}

inline vemorRules::RuleObject parsedRule(const std::string& text)
{
    vemorRules::RuleObject rule;
    if (!vemorRules::parseRule(text, &rule)) {
        throw std::runtime_error("Not a rule: " + text);
    }
    return rule;
}

template <typename T>
class LibraryEvaluator {
public:
    explicit LibraryEvaluator(const std::string& ruleText) : m_rule(parsedRule(ruleText)) {}

    bool checkValue(T sample) const { return vemorRules::checkSimpleValueRule(m_rule, sample); }
    bool checkDelta(T first, T second) const { return vemorRules::checkSimpleDeltaRule(m_rule, first, second); }
    bool checkSingle(T sample, bool state) const
    {
        return vemorRules::checkSingleHysteresisRule(m_rule, sample, state);
    }
    void checkDouble(T sample, bool& upper, bool& lower) const
    {
        vemorRules::checkDoubleHysteresisRule(m_rule, sample, upper, lower);
    }

private:
    vemorRules::RuleObject m_rule;
};

/// The compiled form, whose checks the compiler puts where they are called.
template <typename T>
class CompiledEvaluator {
public:
    explicit CompiledEvaluator(const std::string& ruleText)
        : m_rule(vemorRules::compileRule<T>(parsedRule(ruleText)).value())
    {
    }

    bool checkValue(T sample) const { return vemorRules::checkSimpleValueRule(m_rule, sample); }
    bool checkDelta(T first, T second) const { return vemorRules::checkSimpleDeltaRule(m_rule, first, second); }
    bool checkSingle(T sample, bool state) const
    {
        return vemorRules::checkSingleHysteresisRule(m_rule, sample, state);
    }
    void checkDouble(T sample, bool& upper, bool& lower) const
    {
        vemorRules::checkDoubleHysteresisRule(m_rule, sample, upper, lower);
    }

private:
    vemorRules::CompiledRule m_rule;
};

template <typename T>
class SubstitutionEvaluator {
public:
    explicit SubstitutionEvaluator(const std::string& ruleText) : m_rule(parsedRule(ruleText)) {}

    bool checkValue(T sample) const { return substitution::checkSimpleValueRule(m_rule, sample); }
    bool checkDelta(T first, T second) const { return substitution::checkSimpleDeltaRule(m_rule, first, second); }
    bool checkSingle(T sample, bool state) const
    {
        return substitution::checkSingleHysteresisRule(m_rule, sample, state);
    }
    void checkDouble(T sample, bool& upper, bool& lower) const
    {
        substitution::checkDoubleHysteresisRule(m_rule, sample, upper, lower);
    }

private:
    vemorRules::RuleObject m_rule;
};

/// The condition uses `value`, `upper` and `lower`; that of a double hysteresis has two results.
template <typename T>
class MuparserEvaluator {
public:
    explicit MuparserEvaluator(const std::string& condition)
    {
        m_parser.DefineVar("value", &m_value);
        m_parser.DefineVar("upper", &m_upper);
        m_parser.DefineVar("lower", &m_lower);
        compile(condition);
    }
    // The parser holds the addresses of the variables.
    MuparserEvaluator(const MuparserEvaluator&) = delete;
    MuparserEvaluator& operator=(const MuparserEvaluator&) = delete;

    /// Returns the value of `condition`, as proof that it was compiled.
    double compile(const std::string& condition)
    {
        m_parser.SetExpr(condition);
        return m_parser.Eval();
    }

    bool checkValue(T sample)
    {
        m_value = sample;
        return m_parser.Eval() != 0;
    }
    bool checkDelta(T first, T second)
    {
        m_value = static_cast<double>(sizeOfChange(first, second));
        return m_parser.Eval() != 0;
    }
    bool checkSingle(T sample, bool state)
    {
        m_value = sample;
        m_upper = state;
        return m_parser.Eval() != 0;
    }
    void checkDouble(T sample, bool& upper, bool& lower)
    {
        m_value = sample;
        m_upper = upper;
        m_lower = lower;
        int numberOfResults = 0;
        const double* const pResults = m_parser.Eval(numberOfResults);
        upper = (pResults[0] != 0);
        lower = (pResults[1] != 0);
    }

private:
    double m_value = 0;
    double m_upper = 0;
    double m_lower = 0;
    mu::Parser m_parser;
};

/// A Lua in a separate module, loaded so that its names do not clash with those of another Lua.
class LuaModule {
public:
    explicit LuaModule(const char* path) : m_pModule(dlopen(path, RTLD_NOW | RTLD_LOCAL))
    {
        if (m_pModule == nullptr) {
            throw std::runtime_error(dlerror());
        }
        m_pInterface = static_cast<const LuaInterface*>(dlsym(m_pModule, LUA_INTERFACE_SYMBOL));
        if (m_pInterface == nullptr) {
            throw std::runtime_error(std::string("No Lua in ") + path);
        }
    }
    ~LuaModule() { dlclose(m_pModule); }
    LuaModule(const LuaModule&) = delete;
    LuaModule& operator=(const LuaModule&) = delete;

    const LuaInterface& interface() const { return *m_pInterface; }

private:
    void* m_pModule;
    const LuaInterface* m_pInterface = nullptr;
};

/// The condition uses `value`, `upper` and `lower`; that of a double hysteresis has two results. The module
/// must outlive the evaluator.
template <typename T>
class LuaEvaluator {
public:
    LuaEvaluator(const LuaModule& module, const std::string& condition)
        : m_lua(module.interface()), m_pState(m_lua.open())
    {
        if ((m_pState == nullptr) || !m_lua.setCondition(m_pState, condition.c_str())) {
            throw std::runtime_error("Not a condition in Lua: " + condition);
        }
    }
    ~LuaEvaluator() { m_lua.close(m_pState); }
    LuaEvaluator(const LuaEvaluator&) = delete;
    LuaEvaluator& operator=(const LuaEvaluator&) = delete;

    bool checkValue(T sample) { return m_lua.check(m_pState, sample); }
    bool checkDelta(T first, T second) { return m_lua.check(m_pState, sizeOfChange(first, second)); }
    bool checkSingle(T sample, bool state) { return m_lua.checkState(m_pState, sample, state); }
    void checkDouble(T sample, bool& upper, bool& lower) { m_lua.checkStates(m_pState, sample, upper, lower); }

private:
    const LuaInterface m_lua;
    lua_State* m_pState;
};

#endif
