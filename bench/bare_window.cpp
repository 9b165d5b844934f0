// An application that shows a window of Qt Quick with a line of text, and nothing else.
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\n"
                    "Window { width: 360; height: 720; visible: true; Text { text: \"a window\" } }\n");
    return QGuiApplication::exec();
}
