#include <IcscReading.h>
#include <RuleSample.h>
#include <brantel/testing/CardDouble.h>
#include <brantel/testing/TemporaryDirectory.h>

using namespace brantelTesting;

namespace {

// What a component does again and again.
std::optional<unsigned int> readSample(std::uint32_t slot, std::uint32_t oid, OidTypeValueMap& values)
{
    if (icsc::readOids(IcscClientProxy::getInstance(), slot, {oid}, values) != 0) {
        return std::nullopt;
    }
    return icsc::sampleOf<unsigned int>(values.at(oid));
}

}  // namespace

int main()
{
    const RuntimeDirectory directory;
    CardThread card(3);
    card->setValue({1, OID_TYPE_UINT16, static_cast<unsigned short>(85)});
    OBcomponent component("fan control");
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeInterface(3, component);

    OidTypeValueMap values;
    const bool isRead = (readSample(3, 1, values) == 85U) && (readSample(3, 1, values) == 85U);
    card->setResult(icsc::RESULT_GENERAL_ERROR);
    const bool isRefused = !readSample(3, 1, values) && values.empty();
    const bool isAbsent = !readSample(4, 1, values);
    IcscClientProxy::deleteInstance();
    return (isRead && isRefused && isAbsent && (card->takeRequests().size() == 3)) ? 0 : 1;
}
