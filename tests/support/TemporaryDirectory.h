#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <fstream>
#include <sstream>
#include <string>

#include "brantel/testing/TemporaryDirectory.h"

using brantelTesting::RuntimeDirectory;
using brantelTesting::TemporaryDirectory;

inline std::string contentOf(const std::string& path)
{
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

#endif
