// The lines that the activity log writes to standard output.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace zyn {

/**
 * Puts lines to standard output, many at a time. Who writes there in another way, or calls who may, flushes them first.
 */
class Trace
{
public:
    Trace() = default;
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    ~Trace() { flush(); }

    /// A literal, whose length is known.
    template<size_t Size>
    Trace& operator<<(const char (&text)[Size])
    {
        makeRoom(Size);
        std::memcpy(m_buffer.data() + m_size, text, Size - 1);
        m_size += Size - 1;
        return *this;
    }
    Trace& operator<<(std::string_view text)
    {
        if (text.size() > m_buffer.size()) {
            flush();
            std::fwrite(text.data(), 1, text.size(), stdout);
            return *this;
        }
        makeRoom(text.size());
        m_size += text.copy(m_buffer.data() + m_size, text.size());
        return *this;
    }
    Trace& operator<<(std::integral auto number)
    {
        constexpr size_t kDigits = 24;
        makeRoom(kDigits);
        char* const begin = m_buffer.data() + m_size;
        m_size += static_cast<size_t>(std::to_chars(begin, begin + kDigits, +number).ptr - begin);
        return *this;
    }

    void flush()
    {
        if (m_size > 0)
            std::fwrite(m_buffer.data(), 1, m_size, stdout);
        m_size = 0;
    }

private:
    static constexpr size_t kSize = 16384; ///< few calls for many lines, and little of a stack

    void makeRoom(size_t size)
    {
        if (m_buffer.size() - m_size < size)
            flush();
    }

    std::array<char, kSize> m_buffer; // NOLINT: only what was put there is written
    size_t m_size = 0;
};

} // namespace zyn
