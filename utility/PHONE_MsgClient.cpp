// Turns the phone server's messages into signals.
#include "utility/PHONE_MsgClient.h"

#include "utility/PHONE_Log_p.h"
#include "utility/PHONE_SignalTypes_p.h"
#include "utility/message/PhoneMessages_p.h"

namespace {

QByteArray payload(PHONE_Msg::PHONE_MSG_TYPE_T request, int value)
{
    return zyn::encode(zyn::phoneMessage(request), {value});
}

} // namespace

PHONE_MsgClient::PHONE_MsgClient(QObject* parent, const char* name)
    : PHONE_Msg(parent, name)
{
    zyn::logEntry(kPhoneLogLevel, zyn::kClientSource, __func__);
    [[maybe_unused]] static const bool typesAreKnown = zyn::registerSignalTypes(staticMetaObject);
}

PHONE_MsgClient::~PHONE_MsgClient() = default;

bool PHONE_MsgClient::getTotalByteAndConnectedDuration()
{
    zyn::logEntry(kPhoneLogLevel, zyn::kClientSource, __func__);
    return send(PHONE_MSG_GET_TOTAL_BYTE_AND_DURATION_S);
}

void PHONE_MsgClient::resetTotalDuration(bool first)
{
    send(PHONE_MSG_RESET_TOTAL_DURATION_S, payload(PHONE_MSG_RESET_TOTAL_DURATION_S, first ? 0 : 1));
}

void PHONE_MsgClient::setFearureDBCurrLang(int language)
{
    send(PHONE_MSG_SET_FEATUREDB_LANG_S, payload(PHONE_MSG_SET_FEATUREDB_LANG_S, language));
}

void PHONE_MsgClient::setRFMode(bool on)
{
    send(PHONE_MSG_SET_RFMOD_S, payload(PHONE_MSG_SET_RFMOD_S, on ? 1 : 0));
}

void PHONE_MsgClient::receive(const QCString& message, const QByteArray& data)
{
    zyn::LogText log;
    log.addEntry(zyn::kClientSource, __func__);
    zyn::deliver(*this, message, data, log);
}
