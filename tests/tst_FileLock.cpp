// Lock files: one holder at a time, however many start together, and who that is.
#include "handset/favourites/Favourites.h"
#include "platform/posix/FileLock_p.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <barrier>
#include <optional>
#include <thread>
#include <vector>

#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::handset::ActivityLogLock;

class tst_FileLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory.emplace();
        m_path = m_directory->filePath(u"topPalsLock"_s);
    }
    void hasOneHolderOfManyWhoStart();
    void isLeftWhenItIsAnothers();

private:
    void write(const QByteArray& bytes) const
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    std::optional<QTemporaryDir> m_directory;
    QString m_path;
};

void tst_FileLock::hasOneHolderOfManyWhoStart()
{
    constexpr int kStarters = 6;
    constexpr int kRounds = 2000;
    // Of a process whose number another one has by now.
    write(QByteArray::number(::getpid()) + "\ntst_FileLock\n" + QSysInfo::machineHostName().toLocal8Bit() + '\n');
    std::vector<std::atomic<int>> holders(kRounds);
    std::barrier<> allHaveTried(kStarters);
    std::vector<std::thread> starters(kStarters);
    for (std::thread& starter : starters) {
        starter = std::thread([&] {
            zyn::posix::FileLock lock;
            for (std::atomic<int>& count : holders) {
                count += lock.lock(QFile::encodeName(m_path)); // after giving back what it has, as others start
                allHaveTried.arrive_and_wait();
            }
        });
    }
    for (std::thread& starter : starters)
        starter.join();
    for (const std::atomic<int>& count : holders)
        QCOMPARE(count.load(), 1);
    QVERIFY(!QFile::exists(m_path));
}

void tst_FileLock::isLeftWhenItIsAnothers()
{
    {
        ActivityLogLock lock(m_directory->path());
        QVERIFY(lock.lock());
        QVERIFY(QFile::remove(m_path));
        write("1\nanother\n");
    }
    QVERIFY(QFile::exists(m_path));
    {
        ActivityLogLock lock(m_directory->path());
        QVERIFY(lock.lock());
        ActivityLogLock second(m_directory->path());
        QVERIFY(!second.lock());
        QCOMPARE(second.problem(), u"process %1 (tst_FileLock) owns the favourites"_s.arg(::getpid()));
    }
    QVERIFY(!QFile::exists(m_path));
}

QTEST_GUILESS_MAIN(tst_FileLock)
#include "tst_FileLock.moc"
