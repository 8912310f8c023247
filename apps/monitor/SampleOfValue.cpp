#include "monitor/SampleOfValue.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "cards/ValueVisitor.h"

namespace brantel {
namespace {

struct ToSample {
    template <typename Value>
    std::optional<SampleValue> operator()(const Value& value) const
    {
        if constexpr (std::is_integral_v<Value>) {
            return SampleValue{value};
        } else {
            return std::nullopt;
        }
    }
    std::optional<SampleValue> operator()(unsigned long long number) const
    {
        constexpr unsigned long long LARGEST = std::numeric_limits<SampleValue>::max();
        return static_cast<SampleValue>(std::min(number, LARGEST));
    }
};

}  // namespace

std::optional<SampleValue> sampleOfValue(const TypeValueRecord& record)
{
    return visitValue(record.type, record.value, ToSample());
}

}  // namespace brantel
