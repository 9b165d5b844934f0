// Uses the greater of the libraries, in the language of the parent.
#include <recentcall/utility/RC_Interface.h>
#include <utility/PHONE_MsgClient.h>

static_assert(__cplusplus == 201703L, "the parent's language level");

bool lastDialed(QString& number)
{
    return RC_Interface().getLastDialedNumber(number);
}
