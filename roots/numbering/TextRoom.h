// Memory for the text of a value while it is stepped.
#pragma once

#include <cstddef>
#include <memory>

// Room for a text of `units` units, the terminator included: in place where it is as short as part numbers are.
class TextRoom {
public:
    explicit TextRoom(std::size_t units) {
        if (units > sizeof(m_few) / sizeof(*m_few)) m_many.reset(new wchar_t[units]);
    }
    wchar_t* text() { return m_many ? m_many.get() : m_few; }

private:
    wchar_t m_few[128];
    std::unique_ptr<wchar_t[]> m_many;
};
