#include "commands/CardJson.h"

#include <type_traits>

#include "cards/ValueText.h"
#include "cards/ValueVisitor.h"

namespace brantel {

using Json = nlohmann::ordered_json;

Json valueJson(const TypeValueRecord& record)
{
    return visitValue(record.type, record.value, [&](const auto& value) -> Json {
        if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>) {
            return value;
        } else {
            return valueText(record.type, record.value);
        }
    });
}

Json failureJson(CallOutcome outcome)
{
    return {{"code", isResultCode(outcome) ? Json(outcome) : Json()}, {"reason", resultText(outcome)}};
}

}  // namespace brantel
