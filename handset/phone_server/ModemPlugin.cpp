// The telephony of a real phone is a library of its own, so that a desk needs no system bus.
#include "handset/phone_server/ModemPlugin.h"

#include "handset/common/Log.h"
#include "handset/phone_server/Modem.h"
#include "utility/PHONE_EmergencyCall.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// Where the library is: beside the phone library that this program has loaded, wherever both were moved to.
QString modemLibrary()
{
    Dl_info phoneLibrary{};
    dladdr(reinterpret_cast<const void*>(&PHONE_IsEmergencyCallInput), &phoneLibrary);
    return QFileInfo(QFile::decodeName(phoneLibrary.dli_fname)).absolutePath() + QStringLiteral("/" ZYN_MODEM_LIBRARY);
}

} // namespace

std::unique_ptr<Modem> loadModem(const QString& stack, PhoneStatus& status)
{
    QLibrary library(modemLibrary());
    const auto make = reinterpret_cast<decltype(&zynMakeModem)>(library.resolve("zynMakeModem"));
    if (!make) {
        log(u"no telephony: %1; install the package zynphone-modem"_s.arg(library.errorString()));
        return nullptr;
    }
    return std::unique_ptr<Modem>(make(stack.toLatin1().constData(), &status));
}

} // namespace zyn::handset
