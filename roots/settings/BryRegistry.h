// The application's settings in the registry: installation paths, user data, language, database connections.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

// Key paths are relative to the hive that the operation names, and separated by backslashes. Keys and values are found
// whatever their case.
//
// Results are 1 for success and 0 for failure; nothing is thrown or shown, and after a failure the argument that
// was to take the value is as it was (but see getRegValue for texts). What a writer answers with 1 is stored: on Linux
// it is on disk.
//
// Texts are read up to their first zero, from a value of any type, of at most 4096 bytes: 2047 characters and a zero,
// or 2048 without one. A longer value fails to be read: half a path or half a connection would do more harm. Texts are
// written as REG_SZ without a closing zero (Windows itself adds one). Numbers are values of just 4 bytes, of any type
// when read and REG_DWORD when written; an unsigned long is a 32-bit number also where it is wider.
//
// create: not 0 to make the key, empty, where it is missing. The read has no value then and gives 0 all the same.
//
// Nothing is kept between calls, which are as safe in several threads as the system's: each stands for itself.
class KELROOTS_API BryRegistry {
public:
    // ---- local machine ---------------------------------------------------------------------------------------------

    // Whether or not a text was read: value loses the backslash at its end, if it has two characters or more.
    static int getRegValue(const BryString& keyPath, const BryString& valueName, BryString& value, int create);
    static int getRegValue(const BryString& keyPath, const BryString& valueName, unsigned long& value, int create);

    // ---- current user ----------------------------------------------------------------------------------------------

    static int getRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, BryString& value,
                                      int create);
    static int getRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, int& value, int create);

    // Make the key where it is missing.
    static int setRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, const BryString& value);
    static int setRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, const int& value);

    // The same in a key below getKorvelCurrentUserPath(), which is made where it is missing, also by reading.
    static int setData(const BryString& subKey, const BryString& valueName, const BryString& value);
    static int setData(const BryString& subKey, const BryString& valueName, const int& value);
    static int getData(const BryString& subKey, const BryString& valueName, BryString& value);
    static int getData(const BryString& subKey, const BryString& valueName, int& value);

    // ---- classes root ----------------------------------------------------------------------------------------------

    // 1 where the key exists and may be opened for every kind of access: value is then the text, or empty where there
    // is no such value or it has more than 2048 bytes (1024 characters). 0 and value as it was where it does not.
    static int getRegValueClassesRoot(BryString keyPath, const BryString& valueName, BryString& value);

    // ---- the application's own -------------------------------------------------------------------------------------

    // The number of the language, by local machine "Software\Ozmira\Norrab\2009": the value "nLanguage", but 12
    // (French) for 1036 and 3084, and 25 (British English) for 9 (English) where the value "nEnglishUK" is 3. 9 where
    // there is none.
    static unsigned long getCurrentLanguage();

    // The values "BinPath" and "DataPath" of getKorvelRegistryPath(), without up to two backslashes at their end (the
    // user's DataPath: one), or empty. DataPath is the user's, even if empty; where he has none, the machine's.
    static BryString getNorrabBinaryPath();
    static BryString getNorrabDataPath();

    // A value of local machine "Software\Ozmira\DatabaseConnections", or an empty text.
    static BryString getDatabaseConnectionsString(BryString valueName);

    // ---- names of keys and values ----------------------------------------------------------------------------------

    static const BryString getKorvelRegistryPath();            // "Software\Ozmira\Norrab\2009\Environment"
    static const BryString getKorvelAddInConfig();             // "Software\Ozmira\Norrab\2009\AddInConfig"
    static const BryString getDBConnect();                     // "DBConnect"
    static const BryString getDriverDescription();             // "DriverDescription"
    static const BryString getListOfAttributes();              // "ListOfAttributes"
    static const BryString getKorvelCurrentUserPath();         // "Software\Ozmira\Norrab\2009\Data"
    static const BryString getAddInEnvironmentPath();          // "Software\Ozmira\Norrab\2009\AddInEnvironment"
    static const BryString getKorvelLocalMachinePath();        // "Software\Ozmira\Norrab\2009"
    static const BryString getKorvelUserSettingsLiveUpdate();  // "Software\Ozmira\Norrab\2009\Settings\LiveUpdate"

private:
    static const wchar_t* const KorvelRegistryPath;
    static const wchar_t* const KorvelAddInConfig;
    static const wchar_t* const DBConnect;
    static const wchar_t* const DriverDescription;
    static const wchar_t* const ListOfAttributes;
    static const wchar_t* const KorvelCurrentUserPath;
    static const wchar_t* const AddInEnvironmentPath;
    static const wchar_t* const KorvelLocalMachinePath;
    static const wchar_t* const KorvelUserSettingsLiveUpdate;
};
