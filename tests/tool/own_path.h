#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace Kestrona::Tool {

// A path in the folder for temporary files that no test of another process uses: tests run side by side.
inline std::string OwnPath(const std::string& name) {
    return testing::TempDir() + "kestrona-" + std::to_string(getpid()) + "-" + name;
}

} // namespace Kestrona::Tool
