#include "cards/ReadingOutput.h"

#include "cards/ResultText.h"
#include "cards/ValueText.h"

using Json = nlohmann::ordered_json;

Json jsonOfValue(const TypeValueRecord& record)
{
    switch (record.type) {
        case OID_TYPE_UINT64: return boost::any_cast<unsigned long long>(record.value);
        case OID_TYPE_UINT32: return boost::any_cast<unsigned int>(record.value);
        case OID_TYPE_UINT16: return boost::any_cast<unsigned short>(record.value);
        case OID_TYPE_UINT8: return boost::any_cast<unsigned char>(record.value);
        case OID_TYPE_INT64: return boost::any_cast<long long>(record.value);
        case OID_TYPE_INT32: return boost::any_cast<int>(record.value);
        case OID_TYPE_INT16: return boost::any_cast<short>(record.value);
        case OID_TYPE_INT8: return boost::any_cast<signed char>(record.value);
        case OID_TYPE_BOOL: return boost::any_cast<bool>(record.value);
        case OID_TYPE_STRING:
        case OID_TYPE_IPV4_ADDRESS:
        case OID_TYPE_BUFFER:
        case OID_TYPE_MAC_ADDRESS: break;
    }
    return textOfValue(record.type, record.value);
}

Json jsonOfResult(CallOutcome outcome)
{
    const ResultText text = resultTextOf(outcome);
    return {{"code", isResultCode(outcome) ? Json(outcome) : Json()}, {"name", text.name}, {"meaning", text.meaning}};
}

std::string lineOfJson(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}
