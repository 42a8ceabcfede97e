#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/RegistryStore.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace platform {
namespace {

constexpr int kApplication = 0x4B656C52, kVersion = 1;  // what the file says it is, in its header

constexpr char kSchema[] = R"(
    CREATE TABLE key (id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT NOT NULL UNIQUE, parent INTEGER NOT NULL,
                      name TEXT NOT NULL);
    CREATE INDEX key_parent ON key (parent, path);
    CREATE TABLE value (key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL,
                        data BLOB NOT NULL, PRIMARY KEY (key, folded)) WITHOUT ROWID;
    INSERT INTO key VALUES (1, 'HKEY_LOCAL_MACHINE', 0, 'HKEY_LOCAL_MACHINE'),
                           (2, 'HKEY_CURRENT_USER', 0, 'HKEY_CURRENT_USER'),
                           (3, 'HKEY_LOCAL_MACHINE\SOFTWARE', 1, 'Software'),
                           (4, 'HKEY_LOCAL_MACHINE\SOFTWARE\CLASSES', 3, 'Classes');
    UPDATE sqlite_sequence SET seq = random() & 0x7FFFFFFF | 8; -- no key's number is one of another file
    PRAGMA application_id = 0x4B656C52;
    PRAGMA user_version = 1;)";

// In the order of Query. What lies below a path lies between it with a backslash and it with the character after that.
constexpr const char* kQueries[] = {
    "SELECT id FROM key WHERE path = ?1",
    "SELECT 1 FROM key WHERE id = ?1",
    "INSERT INTO key (path, parent, name) VALUES (?1, ?2, ?3)",
    "SELECT name FROM key WHERE parent = ?1 ORDER BY path LIMIT 1 OFFSET ?2",
    "SELECT type, data FROM value WHERE key = ?1 AND folded = ?2",
    R"(INSERT INTO value (key, folded, name, type, data) VALUES (?1, ?2, ?3, ?4, ?5)
       ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data)",
    "DELETE FROM value WHERE key = ?1 AND folded = ?2",
    "SELECT type, data, name FROM value WHERE key = ?1 ORDER BY folded LIMIT 1 OFFSET ?2",
    "DELETE FROM value WHERE key = ?2 OR key IN (SELECT id FROM key WHERE path > ?1 || '\\' AND path < ?1 || ']')",
    "DELETE FROM key WHERE path > ?1 || '\\' AND path < ?1 || ']' AND id > 4",
    "DELETE FROM key WHERE path = ?1 AND id > 4",
};
static_assert(std::size(kQueries) == static_cast<std::size_t>(Query::eCount));

constexpr std::size_t kLongestPath = 504;  // of SQLite, which puts eight characters behind it

constexpr int kPatience = 10000;                 // milliseconds that a change waits for other processes
constexpr int kPause = 200;                      // microseconds between two tries
constexpr std::chrono::milliseconds kTrust(50);  // how long reading takes it that the file is the one it was

using Clock = std::chrono::steady_clock;

// What this process has open. Plain values, so that no destructor runs before the last use.
struct Connection {
    sqlite3* database;
    sqlite3_stmt* statements[std::size(kQueries)];
    int folder;       // where processes queue, see Turn; -1 where it cannot be opened
    bool unchanging;  // opened as a file that nobody can change, which holds for one call
    char path[1024];
    DWORD told;                // the last failure that the user was told
    Clock::time_point looked;  // when the file was last found to be in its place
} connection;

std::string storePath() {
    const char* const path = std::getenv("KELROOTS_REGISTRY");
    if (path == nullptr || *path == '\0') return homeFolder() + "/.local/share/norrab/registry.db";
    return *path == '/' ? path : std::string("./") + path;  // SQLite takes "file:x" and ":memory:" for other things
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// Fails, and tells the user so unless it is what he was told last.
[[noreturn]] void fail(DWORD error, const char* reason) {
    if (error != connection.told) std::fprintf(stderr, "KelRoots: the registry %s %s\n", connection.path, reason);
    connection.told = error;
    throw RegistryFailure{error};
}

[[noreturn]] void failLike(int result) {
    switch (result & 0xFF) {
        case SQLITE_NOMEM:
        case SQLITE_TOOBIG: throw RegistryFailure{ERROR_NOT_ENOUGH_MEMORY};
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL: fail(ERROR_BUSY, "is in use by another program");
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
        case SQLITE_READONLY: fail(ERROR_ACCESS_DENIED, "cannot be opened or written: access is denied");
        case SQLITE_FULL: fail(ERROR_DISK_FULL, "cannot be written: the disk is full");
        case SQLITE_CORRUPT: fail(ERROR_BADDB, "is damaged");
        case SQLITE_NOTADB: fail(ERROR_NOT_REGISTRY_FILE, "is another kind of file");
        default:
            if (result == SQLITE_IOERR_NOMEM) throw RegistryFailure{ERROR_NOT_ENOUGH_MEMORY};
            fail(ERROR_REGISTRY_IO_FAILED, (std::string("cannot be used: ") + sqlite3_errstr(result)).c_str());
    }
}

void require(int result) {
    if (result != SQLITE_OK) failLike(result);
}

void execute(const char* text) { require(sqlite3_exec(connection.database, text, nullptr, nullptr, nullptr)); }

int waitABit(void*, int tries) {
    usleep(kPause);
    return tries < kPatience * 1000 / kPause;
}

// The place at the head of the queue for a change. SQLite lets whoever asks first have the lock: a process that writes
// again and again would keep it from the others, were there not always one of them at the head of this queue. Nothing
// but fairness depends on it, so a folder that cannot be locked does no harm.
class Turn {
public:
    Turn() {
        for (int tries = 0; flock(connection.folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++tries)
            if (waitABit(nullptr, tries) == 0) break;
    }
    ~Turn() { flock(connection.folder, LOCK_UN); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

void close() {
    if (connection.database == nullptr) return;
    for (sqlite3_stmt*& statement : connection.statements) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(connection.database);
    connection.database = nullptr;
    if (connection.folder >= 0) ::close(connection.folder);
}

__attribute__((destructor)) void closeAtUnload() {
    const std::lock_guard<std::mutex> lock(registryMutex());
    close();
}

// A database must not be open in two processes by a fork: it is closed before, and both open it anew when they need it.
// Arranged before any thread can be at work here, which would have the child wait for it for ever.
__attribute__((constructor)) void closeAroundForks() {
    pthread_atfork(
        [] {
            registryMutex().lock();
            close();
        },
        [] { registryMutex().unlock(); }, [] { registryMutex().unlock(); });
}

int connect(const std::string& path, int flags) {
    const int result = sqlite3_open_v2(path.c_str(), &connection.database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (connection.database == nullptr) throw RegistryFailure{ERROR_NOT_ENOUGH_MEMORY};
    sqlite3_extended_result_codes(connection.database, 1);
    sqlite3_busy_handler(connection.database, waitABit, nullptr);
    connection.folder = open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return result;
}

// A file in write-ahead mode in a folder where nothing can be made is read as one that nobody changes.
void connectUnchanging(const std::string& path) {
    static const char digits[] = "0123456789ABCDEF";
    std::string address = "file:";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        (((address += '%') += digits[byte >> 4])) += digits[byte & 15];
    }
    require(connect(address + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI));
    connection.unchanging = true;
}

int readNumber(const char* query, std::int64_t& number) {
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(connection.database, query, -1, &statement, nullptr);
    if (result == SQLITE_OK && (result = sqlite3_step(statement)) == SQLITE_ROW) {
        number = sqlite3_column_int64(statement, 0);
        result = SQLITE_OK;
    }
    sqlite3_finalize(statement);
    return result;
}

// Whether the database is a registry; false where it is empty. Throws where it is anything else.
bool isRegistry() {
    std::int64_t tables = 0, application = 0, version = 0;
    require(readNumber("SELECT count(*) FROM sqlite_master", tables));
    require(readNumber("PRAGMA application_id", application));
    require(readNumber("PRAGMA user_version", version));
    if (tables == 0 && application == 0) return false;
    if (application != kApplication) fail(ERROR_NOT_REGISTRY_FILE, "is a database of another program");
    if (version > kVersion) fail(ERROR_REVISION_MISMATCH, "was written by a newer release");
    return true;
}

void prepareForWriting() {
    const Turn turn;
    // A process that is just making the same file may be in the way of this; then that one does it.
    sqlite3_exec(connection.database, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
    if (isRegistry()) return;
    execute("BEGIN IMMEDIATE");
    if (!isRegistry()) execute(kSchema);
    execute("COMMIT");
}

// Nobody else reads a user's settings, which may name databases and how to enter them.
void makeFile(const std::string& path) {
    const std::string folder = folderOf(path);
    makeFolders(folder);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0)
        ::close(file);
    else if (errno != EEXIST)
        fail(errno == ENOSPC ? ERROR_DISK_FULL : ERROR_ACCESS_DENIED,
             (std::string("cannot be made: ") + std::strerror(errno)).c_str());
}

// Opens the database; false where it is missing or empty and nothing is to be written.
bool openFor(RegistryStore::Purpose purpose) {
    const std::string path = storePath();
    if (path.compare(0, sizeof connection.path - 1, connection.path) != 0) {
        connection.told = ERROR_SUCCESS;
        connection.path[path.copy(connection.path, sizeof connection.path - 1)] = '\0';
    }
    if (path.size() > kLongestPath) fail(ERROR_FILENAME_EXCED_RANGE, "has a longer path than SQLite opens");
    if (purpose == RegistryStore::eWrite)
        makeFile(path);
    else if (access(path.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR))
        return false;

    connection.unchanging = false;
    require(connect(path, SQLITE_OPEN_READWRITE));
    std::int64_t ignored;
    const int result = readNumber("SELECT count(*) FROM sqlite_master", ignored);
    if ((result & 0xFF) == SQLITE_CANTOPEN || (result & 0xFF) == SQLITE_READONLY) {
        close();
        connectUnchanging(path);
    } else if (sqlite3_db_readonly(connection.database, "main") == 0) {
        execute("PRAGMA synchronous = EXTRA");
        if (purpose == RegistryStore::eWrite) prepareForWriting();
    }
    return isRegistry();
}

// A database whose file is gone or another one by now is not what others see, and one that could only be read may be
// writable by now.
bool mustOpenAgain(RegistryStore::Purpose purpose) {
    const Clock::time_point now = Clock::now();
    if (purpose == RegistryStore::eRead && now - connection.looked < kTrust) return false;
    connection.looked = now;
    int moved = 0;
    sqlite3_file_control(connection.database, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0 || (purpose == RegistryStore::eWrite && sqlite3_db_readonly(connection.database, "main") == 1);
}

}  // namespace

std::mutex& registryMutex() {
    static std::mutex mutex;
    return mutex;
}

void Statement::bind(int at, std::int64_t value) {
    if (m_query != nullptr) require(sqlite3_bind_int64(m_query, at, value));
}

void Statement::bind(int at, const std::string& text) {
    if (m_query != nullptr)
        require(sqlite3_bind_text64(m_query, at, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bind(int at, Bytes bytes) {
    const void* const data = bytes.size != 0 ? bytes.data : "";
    if (m_query != nullptr) require(sqlite3_bind_blob64(m_query, at, data, bytes.size, SQLITE_STATIC));
}

bool Statement::next() {
    if (m_query == nullptr) return false;
    const int result = sqlite3_step(m_query);
    if (result != SQLITE_ROW && result != SQLITE_DONE) failLike(result);
    return result == SQLITE_ROW;
}

RegistryStore::RegistryStore(Purpose purpose) {
    if (connection.database != nullptr && mustOpenAgain(purpose)) close();
    if (connection.database == nullptr) {
        try {
            if (!openFor(purpose)) close();
        } catch (...) {
            close();
            throw;
        }
    }
    if (purpose != eWrite) return;
    if (sqlite3_db_readonly(connection.database, "main") == 1) failLike(SQLITE_READONLY);
    const Turn turn;
    execute("BEGIN IMMEDIATE");
}

RegistryStore::~RegistryStore() {
    if (connection.database == nullptr) return;
    if (sqlite3_get_autocommit(connection.database) == 0)
        sqlite3_exec(connection.database, "ROLLBACK", nullptr, nullptr, nullptr);
    if (connection.unchanging) close();
}

void RegistryStore::commit() { execute("COMMIT"); }

sqlite3_stmt* RegistryStore::prepared(Query query) {
    if (connection.database == nullptr) return nullptr;
    sqlite3_stmt*& statement = connection.statements[static_cast<std::size_t>(query)];
    if (statement == nullptr) {
        const char* const text = kQueries[static_cast<std::size_t>(query)];
        require(sqlite3_prepare_v3(connection.database, text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    }
    return statement;
}

}  // namespace platform
