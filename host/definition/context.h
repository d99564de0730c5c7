#pragma once

#include "definition/reporter.h"

#include <kestrona/host/definition.h>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// What the parsing of a definition carries along from file to file.

namespace Kestrona::Host::Language {

struct ParseContext {
    Definition& definition;
    Reporter& reporter;
    const FileReader& reader;
    bool unreadable = false;
    std::vector<std::string> open_files;                // paths, from the main file to the one being read
    std::unordered_set<std::string> read_files;         // paths
    std::unordered_map<std::wstring, double> constants; // by name with folded case
};

} // namespace Kestrona::Host::Language
