// What tests of the window change around it. QML knows it as TestWindow, of ZynPhone.Testing.
#include "qml/handset/Language.h"

#include <QtGui/QGuiApplication>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtTest/QTest>

#include <initializer_list>
#include <memory>

Q_IMPORT_QML_PLUGIN(ZynPhone_HandsetPlugin)

namespace {

class TestWindow : public QObject
{
    Q_OBJECT

public:
    explicit TestWindow(QQmlEngine& engine)
        : m_engine(engine)
    {}
    ~TestWindow() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

    /// Speaks the language @p code from now on; false when it has no texts of its own.
    Q_INVOKABLE bool speak(const QString& code)
    {
        m_language.reset();
        m_language = std::make_unique<zyn::window::Language>(code);
        m_engine.retranslate();
        return m_language->isTranslated();
    }

    /// Any key, as those of a telephone, which TestCase does not know.
    Q_INVOKABLE void clickKey(int key) { send(key, {true, false}, false); }
    /// What a key that is held sends after its press, as an X server has it.
    Q_INVOKABLE void repeatKey(int key) { send(key, {false, true}, true); }

private:
    void send(int key, std::initializer_list<bool> presses, bool isRepeat)
    {
        for (const bool isPress : presses)
            QTest::simulateEvent(QGuiApplication::focusWindow(), isPress, key, Qt::NoModifier, {}, isRepeat);
    }

    QQmlEngine& m_engine;
    std::unique_ptr<zyn::window::Language> m_language;
};

void registerTestWindow()
{
    qmlRegisterSingletonType<TestWindow>("ZynPhone.Testing", 1, 0, "TestWindow",
                                         [](QQmlEngine* engine, QJSEngine*) { return new TestWindow(*engine); });
}
Q_COREAPP_STARTUP_FUNCTION(registerTestWindow)

} // namespace

#include "TestWindow.moc"
