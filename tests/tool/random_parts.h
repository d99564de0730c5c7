#pragma once

#include <map>
#include <string>
#include <vector>

namespace Kestrona::Tool {

/// The cells of a table by row and column, the first row with the names of the fields.
using CsvTable = std::vector<std::vector<std::string>>;

/// A definition with the formats Parts (keys are numbers) and Notes (keys are texts, which may stand twice).
extern const char* const kPartsDefinition;

/// Records of Parts with every kind of field and texts of every kind, and of Notes. The same for the same seed.
std::map<std::string, CsvTable> RandomParts(unsigned seed, int parts);

/// Writes every cell in quotes to NAME.csv.
void WriteTables(const std::string& folder, const std::map<std::string, CsvTable>& tables);

/// Reads a file with a small reader of its own.
CsvTable ReadTable(const std::string& path);

} // namespace Kestrona::Tool
