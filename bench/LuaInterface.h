#ifndef BENCH_LUA_INTERFACE_H
#define BENCH_LUA_INTERFACE_H

// What the benchmark uses of a Lua. Lua 5.4 and LuaJIT export the same names, so each is linked into a separate
// module that offers this table, and the benchmark loads both modules.
//
// The condition uses `value`, `upper` and `lower`: the number under test and the states of a hysteresis.

struct lua_State;

struct LuaInterface {
    /// A Lua with its standard libraries (with them comes LuaJIT's compiler); null without memory.
    lua_State* (*open)();
    void (*close)(lua_State* pLua);

    /// Compiles `condition` into the function that the checks below call. False if it is not Lua.
    bool (*setCondition)(lua_State* pLua, const char* condition);

    bool (*check)(lua_State* pLua, long long value);
    bool (*checkState)(lua_State* pLua, long long value, bool state);
    void (*checkStates)(lua_State* pLua, long long value, bool& upperState, bool& lowerState);

    /// Compiles `chunk` and forgets it. False if it is not Lua.
    bool (*load)(lua_State* pLua, const char* chunk);
};

/// The name of the one symbol, a LuaInterface, that a module exports.
constexpr const char* LUA_INTERFACE_SYMBOL = "luaInterface";

#endif
