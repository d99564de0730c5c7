#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace Kestrona::Bench {

struct FinishStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Statement = std::unique_ptr<sqlite3_stmt, FinishStatement>;

// SQLite, in memory unless it gets a file: a peer of the store. What fails throws the text of its reason.
class Database {
public:
    explicit Database(const std::string& path = ":memory:") { Check(sqlite3_open(path.c_str(), &handle_)); }

    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    ~Database() { sqlite3_close(handle_); }

    void Execute(const std::string& sql) { Check(sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr)); }

    Statement Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr));
        return Statement(statement);
    }

private:
    static void Check(int code) {
        if (code != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errstr(code));
        }
    }

    sqlite3* handle_ = nullptr;
};

// Runs a statement that gives no rows, or whose rows nobody wants, with the values that were bound. A peer that does
// not do its work must not be measured.
inline void RunOnce(const Statement& statement) {
    sqlite3_step(statement.get());
    if (const int code = sqlite3_reset(statement.get()); code != SQLITE_OK) { // tells what the step failed of
        throw std::runtime_error(sqlite3_errstr(code));
    }
}

} // namespace Kestrona::Bench
