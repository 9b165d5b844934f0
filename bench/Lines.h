// Trace lines as somebody writes them who forms them by hand.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <string_view>

namespace bench {

/// Lines that are formed in one buffer, and put to standard output when it is full.
class Lines
{
public:
    ~Lines() { write(); }
    Lines& operator<<(std::string_view text)
    {
        if (m_size + text.size() > m_buffer.size())
            write();
        m_size += text.copy(m_buffer.data() + m_size, text.size());
        return *this;
    }
    template<std::integral Number>
    Lines& operator<<(Number number)
    {
        std::array<char, 24> digits; // NOLINT(cppcoreguidelines-init-variables): to_chars() writes it
        const char* const end = std::to_chars(digits.begin(), digits.end(), +number).ptr;
        return *this << std::string_view(digits.data(), static_cast<size_t>(end - digits.data()));
    }

private:
    void write()
    {
        std::fwrite(m_buffer.data(), 1, m_size, stdout);
        m_size = 0;
    }

    std::array<char, 4096> m_buffer; // NOLINT: what is not written is not read
    size_t m_size = 0;
};

} // namespace bench
