#include "cards/CardObjects.h"

#include <chrono>
#include <utility>

namespace brantel {

CardObject readOnly(OidValueType type, std::function<boost::any()> read)
{
    return {type, std::move(read), nullptr, nullptr};
}

CardObject constant(OidValueType type, const boost::any& value)
{
    return readOnly(type, [value] { return value; });
}

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace brantel
