// Decodes the messages of the phone channel.
#include "utility/PHONE_MsgDecoder_p.h"

#include "utility/PHONE_Log.h"
#include "utility/PHONE_MsgName_p.h"
#include "utility/PHONE_MsgTable_p.h"

namespace zyn {
namespace {

void printBanner(const LogLine& line)
{
    if (line.banner)
        PHONE_Log(kPhoneLogLevel, "%s", line.banner);
}

// The formats come from the table, where they are checked when it is compiled.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void print(const LogLine& line, const FieldValues& values)
{
    printBanner(line);
    if (line.printsText())
        PHONE_Log(kPhoneLogLevel, line.format, values[line.argument.field].text.toLatin1().constData());
    else
        PHONE_Log(kPhoneLogLevel, line.format, number(values, line.argument));
    printBanner(line);
}
#pragma GCC diagnostic pop

} // namespace

void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, int line)
{
    const std::optional<unsigned> type = messageType(kPhonePrefix, name, kPhoneTypes);
    if (!type)
        return;
    const PhoneMessage& message = phoneMessages()[*type];
    FieldValues values = readFields(message.fields, payload);
    for (const LogLine& logLine : message.log)
        print(logLine, values);
    if (message.emitSignals)
        message.emitSignals(Emitter(client, line), values);
}

} // namespace zyn
