// The library's debug lines. Internal: not installed.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The level of the phone side's debug lines.
inline constexpr int kPhoneLogLevel = 3;
/// The level of lines that are never printed.
inline constexpr int kSilentLogLevel = 8;

/// Prints, printf-style and without an added line end, to the logging library's module stream, or to standard output
/// when none is set. A @p level of 8 or above prints nothing.
[[gnu::format(printf, 2, 3)]] void PHONE_Log(int level, const char* format, ...);

namespace zyn {

/// The line that marks the entry into a function: "%s,%s,%d \n" with the source's path without its extension, the
/// function's name and the line of the call.
void logEntry(int level, const char* source, const char* function, int line = __builtin_LINE());

/// Debug lines that are written with one call, where those of PHONE_Log() go: when the object ends, at flush(), or when
/// there are more than it keeps.
class LogText
{
public:
    LogText() = default;
    LogText(const LogText&) = delete;
    LogText& operator=(const LogText&) = delete;
    ~LogText() { flush(); }

    LogText& operator<<(std::string_view text)
    {
        if (text.size() > m_text.size() - m_size)
            return addLong(text);
        std::memcpy(m_text.data() + m_size, text.data(), text.size());
        m_size += text.size();
        return *this;
    }
    LogText& operator<<(int32_t number);

    /// Adds the line of logEntry().
    void addEntry(const char* source, const char* function, int line = __builtin_LINE());

    void flush();

private:
    LogText& addLong(std::string_view text);

    std::array<char, 1024> m_text; ///< of which the first m_size are used
    size_t m_size = 0;
};

} // namespace zyn
