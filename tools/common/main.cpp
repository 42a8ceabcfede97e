// The way in of every command-line program: the command line as text of the library.
#include "Program.h"
#include "Utf8.h"

// The one place that differs by system: how the command line and the terminal come by UTF-8.
#ifdef _WIN32
#    include <windows.h>

int wmain(int count, wchar_t** arguments) {
    SetConsoleOutputCP(CP_UTF8);
    return runProgram(std::vector<BryString>(arguments + 1, arguments + count), stdout, stderr);
}
#else
int main(int count, char** arguments) {
    std::vector<BryString> texts;
    for (int i = 1; i < count; ++i) texts.push_back(utf8ToString(arguments[i]));
    return runProgram(texts, stdout, stderr);
}
#endif
