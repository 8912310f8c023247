#ifndef BENCH_LUA_SERIES_H
#define BENCH_LUA_SERIES_H

// A loop over samples, compiled by LuaJIT, that reads them where they are (its FFI).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct lua_State;

class LuaSeries {
public:
    /// `body` is what happens to `value`, the sample, after `previous`: it adds to `count`, and may keep states in
    /// `upper` and `lower`, which are false at first. Throws std::runtime_error if it is not Lua.
    explicit LuaSeries(const std::string& body);

    std::uint64_t operator()(const int* pSamples, std::size_t n) const;

private:
    std::shared_ptr<lua_State> m_pState;
};

#endif
