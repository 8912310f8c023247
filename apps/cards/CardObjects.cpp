#include "cards/CardObjects.h"

#include <chrono>
#include <utility>

namespace brantel {

CardObject readOnly(OidValueType type, std::function<boost::any()> read)
{
    return {type, std::move(read), nullptr, nullptr};
}

void addConstant(CardObjects& objects, const OidTypeValue& constant)
{
    objects[constant.oid] = readOnly(constant.type, [value = constant.value] { return value; });
}

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace brantel
