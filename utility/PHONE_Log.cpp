// The library's debug lines.
#include "utility/PHONE_Log_p.h"

#include "platform/aplog.h"

#include <charconv>
#include <cstdarg>
#include <limits>

namespace {

FILE* stream()
{
    return libaplog_to_module_ptr ? libaplog_to_module_ptr : stdout;
}

} // namespace

void PHONE_Log(int level, const char* format, ...)
{
    if (level >= kSilentLogLevel)
        return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stream(), format, arguments);
    va_end(arguments);
}

void zyn::logEntry(int level, const char* source, const char* function, int line)
{
    if (level < kSilentLogLevel)
        LogText().addEntry(source, function, line);
}

/// Adds @p text, which does not fit into the buffer.
zyn::LogText& zyn::LogText::addLong(std::string_view text)
{
    flush();
    if (text.size() <= m_text.size())
        return *this << text;
    std::fwrite(text.data(), 1, text.size(), stream());
    return *this;
}

zyn::LogText& zyn::LogText::operator<<(int32_t number)
{
    constexpr size_t kLongest = std::numeric_limits<int32_t>::digits10 + 2; // with the sign
    if (m_text.size() - m_size < kLongest)
        flush();
    char* const begin = m_text.data() + m_size;
    m_size += static_cast<size_t>(std::to_chars(begin, begin + kLongest, number).ptr - begin);
    return *this;
}

void zyn::LogText::addEntry(const char* source, const char* function, int line)
{
    *this << source << "," << function << "," << int32_t{line} << " \n";
}

void zyn::LogText::flush()
{
    if (m_size > 0)
        std::fwrite(m_text.data(), 1, m_size, stream());
    m_size = 0;
}
