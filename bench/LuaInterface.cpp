#include "LuaInterface.h"

#include <string>

#include <lua.hpp>

namespace {

// The function to call is the only thing on the stack between calls.
constexpr int FUNCTION_INDEX = 1;

lua_State* open()
{
    lua_State* const pLua = luaL_newstate();
    if (pLua != nullptr) {
        luaL_openlibs(pLua);
        lua_settop(pLua, 0);
    }
    return pLua;
}

bool setCondition(lua_State* pLua, const char* condition)
{
    const std::string chunk = std::string("return function(value, upper, lower) return ") + condition + " end";
    lua_settop(pLua, 0);
    if ((luaL_loadstring(pLua, chunk.c_str()) != 0) || (lua_pcall(pLua, 0, 1, 0) != 0)) {
        lua_settop(pLua, 0);
        return false;
    }
    return true;
}

bool check(lua_State* pLua, long long value)
{
    lua_pushvalue(pLua, FUNCTION_INDEX);
    lua_pushinteger(pLua, static_cast<lua_Integer>(value));
    lua_call(pLua, 1, 1);
    const bool result = (lua_toboolean(pLua, -1) != 0);
    lua_settop(pLua, FUNCTION_INDEX);
    return result;
}

bool checkState(lua_State* pLua, long long value, bool state)
{
    lua_pushvalue(pLua, FUNCTION_INDEX);
    lua_pushinteger(pLua, static_cast<lua_Integer>(value));
    lua_pushboolean(pLua, state);
    lua_call(pLua, 2, 1);
    const bool result = (lua_toboolean(pLua, -1) != 0);
    lua_settop(pLua, FUNCTION_INDEX);
    return result;
}

void checkStates(lua_State* pLua, long long value, bool& upperState, bool& lowerState)
{
    lua_pushvalue(pLua, FUNCTION_INDEX);
    lua_pushinteger(pLua, static_cast<lua_Integer>(value));
    lua_pushboolean(pLua, upperState);
    lua_pushboolean(pLua, lowerState);
    lua_call(pLua, 3, 2);
    upperState = (lua_toboolean(pLua, -2) != 0);
    lowerState = (lua_toboolean(pLua, -1) != 0);
    lua_settop(pLua, FUNCTION_INDEX);
}

bool load(lua_State* pLua, const char* chunk)
{
    const bool isLoaded = (luaL_loadstring(pLua, chunk) == 0);
    lua_settop(pLua, 0);
    return isLoaded;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const LuaInterface luaInterface = {
    open, lua_close, setCondition, check, checkState, checkStates, load,
};
