// Implements: WriteSqliteFile, for builds without SQLite.
#include "export/export_table.h"

namespace Kestrona::Tool {

ExportResult WriteSqliteFile(const std::vector<ExportTable>&, const std::string&) {
    return {Problem{Code::FormNotBuilt, "this program was built without SQLite (KESTRONA_SQLITE)"}};
}

} // namespace Kestrona::Tool
