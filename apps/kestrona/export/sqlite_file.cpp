// Implements: WriteSqliteFile.
#include "export/draft.h"
#include "export/export_table.h"
#include "export/unique_names.h"
#include "output/number_cell.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Kestrona::Tool {
namespace {

/// Names that begin so belong to SQLite.
constexpr std::string_view kReserved = "sqlite_";
/// Whole numbers below this are the same as a double.
constexpr double kLargestWhole = 9007199254740992.0;

class SqliteError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void Check(sqlite3* database, int result) {
    if (result != SQLITE_OK && result != SQLITE_DONE) {
        throw SqliteError(sqlite3_errmsg(database));
    }
}

struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

struct StatementCloser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Database = std::unique_ptr<sqlite3, DatabaseCloser>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

Database Open(const std::string& path) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    Database database(opened);
    Check(database.get(), result);
    return database;
}

void Run(sqlite3* database, const std::string& statement) {
    Check(database, sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr));
}

std::string Quoted(const std::string& name) {
    std::string text = "\"";
    for (const char c : name) {
        text += c;
        if (c == '"') {
            text += c;
        }
    }
    return text + '"';
}

/// A table under the names that the database knows it by.
struct SqlTable {
    const ExportTable* table = nullptr;
    std::string name;
    std::vector<std::string> columns;
    bool has_key = false; ///< Its keys are all set and differ from one another.
};

bool HasSoundKeys(const ExportTable& table) {
    if (!table.key) {
        return false;
    }
    std::vector<std::string> keys;
    keys.reserve(table.source->RowCount());
    for (std::size_t row = 0; row < table.source->RowCount(); ++row) {
        keys.push_back(table.source->Cell(row, *table.key));
    }
    std::ranges::sort(keys);
    return (keys.empty() || !keys.front().empty()) && std::ranges::adjacent_find(keys) == keys.end();
}

std::vector<SqlTable> NameTables(const std::vector<ExportTable>& tables, ExportResult& result) {
    std::vector<SqlTable> named;
    UniqueNames names;
    for (const ExportTable& table : tables) {
        const bool is_reserved = sqlite3_strnicmp(table.name.c_str(), kReserved.data(), int{kReserved.size()}) == 0;
        SqlTable& entry = named.emplace_back();
        entry.table = &table;
        entry.name = names.Add((is_reserved ? "_" : "") + table.name);
        entry.has_key = HasSoundKeys(table);
        UniqueNames column_names;
        for (const OutputColumn& column : table.source->Columns()) {
            entry.columns.push_back(column_names.Add(column.name));
            if (entry.columns.back() != column.name) {
                result.notes.push_back(fmt::format("{}: the second column '{}' is called '{}'", table.name, column.name,
                                                   entry.columns.back()));
            }
        }
        if (entry.name != table.name) {
            result.notes.push_back(fmt::format("the table '{}' is called '{}'", table.name, entry.name));
        }
        if (table.key && !entry.has_key) {
            result.warnings.push_back(
                {Code::NoPrimaryKey,
                 fmt::format("{}: keys are missing or not unique, so it has no PRIMARY KEY", table.name)});
        }
    }
    return named;
}

const char* NameOf(ExportType type) {
    switch (type) {
    case ExportType::Integer:
        return "INTEGER";
    case ExportType::Real:
        return "REAL";
    case ExportType::Date:
    case ExportType::Text:
        break;
    }
    return "TEXT";
}

std::string CreateStatement(const SqlTable& table, const std::vector<SqlTable>& tables) {
    std::string text = "CREATE TABLE " + Quoted(table.name) + " (";
    std::string foreign_keys;
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const ExportColumn& column = table.table->columns[c];
        text += (c == 0 ? "" : ", ") + Quoted(table.columns[c]) + ' ' + NameOf(column.type);
        text += table.has_key && c == table.table->key ? " PRIMARY KEY" : "";
        if (column.target && tables[*column.target].has_key) {
            const SqlTable& target = tables[*column.target];
            foreign_keys += fmt::format(", FOREIGN KEY ({}) REFERENCES {} ({})", Quoted(table.columns[c]),
                                        Quoted(target.name), Quoted(target.columns[*target.table->key]));
        }
    }
    return text + foreign_keys + ")";
}

std::string InsertStatement(const SqlTable& table) {
    std::string text = "INSERT INTO " + Quoted(table.name) + " VALUES (";
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        text += c == 0 ? "?" : ",?";
    }
    return text + ")";
}

int BindText(sqlite3_stmt* statement, int place, const std::string& cell) {
    return sqlite3_bind_text64(statement, place, cell.data(), cell.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// A cell of a number or a date that holds nothing is NULL.
int Bind(sqlite3_stmt* statement, int place, const std::string& cell, ExportType type) {
    if (type == ExportType::Text) {
        return BindText(statement, place, cell);
    }
    if (cell.empty()) {
        return sqlite3_bind_null(statement, place);
    }
    const std::optional<double> number = type == ExportType::Date ? std::nullopt : NumberOfCell(cell);
    if (!number) {
        return BindText(statement, place, cell);
    }
    if (*number == std::trunc(*number) && std::abs(*number) < kLargestWhole) {
        return sqlite3_bind_int64(statement, place, static_cast<sqlite3_int64>(*number));
    }
    return sqlite3_bind_double(statement, place, *number);
}

void Fill(sqlite3* database, const SqlTable& table) {
    sqlite3_stmt* prepared = nullptr;
    Check(database, sqlite3_prepare_v2(database, InsertStatement(table).c_str(), -1, &prepared, nullptr));
    const Statement statement(prepared);
    const ExportTable& source = *table.table;
    for (std::size_t row = 0; row < source.source->RowCount(); ++row) {
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            Check(database,
                  Bind(prepared, static_cast<int>(c + 1), source.source->Cell(row, c), source.columns[c].type));
        }
        Check(database, sqlite3_step(prepared));
        Check(database, sqlite3_reset(prepared));
    }
}

void WriteDatabase(const std::string& path, const std::vector<SqlTable>& tables) {
    const Database database = Open(path);
    // A file that is not finished is thrown away, so nothing need be undone.
    Run(database.get(), "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN");
    for (const SqlTable& table : tables) {
        Run(database.get(), CreateStatement(table, tables));
        Fill(database.get(), table);
    }
    Run(database.get(), "COMMIT");
}

} // namespace

ExportResult WriteSqliteFile(const std::vector<ExportTable>& tables, const std::string& path) {
    Draft draft(path);
    if (draft.File() == nullptr) {
        return {draft.Failure()};
    }
    ExportResult result;
    try {
        WriteDatabase(draft.Path(), NameTables(tables, result));
        result.error = draft.Publish();
    } catch (const SqliteError& error) {
        result.error = Problem{Code::CannotWrite, fmt::format("'{}' cannot be written: {}", path, error.what())};
    }
    return result;
}

} // namespace Kestrona::Tool
