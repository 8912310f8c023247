#include "IcscClientProxy.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <type_traits>

#include "Icsc.h"
#include "Log.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"

namespace {

constexpr std::int32_t DEFAULT_TIMEOUT = 5;  // seconds

// The client waits longer than the card may take, so that the service's own timeout result gets through.
std::int32_t replyWaitTime(std::int32_t timeout)
{
    constexpr std::int32_t margin = 2;
    return std::min(timeout, std::numeric_limits<std::int32_t>::max() - margin) + margin;
}

}  // namespace

IcscClientProxy* IcscClientProxy::m_pInstance = nullptr;

IcscClientProxy::IcscClientProxy() = default;

IcscClientProxy::~IcscClientProxy()
{
    for (std::size_t slot = 0; slot < icsc::N_SLOTS; ++slot) {
        m_pOBappsToICSC_sync[slot].reset();
        m_pOBappsToICSC_async[slot].reset();
    }
}

void IcscClientProxy::createInstance()
{
    // The condition is the text of the report, here and below.
    if (!ASSERT_OR_REPORT(m_pInstance == NULL)) {  // NOLINT(modernize-use-nullptr)
        return;
    }
    m_pInstance = new IcscClientProxy;
}

// Callers get the null instance after the report, which the sanitizer would stop at.
__attribute__((no_sanitize("null"))) IcscClientProxy& IcscClientProxy::getInstance()
{
    ASSERT_OR_REPORT(m_pInstance != NULL);  // NOLINT(modernize-use-nullptr)
    return *m_pInstance;
}

void IcscClientProxy::deleteInstance()
{
    delete m_pInstance;
    m_pInstance = nullptr;
}

void IcscClientProxy::subscribeInterface(std::uint32_t slot, OBcomponent& component)
{
    if (!ASSERT_OR_REPORT(slot < 10) || (m_pOBappsToICSC_sync[slot] != nullptr)) {
        return;
    }
    m_pOBappsToICSC_sync[slot] = std::make_unique<OBappsToICSC_1_0_P>(component);
    m_pOBappsToICSC_sync[slot]->subscribe_synchronous(icsc::serviceName(slot, icsc::Interface::SYNC).c_str());
}

void IcscClientProxy::subscribeAsyncInterface(std::uint32_t slot, OBcomponent& component,
                                              OBappsToICSC_1_0_PR& replyInterface)
{
    if (!ASSERT_OR_REPORT(slot < 10) || (m_pOBappsToICSC_async[slot] != nullptr)) {
        return;
    }
    m_pOBappsToICSC_async[slot] = std::make_unique<OBappsToICSC_1_0_P>(component);
    m_pOBappsToICSC_async[slot]->subscribe_asynchronous(icsc::serviceName(slot, icsc::Interface::ASYNC).c_str(),
                                                        &replyInterface);
}

std::int32_t IcscClientProxy::getOidsSync(std::uint32_t slot, const ObjectIdContainer& oids, OidTypeValueMap& values)
{
    // 0 on purpose: the caller's mistake is reported; the result is about the card and the way to it only.
    if (!ASSERT_OR_REPORT(slot < 10) ||
        !ASSERT_OR_REPORT(m_pOBappsToICSC_sync[slot] != 0)) {  // NOLINT(modernize-use-nullptr)
        return 0;
    }
    buffer_t tlvs;
    convertObjectIdContainerToTlvs(oids, tlvs);
    std::int32_t result = icsc::RESULT_OK;
    if (!getSetOidsCommon(true, slot, DEFAULT_TIMEOUT, tlvs, result)) {
        return -1;
    }
    if (result != icsc::RESULT_OK) {
        LOG_ERROR("slot=%d: ICSCRead() returned error: %d=0x%x=%s", slot, result, result, icsc::resultName(result));
        return result;
    }
    if (!convertTlvsToOidTypeValueMap(slot, tlvs, values, &oids)) {
        LOG_ERROR("slot=%d: failed to extract values from tlvs returned by ICSCRead()", slot);
        return -1;
    }
    return 0;
}

bool IcscClientProxy::getOidsAsync(std::uint32_t slot, const ObjectIdContainer& oids)
{
    if (!ASSERT_OR_REPORT(slot < 10) ||
        !ASSERT_OR_REPORT(m_pOBappsToICSC_async[slot] != 0)) {  // NOLINT(modernize-use-nullptr)
        return false;
    }
    buffer_t tlvs;
    convertObjectIdContainerToTlvs(oids, tlvs);
    std::int32_t result = icsc::RESULT_OK;
    if (m_pOBappsToICSC_async[slot]->ICSCRead(DEFAULT_TIMEOUT, tlvs, result) == -1) {
        LOG_ERROR("slot=%d: ICSCRead() failed", slot);
        return false;
    }
    if (result != icsc::RESULT_OK) {
        LOG_ERROR("slot=%d: ICSCRead() returned error: %d=0x%x=%s", slot, result, result, icsc::resultName(result));
        return false;
    }
    return true;
}

bool IcscClientProxy::setOids(std::uint32_t slot, const OidTypeValueContainer& values, std::int32_t timeout)
{
    if (!ASSERT_OR_REPORT(slot < 10)) {
        return false;
    }
    buffer_t tlvs;
    if (!convertOidTypeValueContainerToTlvs(values, tlvs)) {
        LOG_ERROR("slot=%d: failed to construct tlvs to be written to IFC card", slot);
        return false;
    }
    std::int32_t result = icsc::RESULT_OK;
    if (!getSetOidsCommon(false, slot, (timeout == 0) ? DEFAULT_TIMEOUT : timeout, tlvs, result)) {
        return false;
    }
    if (result == icsc::RESULT_OK) {
        return true;
    }
    if ((result == icsc::RESULT_DUPLICATE_MSG) || (result == icsc::RESULT_LOST_MSG)) {
        LOG_WARN("ICSCWrite() returned warning: %d=0x%x=%s", result, result, icsc::resultName(result));
        return true;
    }
    LOG_ERROR("ICSCWrite() returned error: %d=0x%x=%s", result, result, icsc::resultName(result));
    return false;
}

bool IcscClientProxy::getSetOidsCommon(bool read, std::uint32_t slot, std::int32_t timeout, buffer_t& tlvs,
                                       std::int32_t& result)
{
    OBappsToICSC_1_0_P& proxy = *m_pOBappsToICSC_sync[slot];
    proxy.setReplyWaitTime(replyWaitTime(timeout));
    const int outcome = read ? proxy.ICSCRead(timeout, tlvs, result) : proxy.ICSCWrite(timeout, tlvs, result);
    if (outcome == -1) {
        LOG_ERROR("slot=%d: %s failed", slot, read ? "ICSCRead" : "ICSCWrite");
        return false;
    }
    return true;
}

void doIcscClientProxyCompileTimeAssertions()
{
    static_assert(std::is_same_v<std::int32_t, int>, "a result code is an int to the framework");
    static_assert(icsc::N_SLOTS == 10, "reports spell out the number of slots");
    static_assert(std::size(icsc::GENERAL_RESULT_NAMES) == 9, "general results are 0 to 8");
    static_assert(std::size(icsc::CARD_RESULT_NAMES) == 18, "card results are 0 to 17");
    static_assert(std::is_base_of_v<OBproxy, OBappsToICSC_1_0_P>, "the interface's proxy is one of the framework's");
    static_assert(std::is_base_of_v<OBproxyReplyInterface, OBappsToICSC_1_0_PR>, "and so is its reply interface");
    static_assert(!std::is_polymorphic_v<IcscClientProxy>, "the client is not meant to be derived from");
}
