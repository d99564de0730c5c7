#pragma once

#include "model/mirror.h"

#include <kestrona/store.h>

#include <cstdint>
#include <memory>
#include <string>

// Uses of the library that go through files, and copies of formats; each tells what is wrong, "" for nothing.
namespace Kestrona::Soak {

class Files {
public:
    // The plan is borrowed.
    explicit Files(const Model::Plan& plan);

    // Saves a format and loads it into a second store with the same formats.
    std::string CheckTable(Model::Mirror& mirror, std::int32_t format);
    // Writes the definition, reads it into another store and writes that.
    [[nodiscard]] static std::string CheckDefinition(Model::Mirror& mirror);
    // Saves definition and every record, and loads them into another store.
    [[nodiscard]] std::string CheckSnapshot(Model::Mirror& mirror) const;
    // Makes a copy of a format, fills and destroys it. Requires: a large format.
    [[nodiscard]] static std::string CheckDuplicate(Model::Mirror& mirror, std::int32_t format);
    // Changes a record and audits it. The log goes to the current folder.
    [[nodiscard]] static std::string CheckAudit(Model::Mirror& mirror, std::int32_t format);

private:
    const Model::Plan& plan_;
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> second_;
};

} // namespace Kestrona::Soak
