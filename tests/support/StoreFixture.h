// A store directory and settings of a test's own, and what tests of the stores have in common.
#pragma once

#include "Descriptors.h"
#include "ForkedChild.h"
#include "StdoutCapture.h"
#include "platform/SETUP_SET_Manager.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Settings_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <functional>
#include <optional>

#include <sys/wait.h>
#include <unistd.h>

/// Fresh directories named by ZYN_LOCAL_APP_WRITE_PATH and ZYN_APP_WRITE_PATH, and no singleton left from before.
class StoreFixture
{
public:
    StoreFixture()
    {
        qputenv("ZYN_LOCAL_APP_WRITE_PATH", QFile::encodeName(m_directory.path()));
        qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_directory.path()));
        forgetSingletons();
    }
    StoreFixture(const StoreFixture&) = delete;
    StoreFixture& operator=(const StoreFixture&) = delete;
    ~StoreFixture() { forgetSingletons(); }

    QString path() const { return m_directory.path(); }
    /// The names of all that is in the store directory.
    QString files() const
    {
        constexpr auto kAll = QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
        return QDir(file(QString())).entryList(kAll).join(u' ');
    }
    QString file(const QString& name) const { return m_directory.path() + QLatin1String("/phone/") + name; }
    QString file(RC_CALL_CATEGORY_T category) const
    {
        return m_directory.path() + QLatin1String("/phone") + QLatin1String(zyn::recordFileName(category));
    }

    /// @{ The whole file @p which: a name, or a list's category.
    template<typename Which>
    QByteArray read(const Which& which) const
    {
        QFile source(file(which));
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }
    template<typename Which>
    void write(const Which& which, const QByteArray& bytes) const
    {
        QFile target(file(which));
        if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(target.fileName()));
    }
    /// @}
    /// Puts bytes in the place of others in a file.
    void patch(const QString& name, qsizetype position, const QByteArray& bytes) const
    {
        write(name, read(name).replace(position, bytes.size(), bytes));
    }
    PHONE_ENG_RecentCall recordIn(RC_CALL_CATEGORY_T category, int slot) const
    {
        return zyn::RecordFile::at(read(category), slot);
    }

    /// Sets the limits of the answered, missed and dialed lists; they hold from the next store on.
    static void setLimits(int answered, int missed, int dialed)
    {
        SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
        const QString group = QStringLiteral("RECENTCALL_SET");
        settings.setSettingInfo(group, QStringLiteral("maxAnsweredCall"), answered);
        settings.setSettingInfo(group, QStringLiteral("maxMissedCall"), missed);
        settings.setSettingInfo(group, QStringLiteral("maxDialedCall"), dialed);
        forgetSingletons();
    }

    static RecentCall_ENG_RecordStore& store() { return *RecentCall_ENG_RecordStore::instance(); }

    /// What a new process knows: nothing of the files, and a uid counter at 0. Clears the files, too.
    static void startAfresh() { store().clearAllData(); }

    static PHONE_ENG_RecentCall call(RC_CALL_CATEGORY_T category, const char* number)
    {
        PHONE_ENG_RecentCall record(QLatin1String(number), QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
        record.category = category;
        record.inUse = 1;
        return record;
    }
    /// Adds a call and gives its record with the uid and slot that it got; uid -1 when the store refused.
    static PHONE_ENG_RecentCall add(RC_CALL_CATEGORY_T category, const char* number)
    {
        PHONE_ENG_RecentCall record = call(category, number);
        if (!store().addItem(record))
            record.uid = -1;
        return record;
    }
    /// The uids of a list in the order in which the store gives them.
    static QList<int> uids(RC_CALL_CATEGORY_T category)
    {
        QSortedList<PHONE_ENG_RecentCall> list;
        list.setAutoDelete(true);
        store().readDataList(list, category);
        QList<int> result;
        for (const PHONE_ENG_RecentCall* record : list)
            result.append(record->uid);
        return result;
    }

    static void forgetSingletons()
    {
        RecentCall_ENG_RecordStore::destroy();
        RecentCall_Setup::destroy();
    }

private:
    QTemporaryDir m_directory;
};

/// The bytes of a list's file without a call.
inline QByteArray freshList()
{
    return QByteArray::fromHex("d0c0b0a005000000") + QByteArray(228, '\0').replace(80, 1, "\1").repeated(50);
}

/// Does @p work in a process of its own; whether it succeeded. A process that hangs ends by itself.
inline bool inAnotherProcess(const std::function<bool()>& work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(forkedChildTime());
        endForkedChild(work() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && status == EXIT_SUCCESS;
}

/// A test of a store: of each function, standard output is captured, and no descriptor stays open.
template<typename Fixture>
class StoreTest : public QObject
{
protected:
    void begin()
    {
        m_output.emplace();
        m_fixture.emplace();
        m_descriptors = openDescriptors();
    }
    void end()
    {
        QCOMPARE(openDescriptors(), m_descriptors);
        m_fixture.reset();
        const QByteArray output = m_output->take();
        m_output.reset();
        if (QTest::currentTestFailed()) // the message of the failure was captured, too
            qInfo("%s", output.right(1000).constData());
    }

    std::optional<Fixture> m_fixture;

private:
    std::optional<StdoutCapture> m_output;
    qsizetype m_descriptors = 0;
};
