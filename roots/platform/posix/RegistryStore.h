// The file behind the registry: keys and values in one SQLite database, open from the first call until the library is
// unloaded.
//
// A key is a row with its whole path in upper case, so that opening one is a single look-up whatever its depth. The
// database is in write-ahead mode: readers wait for nobody, a commit is one append that is on disk when it returns, and
// what a killed process has left half done is ignored by whoever comes next.
#pragma once

#include <roots/platform/Win32.h>

#include <sqlite3.h>

#include <cstdint>
#include <mutex>
#include <string>

namespace platform {

// Why a service of the registry fails.
struct RegistryFailure {
    DWORD error;
};

// Held by every thread that uses what is below, or the open keys.
std::mutex& registryMutex();

// The keys that are always there have the first numbers; a number is never given to another key.
using KeyId = std::int64_t;
constexpr KeyId kNoKey = 0, kMachineKey = 1, kUserKey = 2, kClassesKey = 4, kLastFixedKey = 4;

enum class Query {
    eFindKey,      // path -> id
    eHasKey,       // id -> 1
    eAddKey,       // path, parent, name
    eNthKey,       // parent, index -> name
    eReadValue,    // key, folded name -> type, data
    eWriteValue,   // key, folded name, name, type, data
    eRemoveValue,  // key, folded name
    eNthValue,     // key, index -> type, data, name
    eClearTree,    // path, id: the values of that key and of those below it
    eRemoveBelow,  // path: the keys below
    eRemoveKey,    // path
    eCount
};

struct Bytes {
    const void* data;
    std::size_t size;
};

// One run of a prepared query. Its parameters are not copied: they live as long as it does.
class Statement {
public:
    template <class... Values>
    explicit Statement(sqlite3_stmt* query, const Values&... values) : m_query(query) {
        int at = 0;
        (bind(++at, values), ...);
    }
    ~Statement() { sqlite3_reset(m_query); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Goes to the next row of the result. False at the end, and for ever in a registry that is not there yet.
    bool next();

    std::int64_t number(int column) { return sqlite3_column_int64(m_query, column); }
    Bytes bytes(int column) {
        const void* const data = sqlite3_column_blob(m_query, column);
        return {data, static_cast<std::size_t>(sqlite3_column_bytes(m_query, column))};
    }

private:
    void bind(int at, std::int64_t value);
    void bind(int at, const std::string& text);
    void bind(int at, Bytes bytes);

    sqlite3_stmt* m_query;
};

// A stretch of reading, or one change that others see as a whole. A change that is not committed has not happened.
class RegistryStore {
public:
    enum Purpose { eRead, eReadToWrite, eWrite };

    // Opens the database where it is not open yet, or was replaced or removed since; reading alone may notice that a
    // moment later. To write, makes it where it is missing. Throws RegistryFailure.
    explicit RegistryStore(Purpose purpose);
    ~RegistryStore();
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    template <class... Values>
    Statement run(Query query, const Values&... values) {
        return Statement(prepared(query), values...);
    }

    void commit();

private:
    sqlite3_stmt* prepared(Query query);
};

}  // namespace platform
