// Windows paths on this system, and this system's names and error numbers in Windows' terms.
//
// A backslash separates like a slash. c:\x is x below the folder in KELROOTS_DRIVE_C, by default
// ~/.local/share/norrab/drive_c; another letter has its own variable and folder (KELROOTS_DRIVE_D, drive_d). c:x is
// taken from the top of the drive too. Drive c: is always there: its folder is made when something is to be made in
// it. Any other drive is there when its folder is. The prefix \\?\ is dropped.
//
// Names are UTF-8 on disk and keep their case; opening, removing and renaming take them as they are spelt. Points and
// blanks at the end of a path are dropped, as Windows does. Every name on disk has a wide form that leads back to it,
// whatever its bytes: a byte that is not UTF-8 is the unit DC00 + byte.
#pragma once

#include <cstddef>
#include <string>

namespace platform {

// The path of this system that a Windows path names; empty for an empty path.
std::string hostPath(const wchar_t* path);

// Whether the path has a character that no Windows name has: a wildcard, a quote, < > | or a control character.
bool isImpossiblePath(const wchar_t* path) noexcept;

// Makes the folder of drive c: where the path is on that drive and the folder is missing. Whether it has made it.
bool provideDrive(const wchar_t* path);

// Makes a folder and those above it. Whether the folder was not there before.
bool makeFolders(const std::string& path);

// The folder of the user's files.
std::string homeFolder();

// A name of this system as wide text in a buffer of size units, cut where it does not fit. Its length.
std::size_t wideName(const char* name, wchar_t* to, std::size_t size) noexcept;

// The number that Windows' C runtime has for an error of this system.
int windowsError(int hostError) noexcept;

// Sets errno to it and gives -1, for the routines that fail so.
int failWith(int windowsError) noexcept;

}  // namespace platform
