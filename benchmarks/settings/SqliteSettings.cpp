// Reads and writes of settings, by SQLite with prepared statements, as durable as KelRoots' are.

#include <benchmarks/support/Measure.h>

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

namespace {

sqlite3* makeSettings(std::size_t count) {
    static int made = 0;
    const std::string path = "/tmp/kelroots-benchmark-sqlite" + std::to_string(++made) + ".db";
    for (const char* const file : {"", "-wal", "-shm"}) std::remove((path + file).c_str());
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    const std::string statements =
        "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
        "CREATE TABLE setting (key INTEGER, name TEXT, type INTEGER, data BLOB, PRIMARY KEY (key, name)) WITHOUT ROWID;"
        "WITH RECURSIVE n (i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(count - 1) +
        ") INSERT INTO setting SELECT 1, i, 1, x'31002E0035003B0032002E0035003B0033002E003500' FROM n";
    if (sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
    return database;
}

auto use(const char* statement) {
    return [statement](std::size_t size) {
        sqlite3_stmt* prepared = nullptr;
        sqlite3_prepare_v2(makeSettings(size), statement, -1, &prepared, nullptr);
        return [prepared, name = std::to_string(size - 1)] {
            sqlite3_bind_text(prepared, 1, name.c_str(), -1, SQLITE_STATIC);
            const int result = sqlite3_step(prepared) + sqlite3_column_bytes(prepared, 1);
            if (result < SQLITE_ROW) std::abort();
            sqlite3_reset(prepared);
            return result;
        };
    };
}

const int registered = [] {
    static constexpr char read[] = "SELECT type, data FROM setting WHERE key = 1 AND name = ?1";
    measure("read a setting, values in the key", "SQLite", {100}, use(read));
    measure("read a setting of an open key, values in the key", "SQLite", {100}, use(read));
    measure("write a setting, values in the key", "SQLite", {100},
            use("REPLACE INTO setting VALUES (1, ?1, 1, randomblob(22))"));
    return 0;
}();

}  // namespace
