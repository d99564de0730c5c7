#pragma once

#include <string_view>

// The file that the audit log goes to.
namespace Kestrona::Persistence {

// Appends text to "Audit.log", which is opened in the current directory and stays open. Without a file the text is
// dropped.
void AppendToAuditFile(std::wstring_view text);

// Closes the file, so that the next text opens one anew. For tests that change the current directory.
void CloseAuditFile();

} // namespace Kestrona::Persistence
