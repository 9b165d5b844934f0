// Registers the argument types of a class's signals, so that connections by name can be queued.
#include "utility/PHONE_SignalTypes_p.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaType>

namespace zyn {
namespace {

void registerType(const QByteArray& name, QMetaType type)
{
    if (name.contains('['))
        return;
    type.id(); // registers the type's own name
    if (name != type.name())
        QMetaType::registerNormalizedTypedef(name, type);
}

} // namespace

bool registerSignalTypes(const QMetaObject& metaObject)
{
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        const QList<QByteArray> names = method.parameterTypes();
        for (int parameter = 0; parameter < method.parameterCount(); ++parameter)
            registerType(names.at(parameter), method.parameterMetaType(parameter));
    }
    return true;
}

} // namespace zyn
