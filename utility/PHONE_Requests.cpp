// One-shot requests to the phone server.
#include "utility/PHONE_Requests.h"

#include "utility/PHONE_MsgClient.h"

void PHONE_SetRFMode(bool on)
{
    PHONE_MsgClient().setRFMode(on);
}

void PHONE_SetTAPILanguage(int language)
{
    PHONE_MsgClient().setFearureDBCurrLang(language);
}
