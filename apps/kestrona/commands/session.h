#pragma once

#include "encryption.h"

#include <kestrona/host/default_host.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/store.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// One run of the tool over one definition.

namespace Kestrona::Tool {

/// Owns the host and the store that a command works on.
class Session {
public:
    Session();

    /// Loads the source of a definition, a compiled one, or a snapshot with its records, and prints what is wrong with
    /// it to stderr. Returns an exit code.
    int Load(const std::string& path);
    /// Likewise, and sets the key of encrypted fields up before. `dataset` chooses among the records of a snapshot's
    /// tables; a file that has no such dataset is refused.
    int Load(const std::string& path, const KeyOptions& key, const std::string& dataset = {});

    /// Loads the source of a definition and writes its compiled form. Prints what is wrong to stderr. Returns an exit
    /// code.
    int Compile(const std::string& definition, const std::string& target);

    /// The operations below require that `Load` gave `kExitGood`.
    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store();

    /// Tells whether the file was one that holds records.
    [[nodiscard]] bool HasRecords() const { return has_records_; }

    /// Says on stderr that a file with records takes no folders of others, if there are any. Returns an exit code.
    [[nodiscard]] int RefuseFolders(const std::vector<std::string>& folders) const;

    /// Returns the format with this name or display name; says on stderr what there is and gives -1 when none has it.
    [[nodiscard]] std::int32_t FindFormat(const std::string& name);
    /// Returns the field of the format with this name; says on stderr what there is and gives -1 when none has it.
    [[nodiscard]] std::int32_t FindField(std::int32_t format, const std::string& name);

private:
    int LoadDefinition(const std::string& path, Host::FileKind kind);
    int LoadCompiled(const std::string& path);
    int LoadSnapshot(const std::string& path, const std::string& dataset);

    std::string source_; ///< The file that the command line gave.
    Host::DefaultHost host_;
    bool has_records_ = false;
};

} // namespace Kestrona::Tool
