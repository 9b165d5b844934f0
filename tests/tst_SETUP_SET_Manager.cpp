// The settings store.
#include "platform/SETUP_SET_Manager.h"
#include "platform/posix/File_p.h"
#include "support/Descriptors.h"
#include "support/OtherUser.h"
#include "support/Scenario.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/Timeout.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <array>
#include <climits>
#include <cstdlib>
#include <optional>
#include <thread>
#include <vector>

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

/// Writes many numbers under keys of its own: PATH PREFIX.
int writeMany(const QStringList& arguments)
{
    SETUP_SET_Manager settings(arguments[0], false);
    for (int i = 0; i < kManyWrites; ++i) {
        if (!settings.setSettingInfo(u"many"_s, arguments[1] + QString::number(i), i))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

/// What a text of the scenarios stands for: "{FEFF}" is one character.
QString decoded(const QString& text)
{
    QString result;
    for (qsizetype at = 0; at < text.size(); at += text[at] == u'{' ? 6 : 1)
        result += text[at] == u'{' ? QChar(text.mid(at + 1, 4).toUShort(nullptr, 16)) : text[at];
    return result;
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
        ::umask(m_mask);
        m_settings.reset();
        QCOMPARE(openDescriptors(), m_descriptors);
        m_directory.reset();
    }

    void keepsSettings_data() { scenario::addRows(QFINDTESTDATA("data/settings_file.txt")); }
    void keepsSettings()
    {
        using Words = const QStringList&;
        QFETCH(QStringList, steps);
        if (steps.contains(u"as root"_s)
            && !scenario::shell(path({}), {u"mknod x c 1 3 && chown 65534 x || echo no; rm -f x"_s}).isEmpty())
            QSKIP("only root can make these obstacles");
        scenario::play({
            {u"as"_s, [] {}},
            {u"write"_s, [this](Words w) { writeText(w.join(u' ')); }},
            {u"holds"_s, [this] { return text(); }},
            {u"open"_s, [this](Words w) { m_settings.emplace(path(w[0]), false); }},
            {u"set"_s,
             [this](Words w) { return m_settings->setSettingInfo(decoded(w[0]), decoded(w[1]), decoded(w[2])); }},
            {u"get"_s,
             [this](Words w) {
                 const QString value = get(w.value(0, u"g"_s));
                 return value.isNull() ? u"none"_s : value;
             }},
            {u"settled"_s, [this] { return isSettled(); }},
            {u"rewrite"_s, [this] { return rewrite(); }},
            {u"flush"_s, [this] { return m_settings->flush(); }},
            {u"keep"_s, [this](Words w) { return keep(decoded(w[0])); }},
            {u"read"_s,
             [this](Words w) {
                 writeText(w.join(u' '));
                 const QString value = isAlone() ? get() : files().join(u' ');
                 return value.isNull()
                            ? u"the default"_s
                            : QString(value).replace(QChar::Null, u"{0000}"_s).replace(u'\uFEFF', u"{FEFF}"_s);
             }},
            {u"change"_s,
             [this](Words w) {
                 if (!w[1].isEmpty())
                     writeText(w[1] == u"empty" ? QString() : w[1]);
                 return set(u"new"_s, w[0]) && get(w[0]) == u"new" && isAlone() ? text() : u"failed"_s;
             }},
            {u"convert"_s, [this](Words w) { return convert(w.value(0)); }},
            {u"convert-none"_s, // of all, those that are something
             [this](Words w) {
                 QStringList all = w;
                 all.removeIf([this](const QString& text) { return convert(text) == u"- - -"; });
                 return all.join(u' ');
             }},
            {u"fail"_s, [this](Words w) { return fail(decoded(w[0]), w[1].toInt(), w.mid(2).join(u' ').toLatin1()); }},
            {u"umask"_s, [](Words w) { ::umask(w[0].toUShort(nullptr, 8)); }},
            {u"variable"_s,
             [this](Words w) {
                 w.size() < 2 ? qunsetenv(qPrintable(w[0])) : qputenv(qPrintable(w[0]), QFile::encodeName(path(w[1])));
             }},
            {u"application"_s,
             [](Words w) {
                 return SETUP_SET_Manager(AM_Global::Apps(w[0].toInt()), true).setSettingInfo(u"g"_s, u"k"_s, w[0]);
             }},
            {u"sh"_s, [this](Words w) { return scenario::shell(path({}), w); }},
        });
    }

    void keepsTextAsTyped()
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

    void givesTheStoredValueAtOnce()
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

    void losesNothingBetweenTwoWriters()
    {
        write("[g]\nk=stays\n");
        const auto first = role::start(u"writer"_s, {path(), u"a"_s});
        const QString link = m_directory->filePath(u"link"_s); // another name of the same file
        QVERIFY(QFile::link(u"settings.cfg"_s, link));
        const auto second = role::start(u"writer"_s, {link, u"b"_s});
        for (QProcess* writer : {first.get(), second.get()}) {
            while (!writer->waitForFinished(0) && writer->state() != QProcess::NotRunning)
                QCOMPARE(get(), u"stays"_s);
            QCOMPARE(role::finish(*writer), EXIT_SUCCESS);
        }
        for (int i = 0; i < 2 * kManyWrites; ++i)
            QCOMPARE(textOf(path(), u"many"_s, (i % 2 ? u"a%1"_s : u"b%1"_s).arg(i / 2)), QString::number(i / 2));
    }

    void servesEachThread()
    {
        constexpr int kTimes = 20;
        write("[g]\nk=stays\n");
        QTRY_VERIFY(isSettled()); // what is read then is kept
        std::array<int, 3> served = {};
        std::vector<std::thread> threads;
        threads.reserve(served.size());
        for (int& times : served) {
            threads.emplace_back([this, &times, key = QString::number(threads.size())] {
                const auto number = [&times] { return QString::number(times); };
                while (times < kTimes && get() == u"stays" && set(number(), u"many"_s, key)
                       && textOf(path(), u"many"_s, key) == number())
                    ++times;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(served, (std::array{kTimes, kTimes, kTimes}));
    }

private:
    bool set(const QString& value, const QString& group = u"g"_s, const QString& key = u"k"_s) const
    {
        return SETUP_SET_Manager(path(), false).setSettingInfo(group, key, value);
    }
    QString get(const QString& group = u"g"_s) const { return textOf(path(), group, u"k"_s); }
    QString path(const QString& name = u"settings.cfg"_s) const { return m_directory->filePath(name); }
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
    bool isAlone() const { return files() == QStringList({u"."_s, u".."_s, u"settings.cfg"_s}); }
    /// The file, "|" for the ends of its lines.
    QString text() const { return scenario::textOf(read().replace('\n', '|')); }
    void writeText(const QString& text) const { write(scenario::bytes(text).replace('|', '\n')); }
    /// How a value is stored that comes back.
    QString keep(const QString& value) const
    {
        write("[g]\nk=old\n[h]\nk=other\n");
        if (!set(value) || get() != value)
            return u"failed"_s;
        return text().remove(u"[g]|k=%EF%BB%BF"_s).remove(u"|[h]|k=other|"_s);
    }

    /// A stored value as an int, an unsigned int and a bool; - for the default.
    QString convert(const QString& text) const
    {
        writeText(u"[g]|k="_s + text + u'|');
        SETUP_SET_Manager settings(path(), false);
        const auto get = [&](auto fallback) {
            decltype(fallback) value{};
            const bool stored = settings.getSettingInfo(u"g"_s, u"k"_s, value, fallback);
            return stored ? QString::number(value) : value == fallback ? u"-"_s : u"not the default"_s;
        };
        return get(77) + u' ' + get(88U) + u' ' + get(true);
    }

    /// Whether a change of the file is seen from now on, but not by a clock that is set back.
    bool isSettled() const
    {
        const auto version = *zyn::posix::fileVersion(QFile::encodeName(path()));
        auto future = version;
        future.changed.seconds += 3600;
        return zyn::posix::isSettled(version) && !zyn::posix::isSettled(future);
    }

    /// Whether many changes within one tick of the file's time are seen.
    bool rewrite() const
    {
        scenario::shell(path({}), {u"rm -f settings.cfg"_s});
        int seen = 0;
        for (; seen < kManyWrites; ++seen) {
            write("[g]\nk=" + QByteArray::number(1000 + seen));
            if (get() != QString::number(1000 + seen))
                break;
        }
        return seen == kManyWrites;
    }

    /// Whether a write fails and harms nothing, in a directory in which a command has made an obstacle, and with so
    /// much space for a file if it is not negative.
    bool fail(const QString& name, int diskSpace, const QByteArray& obstacle) const
    {
        QDir::setCurrent(m_directory->path());
        const QByteArray old = "[g]\nk=old\n#"_ba.leftJustified(1000, 'x');
        write(old.leftJustified(kSizeLimit - 2, 'x'));
        const auto state = [&] {
            return std::tuple(files(), QFileInfo(u"full"_s).size(), otheruser::ownership(u"settings.cfg.lock"_s),
                              read());
        };
        const bool isMade = QFile::copy(path(), u"full"_s) && (write(old), std::system(obstacle.constData()) == 0);
        const auto before = state();

        SETUP_SET_Manager settings(name, false);
        const uid_t user = obstacle.contains("chmod") ? otheruser::kNumber : ::geteuid();
        const bool isOther = ::seteuid(user) == 0;
        std::optional<ScopedFileSizeLimit> limit;
        if (diskSpace >= 0)
            limit.emplace(rlim_t(diskSpace));
        const bool stored = settings.setSettingInfo(u"g"_s, u"k"_s, u"a longer value"_s);
        limit.reset();
        return ::seteuid(::getuid()) == 0 && isMade && isOther && !stored && !settings.flush() && state() == before;
    }

    std::optional<QTemporaryDir> m_directory;
    std::optional<SETUP_SET_Manager> m_settings;
    const mode_t m_mask = ::umask(022);
    qsizetype m_descriptors = 0;
};

int main(int argc, char** argv)
{
    return role::testMain<tst_SETUP_SET_Manager>(argc, argv, {{u"writer"_s, writeMany}});
}

#include "tst_SETUP_SET_Manager.moc"
