// The library's debug lines. Internal: not installed.
#pragma once

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

} // namespace zyn
