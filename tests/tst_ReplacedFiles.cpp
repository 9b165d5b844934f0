// Files that are replaced whole: on a full disk, and behind links.
#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "platform/posix/StagedFile_p.h"
#include "support/ActivityLogFixture.h"
#include "support/Descriptors.h"
#include "support/OtherUser.h"
#include "support/SmallDisk.h"
#include "support/StdoutCapture.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <QtCore/QDir>
#include <QtTest/QTest>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Makes a file what it is before or, when @p isChanged, what it is to become; whether that was done.
using Writer = bool (*)(const ActivityLogFixture& fixture, const QByteArray& path, bool isChanged);

bool writeNumbers(const ActivityLogFixture& /*fixture*/, const QByteArray& path, bool isChanged)
{
    return zyn::emergency::writeList(isChanged ? QStringList{u"112"_s, u"911"_s} : QStringList{u"999"_s},
                                     path.constData());
}

bool writeSeenCalls(const ActivityLogFixture& /*fixture*/, const QByteArray& path, bool isChanged)
{
    std::vector<PHONE_ENG_RecentCall> calls(isChanged ? 3 : 2);
    for (size_t i = 0; i < calls.size(); ++i)
        calls[i].uid = static_cast<int>(i);
    return zyn::handset::SeenCalls(QFile::decodeName(path)).replaceBy(calls);
}

bool writeSetting(const ActivityLogFixture& /*fixture*/, const QByteArray& path, bool isChanged)
{
    return SETUP_SET_Manager(QFile::decodeName(path), false).setSettingInfo(u"g"_s, u"k"_s, isChanged);
}

/// A favourite's file, of which the settings want @p slots slots once it is changed.
bool writeEntries(const ActivityLogFixture& fixture, const QByteArray& path, bool isChanged, int slotCount)
{
    const QString number = QFileInfo(QFile::decodeName(path)).fileName();
    if (isChanged) {
        fixture.setSlots(QString::number(slotCount));
        return zyn::handset::renewLog(number);
    }
    activity::revamp({}, number);
    for (int start = 1; start <= 5; ++start)
        activity::add(number, start);
    return true;
}

bool writeAllEntries(const ActivityLogFixture& fixture, const QByteArray& path, bool isChanged)
{
    return writeEntries(fixture, path, isChanged, 20);
}

bool writeSomeEntries(const ActivityLogFixture& fixture, const QByteArray& path, bool isChanged)
{
    return writeEntries(fixture, path, isChanged, 3);
}

} // namespace

class tst_ReplacedFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_output.emplace();
        m_fixture.emplace();
        QDir(m_fixture->path()).mkdir(u"phone"_s);
        m_descriptors = openDescriptors();
    }
    void cleanup()
    {
        QCOMPARE(openDescriptors(), m_descriptors);
        m_fixture.reset();
        const QByteArray output = m_output->take();
        m_output.reset();
        if (QTest::currentTestFailed()) // what failed was written to the captured output, too
            qInfo("%s", output.right(1000).constData());
    }

    void keepTheOldOnAFullDisk_data();
    void keepTheOldOnAFullDisk();
    void areNotThoseOfAnotherUsersLink_data();
    void areNotThoseOfAnotherUsersLink();
    void staysALinkOfTheirOwner();

private:
    QString files() const
    {
        const QDir directory(m_fixture->file(QString()));
        return directory.entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot).join(u' ');
    }

    std::optional<StdoutCapture> m_output;
    std::optional<ActivityLogFixture> m_fixture;
    qsizetype m_descriptors = 0;
};

void tst_ReplacedFiles::keepTheOldOnAFullDisk_data()
{
    QTest::addColumn<Writer>("writer");
    QTest::addColumn<int>("pages"); // that are left
    QTest::newRow("emergency numbers") << &writeNumbers << 0;
    QTest::newRow("calls looked at") << &writeSeenCalls << 0;
    QTest::newRow("a setting") << &writeSetting << 0;
    QTest::newRow("a favourite's log of more slots") << &writeAllEntries << 0;
    QTest::newRow("a favourite's log of more slots, half of which fits") << &writeAllEntries << 1;
    QTest::newRow("a favourite's log of fewer slots, no space for its copy") << &writeSomeEntries << 1;
    QTest::newRow("a favourite's log of fewer slots, space for its copy only") << &writeSomeEntries << 2;
}

void tst_ReplacedFiles::keepTheOldOnAFullDisk()
{
    QFETCH(const Writer, writer);
    QFETCH(const int, pages);
    const SmallDisk disk(m_fixture->file(QString()), "256k");
    if (!disk.isMounted())
        QSKIP("the kernel allows no mount here");
    const QByteArray path = QFile::encodeName(m_fixture->file(u"555"_s));
    QVERIFY(writer(*m_fixture, path, false));
    const QByteArray before = m_fixture->read(u"555"_s);
    const QString names = files();
    disk.fill(pages);
    QVERIFY(!writer(*m_fixture, path, true));
    QCOMPARE(m_fixture->read(u"555"_s), before);
    disk.clear();
    QCOMPARE(files(), names);
    QVERIFY(writer(*m_fixture, path, true));
    QVERIFY(m_fixture->read(u"555"_s) != before);
}

void tst_ReplacedFiles::areNotThoseOfAnotherUsersLink_data()
{
    QTest::addColumn<Writer>("writer");
    QTest::newRow("emergency numbers") << &writeNumbers;
    QTest::newRow("calls looked at") << &writeSeenCalls;
    QTest::newRow("a setting") << &writeSetting;
}

void tst_ReplacedFiles::areNotThoseOfAnotherUsersLink()
{
    QFETCH(const Writer, writer);
    for (const QString& target : {u"precious"_s, u"nothing"_s}) {
        m_fixture->write(u"precious"_s, "precious");
        QFile::remove(m_fixture->file(u"555"_s));
        QVERIFY(QFile::link(target, m_fixture->file(u"555"_s)));
        if (!otheruser::give(m_fixture->file(u"555"_s)))
            QSKIP("only root can act as another user");
        QVERIFY(!writer(*m_fixture, QFile::encodeName(m_fixture->file(u"555"_s)), true));
        QCOMPARE(m_fixture->read(u"precious"_s), "precious");
        QCOMPARE(files(), u"555 precious"_s);
    }
}

void tst_ReplacedFiles::staysALinkOfTheirOwner()
{
    m_fixture->write(u"there"_s, "old");
    QVERIFY(::chmod(QFile::encodeName(m_fixture->file(u"there"_s)).constData(), 0640) == 0);
    QVERIFY(QFile::link(u"there"_s, m_fixture->file(u"555"_s)));
    if (!otheruser::give(m_fixture->file(u"there"_s)))
        QSKIP("only root can give files away");
    const QString owner = otheruser::ownership(m_fixture->file(u"there"_s));
    QVERIFY(zyn::posix::replaceFile(QFile::encodeName(m_fixture->file(u"555"_s)), "new"));
    QCOMPARE(m_fixture->read(u"there"_s), "new");
    QCOMPARE(otheruser::ownership(m_fixture->file(u"there"_s)), owner);
    QVERIFY(QFileInfo(m_fixture->file(u"555"_s)).isSymLink());
    // Neither a directory nor a FIFO gives way.
    QVERIFY(QDir().mkdir(m_fixture->file(u"directory"_s)));
    QVERIFY(::mkfifo(QFile::encodeName(m_fixture->file(u"fifo"_s)).constData(), 0600) == 0);
    for (const QString& name : {u"directory"_s, u"fifo"_s})
        QVERIFY(!zyn::posix::replaceFile(QFile::encodeName(m_fixture->file(name)), "new"));
    QCOMPARE(files(), u"555 directory fifo there"_s);
}

QTEST_GUILESS_MAIN(tst_ReplacedFiles)
#include "tst_ReplacedFiles.moc"
