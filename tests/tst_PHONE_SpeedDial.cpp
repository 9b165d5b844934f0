// Speed dial and the prepend switch: what is stored, for every process, and what is said when it cannot be.
#include "support/Role.h"
#include "utility/PHONE_Setup.h"
#include "utility/PHONE_SpeedDial.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

QString table()
{
    QStringList numbers{u"old"_s};
    PHONE_SpeedDial().getTurboDialingList(numbers);
    return numbers.join(u',');
}

} // namespace

class tst_PHONE_SpeedDial : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_directory->path()));
    }

    void keepsNineNumbers();
    void takesNumbersAsTheyCome();
    void isOneForAllProcesses();
    void tellsWhenItCannotStore();

private:
    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_PHONE_SpeedDial::keepsNineNumbers()
{
    PHONE_SpeedDial dial;
    QCOMPARE(table(), u",,,,,,,,"_s);
    QCOMPARE(dial.getFirstAvailableTurboDialingIndex(), 1);
    QVERIFY(dial.setTurboDialing({u"1"_s, u" "_s, u""_s, u"p4=w*"_s}));
    QCOMPARE(table(), u"1, ,,p4=w*,,,,,"_s);
    QCOMPARE(dial.getFirstAvailableTurboDialingIndex(), 3);
    QVERIFY(dial.setTurboDialing(u"a,b,c,d,e,f,g,h,i,j,k,l"_s.split(u',')));
    QCOMPARE(table(), u"a,b,c,d,e,f,g,h,i"_s);
    QCOMPARE(dial.getFirstAvailableTurboDialingIndex(), -1);
    QVERIFY(dial.setTurboDialing({u""_s, u"new"_s}));
    QVERIFY(dial.setTurboDialing(0, u"zero"_s) && dial.setTurboDialing(12, u"dozen"_s));
    QCOMPARE(table(), u",new,c,d,e,f,g,h,i"_s);
    QCOMPARE(Phone_GetTurboDialingByIndex(0) + dial.getTurboDialing(10) + dial.getTurboDialing(12), u"zerodozen"_s);
    QCOMPARE(dial.getFirstAvailableTurboDialingIndex(), 1);
}

void tst_PHONE_SpeedDial::takesNumbersAsTheyCome()
{
    const QStringList numbers{u"1\n2=3"_s, u"\r"_s, QString(QChar(0xD83D)), u"\uFEFF112"_s, u"\\n\n"_s,
                              u"\\n"_s,    u" "_s};
    QVERIFY(PHONE_SpeedDial().setTurboDialing(numbers));
    QCOMPARE(table(), numbers.join(u',') + u",,"_s);
    for (int index = 1; index <= numbers.size(); ++index) {
        QVERIFY(PHONE_SpeedDial().setTurboDialing(index, numbers.at(numbers.size() - index)));
        QCOMPARE(Phone_GetTurboDialingByIndex(index), numbers.at(numbers.size() - index));
    }
}

void tst_PHONE_SpeedDial::isOneForAllProcesses()
{
    QVERIFY(!PHONE_Setup().isPrepend());
    QCOMPARE(role::finish(*role::start(u"store"_s)), 0);
    QCOMPARE(Phone_GetTurboDialingByIndex(4), u"+49 1"_s);
    QVERIFY(PHONE_Setup().isPrepend());
    QVERIFY(PHONE_Setup().setPrepend(false));
    QFile file(m_directory->filePath(u"setup/zyn_app4.cfg"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("[Turbo Dialing]\n4=+49 1\n\n[Setup]\nprepend=false\n"));
}

void tst_PHONE_SpeedDial::tellsWhenItCannotStore()
{
    QFile inTheWay(m_directory->filePath(u"setup"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(!PHONE_SpeedDial().setTurboDialing(1, u"1"_s) && !PHONE_SpeedDial().setTurboDialing({u"1"_s}));
    QVERIFY(!PHONE_Setup().setPrepend(true) && !PHONE_Setup().isPrepend());
    QCOMPARE(table(), u",,,,,,,,"_s);
}

int main(int argc, char** argv)
{
    const auto store = [](const QStringList&) {
        return PHONE_SpeedDial().setTurboDialing(4, u"+49 1"_s) && PHONE_Setup().setPrepend(true) ? 0 : 1;
    };
    return role::testMain<tst_PHONE_SpeedDial>(argc, argv, {{u"store"_s, store}});
}

#include "tst_PHONE_SpeedDial.moc"
