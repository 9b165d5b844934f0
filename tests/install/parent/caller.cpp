// Uses the greater of the libraries, in the language of the parent.
#include <recentcall/utility/RC_Interface.h>
#include <utility/PHONE_MsgClient.h>
#include <utility/PHONE_SpeedDial.h>

static_assert(__cplusplus == 201703L, "the parent's language level");

int main()
{
    PHONE_SpeedDial dial;
    return dial.setTurboDialing(1, QString::number(112)) && dial.getTurboDialing(1) == QString::number(112) ? 0 : 1;
}
