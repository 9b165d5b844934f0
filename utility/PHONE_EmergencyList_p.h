// The list of emergency numbers, a file of 42-byte records, and the control codes beside it.
#pragma once

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <array>
#include <cstddef>
#include <optional>

namespace zyn::emergency {

inline constexpr char kListFile[] = "/tmp/emergency_call";

/// A number, Latin-1, and at least one NUL. There is no header and no count.
using Record = std::array<char, 42>;
static_assert(sizeof(Record) == 42);

/// How many records of a file are read; whatever somebody puts under its name, a question has an end.
inline constexpr int kRecordLimit = 1560;

/// The code that shows the IMEI, and the keypad lock status that allows it.
inline constexpr char kImeiCode[] = "*#06#";
inline constexpr int kImeiKeypadStatus = 0;

/// The codes that change and unblock PIN and PIN2, in the order in which they are tried.
inline constexpr const char* kPinCodes[] = {"**04*", "**042*", "**05*", "**052*"};

/// Whether the SIM card status allows the PIN codes.
constexpr bool allowsPinCodes(int simCardStatus)
{
    return simCardStatus == 0 || simCardStatus == 3;
}

/// The record at the number @p index of the open file; empty when it is not there whole. A last record that
/// is cut short counts when its NUL is there: a file caught half-written gives no number that nobody wrote.
inline std::optional<Record> readRecord(int fd, int index)
{
    Record record = {};
    const ssize_t length =
        posix::readAt(fd, std::as_writable_bytes(std::span(record)), off_t{index} * static_cast<off_t>(sizeof record));
    const bool isWhole = length == static_cast<ssize_t>(sizeof record);
    if (length <= 0 || (!isWhole && !std::memchr(record.data(), '\0', static_cast<size_t>(length))))
        return std::nullopt;
    return record;
}

/// The numbers in the file @p path in their order; none when it cannot be read.
inline QStringList readList(const char* path = kListFile)
{
    QStringList numbers;
    const posix::UniqueFd file = posix::openForReading(path);
    for (int index = 0; index < kRecordLimit; ++index) {
        const std::optional<Record> record = readRecord(file.get(), index);
        if (!record)
            break;
        if (const QString number = latin1Text(*record); !number.isEmpty())
            numbers += number;
    }
    return numbers;
}

/// The record of @p number; nothing when it is empty, above 41 characters, or not what would be read again.
inline std::optional<Record> recordOf(const QString& number)
{
    Record record = {};
    storeText(record, number.toLatin1());
    if (number.isEmpty() || latin1Text(record) != number)
        return std::nullopt;
    return record;
}

/// Replaces the file @p path at once; false, and the file as it was, when it cannot be written or hold a
/// number.
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

} // namespace zyn::emergency
