#ifndef DEVIATION_H
#define DEVIATION_H

// The deviating platform keeps the contract but for one deviation, which the environment variable DEVIATION names.

#include <cstdlib>
#include <string>

inline bool deviates(const std::string& deviation)
{
    const char* const wanted = std::getenv("DEVIATION");
    return (wanted != nullptr) && (wanted == deviation);
}

#endif
