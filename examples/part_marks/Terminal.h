// The terminal that the program writes to.
#pragma once

#include <cstdio>
#include <string>

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
