// The number picker of the recent-call screens.
#include "handset/recentcall_screen/NumberPicker.h"

#include "handset/common/Log.h"
#include "handset/common/Output.h"
#include "handset/common/Text.h"
#include "recentcall/utility/RecentCall_Msg.h"
#include "utility/PHONE_Payload_p.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {

NumberPicker::NumberPicker(Output& output, std::optional<QString> answer)
    : m_output(output)
    , m_answer(std::move(answer))
{
    connect(&m_input, &LineInput::entered, this, &NumberPicker::take);
}

void NumberPicker::open(const QStringList& numbers)
{
    m_numbers = numbers;
    m_isOpen = true;
    if (m_numbers.isEmpty())
        close();
    else if (m_answer)
        take(*m_answer);
    else
        ask();
}

void NumberPicker::close()
{
    if (m_isOpen)
        tell(QString());
}

void NumberPicker::ask()
{
    m_output.write(u"Row to pick, or an empty line for none:\n"_s);
    m_input.ask();
}

void NumberPicker::take(const QString& line)
{
    const std::optional<int> row = wholeNumber(line);
    const QString number = row ? m_numbers.value(*row) : QString();
    if (!number.isEmpty() || line.isEmpty()) {
        tell(number);
        return;
    }
    m_output.write(u"No number in row '%1'.\n"_s.arg(printable(line)));
    if (m_answer)
        close();
    else
        ask();
}

/// Tells that the picker is closed, with @p number unless that is empty.
void NumberPicker::tell(const QString& number)
{
    m_isOpen = false;
    m_input.cancel();
    m_output.write(number.isEmpty() ? u"picked none\n"_s : u"picked %1\n"_s.arg(printable(number)));
    PayloadWriter payload;
    payload.writeBool(!number.isEmpty());
    if (!number.isEmpty())
        payload.writeText(number);
    if (!RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S, payload.payload()))
        log(u"cannot tell what was picked"_s);
}

} // namespace zyn::handset
