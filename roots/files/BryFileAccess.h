// Files: BryFileAccess is one open stream with the encoding of its text; the bryf... functions are the C runtime's
// stream routines with file names as BryString.
//
// File names and modes are wide text all the way. A mode is r, w or a, then + for reading and writing, b for binary;
// what has no b is text: a line feed is CR LF in the file on every system, and Ctrl-Z ends it. Names are Windows paths
// on every system; elsewhere a drive is a folder (KELROOTS_DRIVE_C, by default ~/.local/share/norrab/drive_c), and
// names keep their case and are looked for in it.
//
// Streams opened here are read, written and closed through what is declared here, never by the C library's own
// routines: only these know the line ends and the encoding.
//
// Nothing here throws of its own or shows a message.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

#include <cstdio>

// One open file. It is open from its construction until close() or the end of its last copy, and never opens again.
//
// Copies share the stream: it is closed when the last of them goes, or for all of them when one is closed.
//
// A closed object answers every call: isOpen() 0, eof() 1, getFileLength() 0, seek() and puts() -1, everything else 0
// or the empty text. What has no result leaves its argument as it was, except for gets() and readFile(), which then
// make it the empty text.
class KELROOTS_API BryFileAccess {
public:
    enum encodeType : int {
        encodeANSI = 0,     // 8-bit text, nothing added to the mode
        encodeUNICODE = 1,  // ", ccs=UNICODE": UTF-16 in a new file; the mark decides in an old one, without it 8-bit
        encodeUTF8 = 2,     // ", ccs=UTF-8"
        encodeUTF16LE = 3,  // ", ccs=UTF-16LE"
    };

    // A closed object of encoding 0.
    BryFileAccess() noexcept : m_shared(nullptr), m_encoding(encodeANSI) {}

    // Opens the file; isOpen() tells whether that succeeded. The empty name opens nothing. The three encodings with a
    // name write a byte order mark at the start of a new or empty file, at once; the mark of a file that has one is
    // skipped, and decides about the encoding whatever was asked for. Encodings are for text: with a b in the mode, the
    // runtime moves the 16-bit units of wide text as they are.
    BryFileAccess(const BryString& fileName, const BryString& mode, encodeType encoding);

    BryFileAccess(const BryFileAccess& other) noexcept;
    BryFileAccess& operator=(const BryFileAccess& other) noexcept;
    virtual ~BryFileAccess();

    // Closes the file, for all copies. The object can still be queried.
    void close();

    // ---- queries ---------------------------------------------------------------------------------------------------

    int isOpen() const;                                  // 1 or 0
    encodeType getCodingMethod() { return m_encoding; }  // as given to the constructor, open or not
    int eof() const;                                     // non-zero once a read has met the end of the file
    // The length in bytes, a mark included, as a signed 32-bit number: only for files below 2 GB. The position is 0
    // afterwards: in front of a mark, which the next wide read then gives as U+FEFF.
    long getFileLength();

    // ---- formatted output ------------------------------------------------------------------------------------------

    // Formats as the wide routine of the runtime does whatever the type of the format: %s takes wide text, %S 8-bit
    // text. The 8-bit format is in the ANSI code page. The number of wide characters written, negative on an error.
    //
    // In a file without an encoding a character is the byte of its number, up to U+00FF. What is beyond that becomes
    // "?"; on Windows the runtime drops it and the rest of the call, and the result is negative.
    int write(const char* format, ...) const;
    int write(const wchar_t* format, ...) const;
    int write(const unsigned short* format, ...) const;

    // ---- text and data ---------------------------------------------------------------------------------------------

    // The runtime's block read: the number of whole items of size bytes read into buffer. Line ends are translated in
    // text; a file with an encoding gives 16-bit characters.
    unsigned int read(void* buffer, unsigned int size, unsigned int count) const;

    // Reads a line of at most maxChars - 1 characters into line, its line feed included; the rest of a longer one is
    // the next line. Empty at the end of the file and for a maxChars below 2. Any maxChars is safe: above 512 for 8-bit
    // text and 256 for wide text, memory of its own is used. Files with an encoding are read as wide text, whatever the
    // characters; others are 8-bit text in the ANSI code page. A zero character ends
    // the text. Returns a copy of line.
    BryString gets(BryString& line, int maxChars);

    // Writes the text, without adding a line feed; as wide text where the file has an encoding, so that UTF-8 files
    // hold every character, and in the ANSI code page otherwise. Non-negative, or -1 on
    // an error.
    int puts(BryString text) const;

    // Moves the position by offset bytes from the start (origin 0), the position (1) or the end (2). 0, or non-zero
    // where that fails: a position before the start.
    int seek(long offset, int origin) const;

    // The next wide character; 65535 at the end of the file.
    int getc() const;

    // Skips white space and reads the characters before the next white space, at most 255: what is left of a longer
    // token is the next one. 1, or -1 at the end of the file; token changes only with 1.
    int readString(BryString& token) const;

    // Read a number behind white space. 1; 0 where the next characters are none; -1 at the end of the file. value
    // changes only with 1.
    int readInt(int& value) const;
    int readDouble(double& value) const;

    // Makes text the whole text of a file opened for reading, from its start, whatever encoding it was opened with:
    //
    //   the first bytes   the text is                                               the result counts
    //   FF FE             16-bit text                                               units
    //   FE FF             16-bit text in the other byte order, swapped              units
    //   EF BB BF          UTF-8; what is broken in it becomes U+FFFD                units of the text
    //   others            8-bit text in the ANSI code page                          bytes
    //
    // At most count of them; the mark is neither text nor counted. UTF-8 text is not cut within a surrogate pair. A
    // file opened as text has LF for CR LF and ends at Ctrl-Z, but 16-bit text comes as it is in the file, an odd byte
    // at its end left out. A zero character ends the text, though what follows is counted.
    unsigned int readFile(BryString& text, unsigned int count) const;

    // ---- files and folders -----------------------------------------------------------------------------------------

    // 0, or -1 where it fails. Folders are not removed.
    static int removeFile(const BryString& path);
    // Renames or moves a file, or renames a folder; never onto another one that is there.
    static int renameFile(const BryString& oldName, const BryString& newName);
    // For the whole process.
    static int changeWorkingDir(const BryString& path);
    // Makes the last folder of the path; 0 also where there is one (or a file) of that name.
    static int makeDir(const BryString& path);

private:
    struct Shared;

    std::FILE* stream() const noexcept;
    void release() noexcept;

    Shared* m_shared;  // the stream and the number of objects that share it; null where none was ever open
    encodeType m_encoding;
};

// ---- the runtime's stream routines ----------------------------------------------------------------------------------

// Opens a file; 0 or the runtime's error number, with *stream null: 2 not there, 13 denied, 22 a mode or a name that
// cannot be. The mode may name an encoding (", ccs=UTF-8").
KELROOTS_API int bryfopen(FILE** stream, const BryString& fileName, const BryString& mode);

// The number of characters written, negative on an error. %s takes 8-bit text in the 8-bit form and wide text in the
// wide form, %S the other. For wide text in a file without an encoding see BryFileAccess::write.
KELROOTS_API int bryfprintf(FILE* stream, const char* format, ...);
KELROOTS_API int bryfprintf(FILE* stream, const wchar_t* format, ...);

// 0, or -1 where not everything could be written. The stream is gone in any case.
KELROOTS_API int bryfclose(FILE* stream);

// The number of whole items read.
KELROOTS_API unsigned int bryfread(void* buffer, unsigned int size, unsigned int count, FILE* stream);

// Non-zero once a read has met the end of the file.
KELROOTS_API int bryfeof(FILE* stream);

// A line of at most maxChars - 1 bytes with its line feed; buffer, or null at the end of the file.
KELROOTS_API char* bryfgets(char* buffer, int maxChars, FILE* stream);

// Non-negative, or -1 on an error.
KELROOTS_API int bryfputs(const char* text, FILE* stream);

// 1 where a file or a folder is there, else 0. * and ? in the last component of the path stand for any characters.
// Case does not matter there.
KELROOTS_API int bryFileExists(const BryString& path);
