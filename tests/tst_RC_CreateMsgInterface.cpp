// The recent-call screens as a program has them that loads the library at run time and has none of its headers.
#include "platform/QCopChannel.h"
#include "tests/support/Timeout.h"

#include <QtCore/QLibrary>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <dlfcn.h>

/// Not in the unnamed namespace, where a compiler may take it for a class that no object has.
struct LoadedInterface : QObject
{
    virtual bool showPage(int page) = 0;
    virtual bool hide() = 0;
};

namespace {

// The object's class is one of the library's own.
__attribute__((no_sanitize("vptr"))) bool showsAndHides(LoadedInterface* screens)
{
    return screens->showPage(5) && screens->hide();
}

} // namespace

class tst_RC_CreateMsgInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void servesARunTimeLoader()
    {
        constexpr char kFactory[] = "RC_CreateMsgInterface";
        QVERIFY(!::dlsym(RTLD_DEFAULT, kFactory));
        QLibrary library(QStringLiteral(ZYN_LIBRARY));
        const auto create = reinterpret_cast<LoadedInterface* (*)()>(library.resolve(kFactory));
        QVERIFY2(create, qPrintable(library.errorString()));
        LoadedInterface* const screens = create();
        QCOMPARE(create(), screens);

        const QCopChannel listener("/ZYN/recentcall");
        const QSignalSpy received(&listener, &QCopChannel::received);
        QVERIFY(showsAndHides(screens));
        QTRY_COMPARE(received.size(), 2);
        QCOMPARE(received[0], (QVariantList{QByteArray("RECENTCALL_MSG_4"), QByteArray("\0\0\0\5", 4)}));
        QCOMPARE(received[1], (QVariantList{QByteArray("RECENTCALL_MSG_7"), QByteArray()}));
    }
};

QTEST_GUILESS_MAIN(tst_RC_CreateMsgInterface)
#include "tst_RC_CreateMsgInterface.moc"
