// Settings and emergency numbers, beside bare system calls and QSettings.
#include "bench/Bench.h"
#include "platform/SETUP_SET_Manager.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <QtCore/QSettings>
#include <QtCore/QStringList>

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

const auto kGroup = u"RECENTCALL_SET"_s;
const auto kKey = u"maxMissedCall"_s;

QString settingsFile(const QByteArray& directory)
{
    QString path = QString::fromLocal8Bit(directory) + u"/settings.cfg"_s;
    SETUP_SET_Manager settings(path, false);
    for (const QString& key : {u"maxAnsweredCall"_s, kKey, u"maxDialedCall"_s})
        require(settings.setSettingInfo(kGroup, key, 20), "a setting");
    return path;
}

Job readSetting(const QByteArray& directory)
{
    const auto settings = std::make_shared<SETUP_SET_Manager>(settingsFile(directory), false);
    return {.run = [settings] {
        int value = 0;
        require(settings->getSettingInfo(kGroup, kKey, value, 0) && value == 20, "a setting's value");
    }};
}

Job lookAtFile(const QByteArray& directory)
{
    return {.run = [path = settingsFile(directory).toLocal8Bit()] {
        struct stat status = {};
        require(::stat(path.constData(), &status) == 0, "stat()");
    }};
}

Job readWithQt(const QByteArray& directory)
{
    return {.run = [path = settingsFile(directory)] {
        const QSettings settings(path, QSettings::IniFormat);
        require(settings.value(kGroup + u'/' + kKey).toInt() == 20, "a value of QSettings");
    }};
}

void listNumbers(int count)
{
    QStringList numbers;
    for (int i = 0; i < count; ++i)
        numbers += QString::number(911'000 + i);
    require(zyn::emergency::writeList(numbers), "a list of emergency numbers");
}

Prepare readNumbers(int count)
{
    return [count](const QByteArray& /*directory*/) -> Job {
        listNumbers(count);
        return {.run = [count] {
            std::array<char, 8192> buffer; // NOLINT: read() writes it
            const int fd = ::open(zyn::emergency::kListFile, O_RDONLY | O_CLOEXEC);
            struct stat status = {};
            ::fstat(fd, &status);
            const ssize_t length = ::pread(fd, buffer.data(), buffer.size(), 0);
            ::close(fd);
            require(length == status.st_size && length == count * static_cast<ssize_t>(sizeof(zyn::emergency::Record)),
                    "reading the numbers");
        }};
    };
}

} // namespace

/// A key after which the number may still become none of the list: all of it is looked at.
Prepare pressKey(int count)
{
    return [count](const QByteArray& directory) -> Job {
        useStores(directory);
        listNumbers(count);
        return {.run = [input = u"5"_s] { require(!PHONE_IsEmergencyCallInput(input), "a key"); }};
    };
}

std::vector<Row> settingsRows()
{
    return {
        {"a setting, file unchanged",
         1.3,
         kLimit,
         {{kOurs, readSetting}, {kLimit, lookAtFile}, {"QSettings", readWithQt}}},
        {"emergency key, 5 numbers", 1.5, kLimit, {{kOurs, pressKey(5)}, {kLimit, readNumbers(5)}}},
        {"emergency key, 100 numbers", 1.5, kLimit, {{kOurs, pressKey(100)}, {kLimit, readNumbers(100)}}},
    };
}

} // namespace bench
