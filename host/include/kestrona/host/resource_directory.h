#pragma once

#include <kestrona/host_interfaces.h>

#include <cstdint>
#include <string>

/// \file
/// Embedded configurations, kept as files.

namespace Kestrona::Host {

/// Finds the configuration of resource 7 in "FOLDER/7.cnf".
class ResourceDirectory : public IResourceHandler {
public:
    /// An empty folder holds no resource.
    explicit ResourceDirectory(std::string folder = {});

    /// Copies the resource to a new file that only this user can read, in the folder for temporary files, and stores
    /// the path; the caller removes the file. Returns false, and leaves `path` alone and no file behind, when there is
    /// no such resource, it is no regular file, or the copy fails.
    bool ExtractConfiguration(std::int32_t resource, std::wstring& path) override;

private:
    std::string folder_;
};

} // namespace Kestrona::Host
