// What a compiler can compare: headers, types and signatures of a platform. Each difference stops the build with a
// sentence of its own.

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"
#include "message/buffer_t.h"
#include "sql/Field.h"
#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace {

// Whether the operation compiles for arguments of these types.
template <typename... Arguments, typename Operation>
constexpr bool takes(Operation)
{
    return std::is_invocable_v<Operation, Arguments...>;
}

// Whether it then has a result of exactly this type.
template <typename Result, typename... Arguments, typename Operation>
constexpr bool yields(Operation operation)
{
    if constexpr (takes<Arguments...>(operation)) {
        return std::is_same_v<std::invoke_result_t<Operation, Arguments...>, Result>;
    } else {
        return false;
    }
}

// The rest of a lambda that compiles for the arguments that `expression` compiles for.
#define EXPRESSION(expression) \
    ->decltype(expression)     \
    {                          \
        return (expression);   \
    }

template <typename T>
constexpr bool isWrittenAndRead()
{
    return takes<buffer_t&, const T&>([](auto& buffer, auto& value) EXPRESSION(buffer << value)) &&
           takes<const buffer_t&, T&>([](auto& buffer, auto& value) EXPRESSION(buffer >> value));
}

static_assert(std::is_same_v<std::int32_t, int>, "std::int32_t must be int: result codes are passed as either");

static_assert(std::is_same_v<decltype(g_traceObject), TraceObject*>, "g_traceObject must be a TraceObject*");
static_assert(yields<std::int32_t, const TraceObject&>([](auto& trace) EXPRESSION(trace.getTraceLevel())),
              "TraceObject::getTraceLevel must be const and return a std::int32_t");
static_assert(takes<const char*, int>([](auto text, auto line) EXPRESSION(logAssertFailed(text, text, line, text))),
              "logAssertFailed must take (const char* condition, const char* file, int line, const char* function)");

static_assert(std::is_default_constructible_v<buffer_t>, "buffer_t must have a default constructor");
static_assert(std::is_copy_constructible_v<buffer_t> && std::is_copy_assignable_v<buffer_t>,
              "buffer_t must be copied and assigned: boost::any holds copies");
static_assert(std::is_constructible_v<buffer_t, const void*, std::size_t>,
              "buffer_t must be constructed from (const void* bytes, std::size_t length)");
static_assert(isWrittenAndRead<bool>(), "buffer_t must write, and read when const, a bool");
static_assert(isWrittenAndRead<signed char>() && isWrittenAndRead<unsigned char>(),
              "buffer_t must write, and read when const, signed char and unsigned char");
static_assert(isWrittenAndRead<short>() && isWrittenAndRead<unsigned short>(),
              "buffer_t must write, and read when const, short and unsigned short");
static_assert(isWrittenAndRead<int>() && isWrittenAndRead<unsigned int>(),
              "buffer_t must write, and read when const, int and unsigned int");
static_assert(isWrittenAndRead<long long>() && isWrittenAndRead<unsigned long long>(),
              "buffer_t must write, and read when const, long long and unsigned long long");
static_assert(isWrittenAndRead<std::string>(), "buffer_t must write, and read when const, a std::string");
static_assert(isWrittenAndRead<buffer_t>(), "buffer_t must write, and read when const, a nested buffer_t");
static_assert(yields<std::size_t, const buffer_t&>([](auto& buffer) EXPRESSION(buffer.size())),
              "buffer_t::size must be const and return a std::size_t");
static_assert(yields<const unsigned char*, const buffer_t&>([](auto& buffer) EXPRESSION(buffer.data())),
              "buffer_t::data must be const and return a const unsigned char*");
static_assert(takes<buffer_t&>([](auto& buffer) EXPRESSION(buffer.clear())), "buffer_t must have clear()");

static_assert(std::is_class_v<OBcomponent>, "OBcomponent must be a class");
static_assert(std::has_virtual_destructor_v<OBproxy>, "OBproxy must have a virtual destructor");
static_assert(takes<OBproxy&, const char*>([](auto& proxy, auto name) EXPRESSION(proxy.subscribe_synchronous(name))),
              "OBproxy::subscribe_synchronous must take (const char* name)");
static_assert(takes<OBproxy&, const char*, OBproxyReplyInterface*>([
              ](auto& proxy, auto name, auto pReplies) EXPRESSION(proxy.subscribe_asynchronous(name, pReplies))),
              "OBproxy::subscribe_asynchronous must take (const char* name, OBproxyReplyInterface* replies)");
static_assert(takes<OBproxy&, int>([](auto& proxy, auto seconds) EXPRESSION(proxy.setReplyWaitTime(seconds))),
              "OBproxy::setReplyWaitTime must take (int seconds)");

static_assert(std::is_convertible_v<OBappsToICSC_1_0_P*, OBproxy*>, "OBappsToICSC_1_0_P must be an OBproxy");
static_assert(std::is_constructible_v<OBappsToICSC_1_0_P, OBcomponent&>,
              "OBappsToICSC_1_0_P must be constructed from an OBcomponent&");
static_assert(yields<int, OBappsToICSC_1_0_P&, int, buffer_t&, int&>([
              ](auto& proxy, auto timeout, auto& tlvs, auto& result) EXPRESSION(proxy.ICSCRead(timeout, tlvs, result))),
              "OBappsToICSC_1_0_P::ICSCRead must take (int timeout, buffer_t& tlvs, int& result) and return an int");
static_assert(yields<int, OBappsToICSC_1_0_P&, int, const buffer_t&, int&>([
              ](auto& proxy, auto timeout, auto& tlvs,
                auto& result) EXPRESSION(proxy.ICSCWrite(timeout, tlvs, result))),
              "OBappsToICSC_1_0_P::ICSCWrite must take (int timeout, buffer_t tlvs, int& result) and return an int");
static_assert(std::is_convertible_v<OBappsToICSC_1_0_PR*, OBproxyReplyInterface*>,
              "OBappsToICSC_1_0_PR must be an OBproxyReplyInterface");

static_assert(static_cast<int>(sql::field_type::INTEGER) == 0, "sql::field_type::INTEGER must be 0");
static_assert(static_cast<int>(sql::field_type::TEXT) == 1, "sql::field_type::TEXT must be 1");
static_assert(static_cast<int>(sql::field_type::BOOLEAN) == 3, "sql::field_type::BOOLEAN must be 3");
static_assert(std::is_default_constructible_v<sql::Field>, "sql::Field must have a default constructor");
static_assert(std::is_copy_constructible_v<sql::Field>, "sql::Field must have a copy constructor");
static_assert(std::is_constructible_v<sql::Field, const std::string&, sql::field_type, int>,
              "sql::Field must be constructed from (const std::string& name, sql::field_type type, int flags)");

}  // namespace
