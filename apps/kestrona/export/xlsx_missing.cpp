// Implements: WriteXlsxFile, for builds without libxlsxwriter.
#include "export/export_table.h"

namespace Kestrona::Tool {

ExportResult WriteXlsxFile(const std::vector<ExportTable>&, const std::string&) {
    return {Problem{Code::FormNotBuilt, "this program was built without libxlsxwriter (KESTRONA_XLSX)"}};
}

} // namespace Kestrona::Tool
