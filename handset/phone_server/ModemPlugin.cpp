// The telephony of a real phone is a library of its own, so that a desk needs no system bus.
#include "handset/phone_server/ModemPlugin.h"

#include "handset/common/Log.h"
#include "handset/phone_server/Modem.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QLibrary>

using namespace Qt::StringLiterals;

namespace zyn::handset {

std::unique_ptr<Modem> loadModem(const QString& stack, PhoneStatus& status)
{
    const QString path =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/" ZYN_MODEM_LIBRARY));
    QLibrary library(path);
    const auto make = reinterpret_cast<decltype(&zynMakeModem)>(library.resolve("zynMakeModem"));
    if (!make) {
        log(u"no telephony: %1; install the package zynphone-modem"_s.arg(library.errorString()));
        return nullptr;
    }
    return std::unique_ptr<Modem>(make(stack.toLatin1().constData(), &status));
}

} // namespace zyn::handset
