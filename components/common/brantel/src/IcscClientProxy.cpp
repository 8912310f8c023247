#include "IcscClientProxy.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>

#include "Log.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"

namespace {

constexpr std::int32_t DEFAULT_TIMEOUT = 5;  // seconds

// Indexed by the most significant byte of a result code.
constexpr const char* icscGeneralResultNames[] = {
    "SUCCESS",                         // 0
    "GENERAL_ERROR",                   // 1
    "TIMEOUT",                         // 2
    "INVALID_RESPONSE",                // 3
    "INTERNAL_ERROR",                  // 4
    "SENDING_MSG_TO_IFC_CARD_FAILED",  // 5
    "INVALID_NR_OF_TLVS",              // 6
    "MESSAGE_TOO_LARGE",               // 7
    "MESSAGE_TOO_SHORT",               // 8
};

// Indexed by the low 24 bits of a result code whose most significant byte is 0.
constexpr const char* icscCardResultNames[] = {
    "RESULT OK",                         // 0
    "RESULT PROTOCOL VERSION_MISMATCH",  // 1
    "RESULT DUPLICATE MSG",              // 2
    "RESULT LOST MSG",                   // 3
    "RESULT INVALID ACTION",             // 4
    "RESULT GENERAL ERROR",              // 5
    "RESULT WRONG TYPE",                 // 6
    "RESULT WRONG OID",                  // 7
    "RESULT WRONG LEN",                  // 8
    "RESULT WRONG VALUE",                // 9
    "RESULT READ ONLY",                  // 10
    "RESULT TOO LONG",                   // 11
    "RESULT CANNOT EXEC",                // 12
    "RESULT WRONG MAGIC",                // 13
    "RESULT NOT RECEIVED",               // 14
    "RESULT NOT SEND",                   // 15
    nullptr,                             // 16  reserved, without a name
    nullptr,                             // 17  likewise
};

constexpr std::int32_t RESULT_OK = 0;
constexpr std::int32_t RESULT_DUPLICATE_MSG = 2;
constexpr std::int32_t RESULT_LOST_MSG = 3;

// The name of a result code that tells of an error; null for the reserved ones.
const char* icscResultToString(std::int32_t result)
{
    const auto code = static_cast<std::uint32_t>(result);
    const std::uint32_t generalResult = code >> 24;
    const std::uint32_t cardResult = code & 0xFFFFFF;
    if (generalResult != 0) {
        return (generalResult < std::size(icscGeneralResultNames)) ? icscGeneralResultNames[generalResult] : "unknown";
    }
    return ((cardResult != 0) && (cardResult < std::size(icscCardResultNames))) ? icscCardResultNames[cardResult]
                                                                                : "unknown";
}

std::string interfaceName(std::uint32_t slot, const char* kind)
{
    return "ICSCClient" + std::to_string(slot) + "." + kind;
}

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
    for (std::size_t slot = 0; slot < N_SLOTS; ++slot) {
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
    m_pOBappsToICSC_sync[slot]->subscribe_synchronous(interfaceName(slot, "ReadWriteSync").c_str());
}

void IcscClientProxy::subscribeAsyncInterface(std::uint32_t slot, OBcomponent& component,
                                              OBappsToICSC_1_0_PR& replyInterface)
{
    if (!ASSERT_OR_REPORT(slot < 10) || (m_pOBappsToICSC_async[slot] != nullptr)) {
        return;
    }
    m_pOBappsToICSC_async[slot] = std::make_unique<OBappsToICSC_1_0_P>(component);
    m_pOBappsToICSC_async[slot]->subscribe_asynchronous(interfaceName(slot, "ReadWriteAsync").c_str(), &replyInterface);
}

std::int32_t IcscClientProxy::getOidsSync(std::uint32_t slot, const ObjectIdContainer& oids, OidTypeValueMap& values)
{
    // 0 on purpose: the report tells of the caller's mistake, the result only of the card and the way to it.
    if (!ASSERT_OR_REPORT(slot < 10) ||
        !ASSERT_OR_REPORT(m_pOBappsToICSC_sync[slot] != 0)) {  // NOLINT(modernize-use-nullptr)
        return 0;
    }
    buffer_t tlvs;
    convertObjectIdContainerToTlvs(oids, tlvs);
    std::int32_t result = RESULT_OK;
    if (!getSetOidsCommon(true, slot, DEFAULT_TIMEOUT, tlvs, result)) {
        return -1;
    }
    if (result != RESULT_OK) {
        LOG_ERROR("slot=%d: ICSCRead() returned error: %d=0x%x=%s", slot, result, result, icscResultToString(result));
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
    std::int32_t result = RESULT_OK;
    if (m_pOBappsToICSC_async[slot]->ICSCRead(DEFAULT_TIMEOUT, tlvs, result) == -1) {
        LOG_ERROR("slot=%d: ICSCRead() failed", slot);
        return false;
    }
    if (result != RESULT_OK) {
        LOG_ERROR("slot=%d: ICSCRead() returned error: %d=0x%x=%s", slot, result, result, icscResultToString(result));
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
    std::int32_t result = RESULT_OK;
    if (!getSetOidsCommon(false, slot, (timeout == 0) ? DEFAULT_TIMEOUT : timeout, tlvs, result)) {
        return false;
    }
    if (result == RESULT_OK) {
        return true;
    }
    if ((result == RESULT_DUPLICATE_MSG) || (result == RESULT_LOST_MSG)) {
        LOG_WARN("ICSCWrite() returned warning: %d=0x%x=%s", result, result, icscCardResultNames[result]);
        return true;
    }
    LOG_ERROR("ICSCWrite() returned error: %d=0x%x=%s", result, result, icscResultToString(result));
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
    static_assert(std::size(icscGeneralResultNames) == 9, "general results are 0 to 8");
    static_assert(std::size(icscCardResultNames) == 18, "card results are 0 to 17");
    static_assert(std::is_base_of_v<OBproxy, OBappsToICSC_1_0_P>, "the interface's proxy is one of the framework's");
    static_assert(std::is_base_of_v<OBproxyReplyInterface, OBappsToICSC_1_0_PR>, "and so is its reply interface");
    static_assert(!std::is_polymorphic_v<IcscClientProxy>, "the client is not meant to be derived from");
}
