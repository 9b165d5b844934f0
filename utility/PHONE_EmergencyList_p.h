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
#include <functional>
#include <optional>
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

/// The code that shows the IMEI, allowed while the keypad is unlocked.
inline constexpr char kImeiCode[] = "*#06#";

/// The codes that change and unblock PIN and PIN2, allowed while the SIM card is ready, in the order in which they are
/// tried.
inline constexpr const char* kPinCodes[] = {"**04*", "**042*", "**05*", "**052*"};

/// Whether @p isWanted holds for one of the numbers in the file @p path, tried in their order; false when the file
/// cannot be read. A last record that is cut short counts when its NUL is there: a file caught half-written gives no
/// number that nobody wrote.
inline bool anyNumber(const std::function<bool(const QString&)>& isWanted, const char* path = kListFile)
{
    const posix::UniqueFd file = posix::openForReading(path);
    const qint64 size = posix::regularFileSize(file.get()).value_or(0);
    constexpr auto kRecordSize = static_cast<off_t>(sizeof(Record));
    std::vector<Record> records(
        static_cast<size_t>(std::clamp<off_t>(size / kRecordSize + 1, kRecordLimit, kRecordsAtATime)));
    for (off_t offset = 0;;) {
        const ssize_t length = posix::readOnceAt(file.get(), std::as_writable_bytes(std::span(records)), offset);
        if (length <= 0)
            return false;
        const auto whole = static_cast<size_t>(length) / sizeof(Record);
        const auto rest = static_cast<size_t>(length) % sizeof(Record);
        const bool isLast = offset + length >= size;
        const bool isRestNumber = isLast && rest > 0 && std::memchr(records[whole].data(), '\0', rest);
        for (const Record& record : std::span(records).first(whole + (isRestNumber ? 1 : 0))) {
            if (const QString number = latin1Text(record); !number.isEmpty() && isWanted(number))
                return true;
        }
        if (isLast || whole == 0)
            return false;
        // Holes hold no number, and may be too long to read.
        offset =
            posix::nextData(file.get(), offset + static_cast<off_t>(whole) * kRecordSize) / kRecordSize * kRecordSize;
    }
}

/// The numbers in the file @p path in their order; none when it cannot be read.
inline QStringList readList(const char* path = kListFile)
{
    QStringList numbers;
    anyNumber(
        [&](const QString& number) {
            numbers += number;
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
