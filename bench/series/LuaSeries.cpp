#include "LuaSeries.h"

#include <stdexcept>

#include <lua.hpp>

LuaSeries::LuaSeries(const std::string& body) : m_pState(luaL_newstate(), lua_close)
{
    const std::string chunk = R"(
        local ffi = require("ffi")
        return function(address, n)
            local samples = ffi.cast("const int32_t*", address)
            local count, upper, lower, previous = 0, false, false, samples[0]
            for i = 0, n - 1 do
                local value = samples[i]
                )" + body + R"(
                previous = value
            end
            return count
        end)";
    luaL_openlibs(m_pState.get());
    if ((luaL_loadstring(m_pState.get(), chunk.c_str()) != 0) || (lua_pcall(m_pState.get(), 0, 1, 0) != 0)) {
        throw std::runtime_error("Not Lua: " + body);
    }
}

std::uint64_t LuaSeries::operator()(const int* pSamples, std::size_t n) const
{
    lua_State* const pLua = m_pState.get();
    lua_pushvalue(pLua, 1);
    lua_pushlightuserdata(pLua, const_cast<int*>(pSamples));
    lua_pushnumber(pLua, static_cast<lua_Number>(n));
    lua_call(pLua, 2, 1);
    const auto count = static_cast<std::uint64_t>(lua_tonumber(pLua, -1));
    lua_pop(pLua, 1);
    return count;
}
