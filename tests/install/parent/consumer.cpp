// Uses a class of either library, in the language of the parent.
#include <platform/QCopChannel.h>
#include <recentcall/utility/RC_RecordInterface.h>

static_assert(__cplusplus == 201703L, "the parent's language level");

int main()
{
    RC_RecordInterfaceImpl call;
    call.setPhoneNumber(QStringLiteral("112"));
    return call.getPhoneNumber() == QLatin1String("112") && !QCopChannel::send(QCString(), QCString()) ? 0 : 1;
}
