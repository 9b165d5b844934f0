// The list of emergency numbers, a file of 42-byte records, and the control codes beside it.
#pragma once

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zyn {

/// Whether the keypad lock status @p status lets any number be dialed.
constexpr bool isKeypadUnlocked(int status)
{
    return status == 0;
}

/// Whether the SIM card status @p status lets calls be placed on the card.
constexpr bool isSimCardReady(int status)
{
    return status == 0 || status == 3;
}

namespace emergency {

inline constexpr char kListFile[] = "/tmp/emergency_call";

/// A number, Latin-1, and at least one NUL. There is no header and no count.
using Record = std::array<char, 42>;
static_assert(sizeof(Record) == 42);

/// How many records are written at most, and read of anything but a regular file: whatever is put under the file's
/// name, reading it ends.
inline constexpr int kRecordLimit = 1560;

/// How many records are read at a time: all of any list but a huge one, as a list rewritten between two reads would be
/// a mix of both.
inline constexpr int kRecordsAtATime = 400'000;

/// How many records a list may have for which no memory is sought.
inline constexpr size_t kShortList = 200;

/// The code that shows the IMEI, allowed while the keypad is unlocked.
inline constexpr char kImeiCode[] = "*#06#";

/// The codes that change and unblock PIN and PIN2, allowed while the SIM card is ready, in the order in which they are
/// tried.
inline constexpr const char* kPinCodes[] = {"**04*", "**042*", "**05*", "**052*"};

/// The number in @p record.
inline std::string_view numberIn(const Record& record)
{
    return {record.data(), qstrnlen(record.data(), record.size())};
}

/// Whether @p isWanted holds for one of the numbers in the first @p length bytes of @p records. A last record that
/// is cut short counts only with @p isLast and if it includes its NUL: a half-written file must not shorten a number.
template<typename IsWanted>
bool anyOf(std::span<const Record> records, ssize_t length, bool isLast, IsWanted isWanted)
{
    const auto whole = static_cast<size_t>(length) / sizeof(Record);
    const auto rest = static_cast<size_t>(length) % sizeof(Record);
    const bool isRestNumber = isLast && rest > 0 && std::memchr(records[whole].data(), '\0', rest);
    return std::ranges::any_of(records.first(whole + (isRestNumber ? 1 : 0)),
                               [&](const Record& record) { return record.front() != '\0' && isWanted(record); });
}

/// Reads into @p buffer from @p offset on, where the file @p file has @p expected bytes left: with one system call, and
/// with more only if that gave less than there is.
inline ssize_t readExpected(int file, std::span<std::byte> buffer, off_t offset, off_t expected)
{
    const ssize_t length = posix::readOnceAt(file, buffer, offset);
    if (length <= 0 || off_t{length} >= std::min(expected, static_cast<off_t>(buffer.size())))
        return length;
    const ssize_t rest = posix::readAt(file, buffer.subspan(static_cast<size_t>(length)), offset + length);
    return length + std::max<ssize_t>(rest, 0);
}

/// Whether @p isWanted holds for one of the numbers in the open file @p file, however long it is.
template<typename IsWanted>
bool anyOfLongList(int file, IsWanted isWanted)
{
    const qint64 size = posix::regularFileSize(file).value_or(0);
    constexpr auto kRecordSize = static_cast<off_t>(sizeof(Record));
    std::vector<Record> records(
        static_cast<size_t>(std::clamp<off_t>(size / kRecordSize + 1, kRecordLimit, kRecordsAtATime)));
    for (off_t offset = 0;;) {
        const ssize_t length = readExpected(file, std::as_writable_bytes(std::span(records)), offset, size - offset);
        if (length <= 0)
            return false;
        const bool isLast = offset + length >= size;
        const off_t whole = off_t{length} / kRecordSize;
        if (anyOf(records, length, isLast, isWanted))
            return true;
        if (isLast || whole == 0)
            return false;
        // Holes hold no number, and may be too long to read.
        offset = posix::nextData(file, offset + whole * kRecordSize) / kRecordSize * kRecordSize;
    }
}

/// Whether @p isWanted holds for one of the numbers (each a Record of which what follows its NUL has no meaning) in the
/// file @p path, tried in their order; false when the file cannot be read.
template<typename IsWanted>
bool anyNumber(IsWanted isWanted, const char* path = kListFile)
{
    const posix::UniqueFd file = posix::openForReading(QByteArray::fromRawData(path, qsizetype(qstrlen(path))));
    std::array<Record, kShortList> few; // NOLINT: only what is read is used
    if (const off_t end = posix::endOf(file.get()); end >= 0 && end < off_t{sizeof few}) {
        const ssize_t length = readExpected(file.get(), std::as_writable_bytes(std::span(few)), 0, end);
        if (length < ssize_t{sizeof few})
            return length > 0 && anyOf(few, length, true, isWanted);
    }
    return anyOfLongList(file.get(), isWanted);
}

/// Whether @p text is how one of these numbers begins.
inline bool beginsNumber(const QString& text)
{
    Record latin1 = {};
    if (text.size() > qsizetype{sizeof latin1} || std::ranges::any_of(text, [](QChar c) { return c.toLatin1() == 0; }))
        return false;
    std::ranges::transform(text, latin1.begin(), &QChar::toLatin1);
    const auto length = static_cast<size_t>(text.size());
    return anyNumber([&](const Record& number) {
        return number.front() == latin1.front() && std::strncmp(number.data(), latin1.data(), length) == 0;
    });
}

/// The numbers in the file @p path in their order; none when it cannot be read.
inline QStringList readList(const char* path = kListFile)
{
    QStringList numbers;
    anyNumber(
        [&](const Record& record) {
            const std::string_view number = numberIn(record);
            numbers += QLatin1String(number.data(), static_cast<qsizetype>(number.size()));
            return false;
        },
        path);
    return numbers;
}

/// The record of @p number; nothing when it is empty, above 41 characters, or would not be read back as it is.
inline std::optional<Record> recordOf(const QString& number)
{
    Record record = {};
    storeText(record, number.toLatin1());
    if (number.isEmpty() || latin1Text(record) != number)
        return std::nullopt;
    return record;
}

/// Replaces the file @p path at once; false, and the file as it was, when it cannot be written or hold a number.
inline bool writeList(const QStringList& numbers, const char* path = kListFile)
{
    if (numbers.size() > kRecordLimit)
        return false;
    QByteArray records;
    for (const QString& number : numbers) {
        const std::optional<Record> record = recordOf(number);
        if (!record)
            return false;
        records.append(record->data(), qsizetype{sizeof(Record)});
    }
    return posix::replaceFile(path, records);
}

} // namespace emergency
} // namespace zyn
