#ifndef TESTS_LIBRARY_RULES_REPORTED_SIGNATURES_H
#define TESTS_LIBRARY_RULES_REPORTED_SIGNATURES_H

// The full signatures that the evaluator's reports carry, as the compiler spells them.

#include <type_traits>

namespace vemorRules {

#ifdef __clang__
#define SIGNATURE_OF_FILL_IN_VALUE "bool vemorRules::fillInValue(boost::any &, T, const std::type_info &) [T = "
#define SIGNATURE_OF_CHECK "T vemorRules::check(const boost::any &) [T = "
#else
#define SIGNATURE_OF_FILL_IN_VALUE "bool vemorRules::fillInValue(boost::any&, T, const std::type_info&) [with T = "
#define SIGNATURE_OF_CHECK "T vemorRules::check(const boost::any&) [with T = "
#endif

template <typename T>
constexpr const char* fillInValueSignature =
    std::is_same_v<T, int> ? SIGNATURE_OF_FILL_IN_VALUE "int]" : SIGNATURE_OF_FILL_IN_VALUE "unsigned int]";

template <typename T>
constexpr const char* checkSignature =
    std::is_same_v<T, int> ? SIGNATURE_OF_CHECK "int]" : SIGNATURE_OF_CHECK "unsigned int]";

#undef SIGNATURE_OF_FILL_IN_VALUE
#undef SIGNATURE_OF_CHECK

}  // namespace vemorRules

#endif
