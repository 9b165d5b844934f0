// The settings store.
#include "platform/SETUP_SET_Manager.h"
#include "support/Descriptors.h"
#include "support/OtherUser.h"
#include "support/Role.h"
#include "support/ScopedFileSizeLimit.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <climits>
#include <cstdlib>
#include <optional>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kManyWrites = 200;
constexpr qsizetype kSizeLimit = qsizetype{1024} * 1024;

/// The stored text; null when there is none.
QString textOf(const QString& path, const QString& group, const QString& key)
{
    QString value;
    const bool stored = SETUP_SET_Manager(path, false).getSettingInfo(group, key, value, u"default"_s);
    return stored ? value : value == u"default" ? QString() : u"not the default"_s;
}

/// Writes the numbers from 0 to below @p count under keys of its own, saying each once it is stored.
int writeMany(const QString& path, const QString& prefix, int count)
{
    role::sayReady();
    SETUP_SET_Manager settings(path, false);
    for (int i = 0; i < count; ++i) {
        if (!settings.setSettingInfo(u"many"_s, prefix + QString::number(i % kManyWrites), i))
            return EXIT_FAILURE;
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
    return EXIT_SUCCESS;
}

} // namespace

class tst_SETUP_SET_Manager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory.emplace();
        m_descriptors = openDescriptors();
    }
    void cleanup()
    {
        QCOMPARE(openDescriptors(), m_descriptors);
        m_directory.reset();
    }

    void keepsTextAsTyped();
    void keepsWhatALineCannotHold_data();
    void keepsWhatALineCannotHold();
    void refusesNamesThatALineCannotHold();
    void readsFilesWrittenByHand_data();
    void readsFilesWrittenByHand();
    void changesNothingButTheEntry_data();
    void changesNothingButTheEntry();
    void convertsNumbersAndFlags();
    void givesTheStoredValueAtOnce();
    void failsWithoutHarm_data();
    void failsWithoutHarm();
    void keepsTheFilesModeAndLink();
    void choosesTheApplicationsFile();
    void losesNothingBetweenTwoWriters();
    void survivesKilledWriters();
    void removesWhatKilledWritersLeft();

private:
    bool set(const QString& value, const QString& group = u"g"_s, const QString& key = u"k"_s) const
    {
        return SETUP_SET_Manager(path(), false).setSettingInfo(group, key, value);
    }
    QString get() const { return textOf(path(), u"g"_s, u"k"_s); }
    QString path() const { return m_directory->filePath(u"settings.cfg"_s); }
    void write(const QByteArray& bytes) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray read() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList files() const
    {
        return QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden);
    }

    std::optional<QTemporaryDir> m_directory;
    qsizetype m_descriptors = 0;
};

void tst_SETUP_SET_Manager::keepsTextAsTyped()
{
    struct
    {
        QString group, key, value;
    } const entries[] = {
        {u""_s, u"0"_s, u""_s},
        {u" outer blanks "_s, u"two words"_s, u"  both ends \t"_s},
        {u"a]b[c"_s, u"a[0]"_s, u"=a, \"b\",,'c'="_s},
        {u"[]"_s, u"a#b;c"_s, u"[group]"_s},
        {u"# ; ="_s, u"Schlüssel"_s, u"; # no comment"_s},
        {u"電話"_s, u"a/b\\c"_s, u"\\n %20 @Invalid() Ελλάδα 👩‍👩‍👧"_s},
        {u"Turbo Dialing"_s, u"1"_s, QString(4000, u'9')},
    };
    SETUP_SET_Manager settings(path(), true);
    for (const auto& [group, key, value] : entries) {
        QVERIFY(settings.setSettingInfo(u"other"_s, key, u"another's"_s, true));
        QVERIFY(settings.setSettingInfo(group, key, value, true));
        QCOMPARE(textOf(path(), group, key), value);
        QCOMPARE(textOf(path(), u"other"_s, key), u"another's"_s);
        QVERIFY(read().contains(key.toUtf8() + '=' + value.toUtf8() + '\n'));
        QVERIFY(group.isEmpty() || read().contains("\n[" + group.toUtf8() + "]\n"));
    }
    QVERIFY(settings.flush());
}

void tst_SETUP_SET_Manager::keepsWhatALineCannotHold_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("stored"); // behind the mark

    QTest::newRow("an entry on a line of its own") << u"a\n[h]\nk=b"_s << "a\\n[h]\\nk=b"_ba;
    QTest::newRow("a line end of another kind") << u"a\r"_s << "a\\r"_ba;
    QTest::newRow("the first half of a pair") << QString(QChar(0xD83D)) << "\\ud83d"_ba;
    QTest::newRow("both halves, the wrong way round") << QString::fromUtf16(u"\xDC31\xD83D") << "\\udc31\\ud83d"_ba;
    QTest::newRow("half a pair before a whole one")
        << QString::fromUtf16(u"\xD83D\xD83D\xDE00") << "\\ud83d\U0001F600"_ba;
    QTest::newRow("a mark in front") << u"\uFEFFa\uFEFF"_s << "\\ufeffa\\ufeff"_ba;
    QTest::newRow("what looks like an escape") << u"\\n\\ud83d\\\n\\"_s << "\\\\n\\\\ud83d\\\\\\n\\\\"_ba;
    QTest::newRow("a NUL before a line break") << QString(QChar::Null) + u'\n' << QByteArray("\0\\n", 3);
}

void tst_SETUP_SET_Manager::keepsWhatALineCannotHold()
{
    QFETCH(const QString, value);
    QFETCH(const QByteArray, stored);
    write("[g]\nk=old\n[h]\nk=other\n");
    QVERIFY(set(value));
    QCOMPARE(get(), value);
    QCOMPARE(read(), "[g]\nk=\xEF\xBB\xBF" + stored + "\n[h]\nk=other\n");
}

void tst_SETUP_SET_Manager::refusesNamesThatALineCannotHold()
{
    write("[g]\nk=old\n");
    SETUP_SET_Manager settings(path(), false);
    const QString half(QChar(0xD83D)); // of a surrogate pair
    for (const QString& key : {u""_s, u" k"_s, u"k\t"_s, u"k=l"_s, u"[k"_s, u"#k"_s, u";k"_s, u"k\nl"_s, half})
        QVERIFY2(!settings.setSettingInfo(u"g"_s, key, u"v"_s), qPrintable(key));
    QVERIFY(!settings.setSettingInfo(u"g]\n[h"_s, u"k"_s, u"v"_s));
    QCOMPARE(read(), "[g]\nk=old\n");
    QVERIFY(settings.setSettingInfo(u"g"_s, u"k"_s, u"new"_s));
    QVERIFY2(!settings.flush(), "a later success must not hide the failure");
}

void tst_SETUP_SET_Manager::readsFilesWrittenByHand_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("value"); // of k in g; null for the default

    const QString none;
    QTest::newRow("CR LF and blanks around names") << " [g]\t\r\n \tk = v \r\n"_ba << u" v "_s;
    QTest::newRow("lines that are no entries") << "[g]\n#k=1\n;k=2\n  # k=3\nk\n=1\n[\n]\n[h\nk=v\n#k=4\n"_ba << u"v"_s;
    QTest::newRow("key and group twice") << "[g]\nk=1\nk=2\n[h]\nk=3\n[g]\nk=v\n"_ba << u"v"_s;
    QTest::newRow("only in another group") << "k=0\n[gg]\nk=1\n[G]\nk=2\n[g]\nK=3\n"_ba << none;
    QTest::newRow("Latin-1 line and group") << "[g]\nk=v\nk=Gr\xFC\xDF"_ba + "e\n[Gr\xFCn]\nk=1\n"_ba << u"v"_s;
    QTest::newRow("NUL bytes") << QByteArray("\0[g]\0\n[g]\nk=a\0b\n", 16) << QString::fromUtf8("a\0b", 3);
    QTest::newRow("backslashes, as they always were") << "[g]\nk=\\n\\\\\\ud83d\\\n"_ba << u"\\n\\\\\\ud83d\\"_s;
    QTest::newRow("a mark before escapes that are none")
        << "[g]\nk=\xEF\xBB\xBF\xEF\xBB\xBF\\x\\u12\\u12G4\\\n"_ba << u"\uFEFF\\x\\u12\\u12G4\\"_s;
    QTest::newRow("as large as allowed") << "[g]\nk=v\n#"_ba.leftJustified(kSizeLimit, 'x') << u"v"_s;
    QTest::newRow("one byte larger") << "[g]\nk=v\n#"_ba.leftJustified(kSizeLimit + 1, 'x') << none;
}

void tst_SETUP_SET_Manager::readsFilesWrittenByHand()
{
    QFETCH(const QByteArray, text);
    write(text);
    QTEST(get(), "value");
    QCOMPARE(files(), QStringList({u"."_s, u".."_s, u"settings.cfg"_s}));
}

void tst_SETUP_SET_Manager::changesNothingButTheEntry_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QByteArray>("after"); // k=new stored in the group

    QTest::newRow("no file") << QByteArray() << u"g"_s << "[g]\nk=new\n"_ba;
    QTest::newRow("empty file") << ""_ba << u""_s << "k=new\n"_ba;
    QTest::newRow("among comments and damage")
        << "#c\n\n[g]\n;k=1\nl=\xFF\nk=old\nwhat\n"_ba << u"g"_s << "#c\n\n[g]\n;k=1\nl=\xFF\nk=new\nwhat\n"_ba;
    QTest::newRow("new key before the blank lines")
        << "[g]\n\n\n[h]\nk=2\n"_ba << u"g"_s << "[g]\nk=new\n\n\n[h]\nk=2\n"_ba;
    QTest::newRow("new group") << "[h]\nk=2\n"_ba << u"g"_s << "[h]\nk=2\n\n[g]\nk=new\n"_ba;
    QTest::newRow("new key, no final line end") << "[g]\nl=2"_ba << u"g"_s << "[g]\nl=2\nk=new\n"_ba;
    QTest::newRow("last of a key that stands twice, CR LF around it")
        << "[g]\r\nk=1\r\nk=2\r\n[g]\r\nl=3\r\n"_ba << u"g"_s << "[g]\r\nk=1\r\nk=new\n[g]\r\nl=3\r\n"_ba;
    QTest::newRow("before all groups, behind the mark")
        << "\xEF\xBB\xBF[g]\nk=1\n"_ba << u""_s << "\xEF\xBB\xBFk=new\n[g]\nk=1\n"_ba;
}

void tst_SETUP_SET_Manager::changesNothingButTheEntry()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QString, group);
    if (!before.isNull())
        write(before);
    QVERIFY(set(u"new"_s, group));
    QTEST(read(), "after");
    QCOMPARE(textOf(path(), group, u"k"_s), u"new"_s);
    QCOMPARE(files(), QStringList({u"."_s, u".."_s, u"settings.cfg"_s}));
}

void tst_SETUP_SET_Manager::convertsNumbersAndFlags()
{
    // The text, and behind it what it is as int, unsigned int and bool; - for the default.
    const QByteArray rows = "7\t|7 7 -;+7|7 7 -;007|7 7 -;-1|-1 - -;0|0 0 0; 1 |1 1 1;true|- - 1; false |- - 0;"
                            "2147483647|2147483647 2147483647 -;-2147483648|-2147483648 - -;4294967295|- 4294967295 -;"
                            "|- - -;True|- - -;1e3|- - -;0x10|- - -;1.0|- - -;1,000|- - -;- 1|- - -;\xD9\xA7|- - -;"
                            "4294967296|- - -;-2147483649|- - -;7@x|- - -;1@|- - -";
    for (const QByteArray& row : rows.split(';')) {
        write("[g]\nk=" + row.split('|')[0].replace('@', '\0') + '\n');
        SETUP_SET_Manager settings(path(), false);
        const auto get = [&](auto fallback) {
            decltype(fallback) value{};
            const bool stored = settings.getSettingInfo(u"g"_s, u"k"_s, value, fallback);
            return stored ? QByteArray::number(value) : value == fallback ? "-"_ba : "not the default"_ba;
        };
        QCOMPARE(row.split('|')[0] + '|' + get(77) + ' ' + get(88U) + ' ' + get(true), row);
    }
}

void tst_SETUP_SET_Manager::givesTheStoredValueAtOnce()
{
    SETUP_SET_Manager writer(path(), false);
    SETUP_SET_Manager reader(path(), false);
    const auto comesBack = [&](auto stored, auto other) {
        decltype(stored) value{};
        return writer.setSettingInfo(u"g"_s, u"k"_s, stored) && reader.getSettingInfo(u"g"_s, u"k"_s, value, other)
               && value == stored;
    };
    QVERIFY(comesBack(INT_MIN, 5) && comesBack(INT_MAX, 5));
    QVERIFY(comesBack(true, false) && comesBack(false, true));
    // Values of one length, many of them within one tick of the file's time.
    for (int i = 1000; i < 1000 + kManyWrites; ++i)
        QVERIFY(comesBack(i, 5));
}

void tst_SETUP_SET_Manager::failsWithoutHarm_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("obstacle"); // a command that makes it
    QTest::addColumn<int>("diskSpace");       // the largest file that can be written; -1 for no limit

    const QByteArray none = "true";
    QTest::newRow("a file in the directory's place") << u"settings.cfg/setup/x"_s << none << -1;
    QTest::newRow("a FIFO in the file's place") << u"fifo"_s << "mkfifo fifo"_ba << -1;
    QTest::newRow("no room left below 1 MiB") << u"full"_s << none << -1;
    QTest::newRow("larger than 1 MiB") << u"full"_s << "echo '#' >>full"_ba << -1;
    QTest::newRow("no path") << QString() << none << -1;
    QTest::newRow("a NUL in the path") << QString(u"new"_s + QChar::Null) << none << -1;
    QTest::newRow("no space for the lock") << u"settings.cfg"_s << none << 0;
    QTest::newRow("no space for the file") << u"settings.cfg"_s << none << 500;
    QTest::newRow("another user's directory") << u"settings.cfg"_s << "chmod 755 . && chown 65534 probe"_ba << -1;
    for (const QByteArray command : {"mkfifo", "mkdir", "ln -s nothing", "ln -s full", "mknod -m 600", "chown 65534"}) {
        const QByteArray rest = command.startsWith("mknod") ? " c 1 3"_ba : ""_ba;
        const QByteArray first = command.startsWith("chown") ? "touch settings.cfg.lock && "_ba : ""_ba;
        QTest::addRow("a lock made by %s", command.constData())
            << u"settings.cfg"_s << first + command + " settings.cfg.lock" + rest << -1;
    }
}

void tst_SETUP_SET_Manager::failsWithoutHarm()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, obstacle);
    QFETCH(const int, diskSpace);
    QDir::setCurrent(m_directory->path());
    const QByteArray old = "[g]\nk=old\n#"_ba.leftJustified(1000, 'x');
    write(old.leftJustified(kSizeLimit - 2, 'x'));
    QVERIFY(QFile::copy(path(), u"full"_s) && QFile::copy(path(), u"probe"_s));
    write(old);
    if (std::system(obstacle.constData()) != 0)
        QSKIP("only root can make this obstacle");
    const QStringList before = files();
    const qint64 fullSize = QFileInfo(u"full"_s).size();
    const QString lock = otheruser::ownership(u"settings.cfg.lock"_s);

    SETUP_SET_Manager settings(name, false);
    const bool asOther = obstacle.endsWith("probe");
    QVERIFY(!asOther || ::seteuid(otheruser::kNumber) == 0);
    std::optional<ScopedFileSizeLimit> limit;
    if (diskSpace >= 0)
        limit.emplace(rlim_t(diskSpace));
    const bool stored = settings.setSettingInfo(u"g"_s, u"k"_s, u"a longer value"_s);
    limit.reset();
    QVERIFY(!asOther || ::seteuid(0) == 0);
    QVERIFY(!stored);
    QVERIFY(!settings.flush());
    QCOMPARE(files(), before);
    QCOMPARE(QFileInfo(u"full"_s).size(), fullSize);
    QCOMPARE(otheruser::ownership(u"settings.cfg.lock"_s), lock);
    QCOMPARE(read(), old);
}

void tst_SETUP_SET_Manager::keepsTheFilesModeAndLink()
{
    const auto mode = [](const QString& file) {
        struct stat status = {};
        return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    };
    const mode_t oldMask = ::umask(027);
    const bool stored = set(u"1"_s);
    ::umask(oldMask);
    QVERIFY(stored);
    QCOMPARE(mode(path()), 0640U);

    const QString link = m_directory->filePath(u"link"_s);
    QVERIFY(QFile::link(u"settings.cfg"_s, link));
    QVERIFY(::chmod(QFile::encodeName(path()).constData(), 0604) == 0);
    SETUP_SET_Manager linked(link, false);
    QVERIFY(linked.setSettingInfo(u"g"_s, u"k"_s, u"2"_s));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(get(), u"2"_s);
    QCOMPARE(mode(path()), 0604U);
}

void tst_SETUP_SET_Manager::choosesTheApplicationsFile()
{
    const auto store = [](int app) {
        return SETUP_SET_Manager(AM_Global::Apps(app), true).setSettingInfo(u"g"_s, u"k"_s, app);
    };
    const QString configuration = m_directory->filePath(u"configuration"_s);
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(configuration));
    qunsetenv("ZYN_APP_WRITE_PATH");
    QVERIFY(store(4));
    qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_directory->filePath(u"Größe 1"_s)));
    QVERIFY(store(5));
    qunsetenv("XDG_CONFIG_HOME");
    qunsetenv("ZYN_APP_WRITE_PATH");
    QCOMPARE(textOf(configuration + u"/zynphone/setup/zyn_app4.cfg"_s, u"g"_s, u"k"_s), u"4"_s);
    QCOMPARE(textOf(m_directory->filePath(u"Größe 1/setup/zyn_app5.cfg"_s), u"g"_s, u"k"_s), u"5"_s);
}

void tst_SETUP_SET_Manager::losesNothingBetweenTwoWriters()
{
    write("[g]\nk=stays\n");
    const QString count = QString::number(kManyWrites);
    const auto first = role::start(u"writer"_s, {path(), u"a"_s, count});
    const QString link = m_directory->filePath(u"link"_s); // another name of the same file
    QVERIFY(QFile::link(u"settings.cfg"_s, link));
    const auto second = role::start(u"writer"_s, {link, u"b"_s, count});
    for (QProcess* writer : {first.get(), second.get()}) {
        while (!writer->waitForFinished(0) && writer->state() != QProcess::NotRunning)
            QCOMPARE(get(), u"stays"_s);
        QCOMPARE(role::finish(*writer), EXIT_SUCCESS);
    }
    for (int i = 0; i < 2 * kManyWrites; ++i)
        QCOMPARE(textOf(path(), u"many"_s, (i % 2 ? u"a%1"_s : u"b%1"_s).arg(i / 2)), QString::number(i / 2));
}

void tst_SETUP_SET_Manager::survivesKilledWriters()
{
    write("[g]\nk=stays\n");
    for (int round = 0; round < 5; ++round) {
        const auto writer = role::start(u"writer"_s, {path(), QString::number(round) + u'.', QString::number(INT_MAX)});
        QVERIFY(role::waitReady(*writer));
        for (int line = 0; line <= round; ++line)
            QVERIFY(writer->waitForReadyRead(role::kTimeout));
        writer->kill();
        QCOMPARE(role::finish(*writer), -1);
        const QList<QByteArray> said = writer->readAllStandardOutput().split('\n');
        QVERIFY(set(u"1"_s, u"after"_s, QString::number(round)));
        QCOMPARE(files(), QStringList({u"."_s, u".."_s, u"settings.cfg"_s}));
        QCOMPARE(get(), u"stays"_s);
        if (const int last = said.value(said.size() - 2).toInt(); last > 0 && last < kManyWrites)
            QCOMPARE_GE(textOf(path(), u"many"_s, u"%1.%2"_s.arg(round).arg(last)).toInt(), last);
    }
}

void tst_SETUP_SET_Manager::removesWhatKilledWritersLeft()
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(EXIT_SUCCESS);
    ::waitpid(gone, nullptr, 0);
    const auto make = [&](const QString& name, const QByteArray& bytes) {
        write(bytes);
        QVERIFY(name == u"settings.cfg" || QFile::rename(path(), m_directory->filePath(name)));
    };
    const QStringList kept = {u"note.AbCdEf"_s,          u"settings.cfg.1"_s,
                              u"settings.cfg.AbCdEfG"_s, u"settings.cfg.Backup"_s,
                              u"settings.cfg.backup"_s,  u"settings.cfg.new.%1"_s.arg(::getppid()),
                              u"settings.cfg.rpmnew"_s,  u"settings.cfg"_s};
    make(u"settings.cfg.AbCdEf"_s, "[g]\nk=1\n");
    make(u"settings.cfg.abcdef"_s, "");
    make(u"settings.cfg.new.%1"_s.arg(gone), "[g]\nk=1\n");
    make(u"settings.cfg.lock"_s, "2147483647\nx\nhost\n");
    for (const QString& name : kept)
        make(name, "[g]\n");
    QVERIFY(set(u"1"_s));
    const QStringList left = QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden);
    QCOMPARE(QSet<QString>(left.begin(), left.end()), QSet<QString>(kept.begin(), kept.end()));
}

int main(int argc, char** argv)
{
    return role::testMain<tst_SETUP_SET_Manager>(
        argc, argv,
        {{u"writer"_s, [](const QStringList& a) { return writeMany(a.value(0), a.value(1), a.value(2).toInt()); }}});
}

#include "tst_SETUP_SET_Manager.moc"
