// The terminal that the program writes to.
#pragma once

#include <roots/text/BryString.h>

#include <cstdio>
#include <string>
#include <vector>

class Terminal {
public:
    explicit Terminal(std::FILE* stream) : m_stream(stream) {}
    virtual ~Terminal() = default;

    // How many columns it has; 0 where the stream leads to no terminal, or while another program has the terminal.
    virtual int columns() const;

    // At once.
    virtual void write(const std::string& text);

private:
    std::FILE* m_stream;
};

// A character with all that goes onto it, in UTF-8, and the columns that it takes.
struct TerminalCharacter {
    std::string text;
    int columns = 0;
};

// The text as terminals show it. Line ends become blanks, other controls and halves of pairs the replacement character:
// a text cannot move the cursor. Where terminals differ, columns is the most that one takes.
std::vector<TerminalCharacter> terminalCharacters(const BryString& text);
