// The number picker of the recent-call screens.
#pragma once

#include "handset/common/LineInput.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zyn::handset {

class Output;

/**
 * Lets the user pick one of the numbers that are shown, and tells whoever waits which it is, or that it is none.
 *
 * Every time that it is opened it tells so once: when the user has answered, or when it is closed before. Opened again
 * meanwhile, it stays open and tells once for both: what it tells reaches all who wait.
 */
class NumberPicker : public QObject
{
    Q_OBJECT

public:
    /// @param answer  what counts as typed whenever the picker opens, when nobody is to be asked
    NumberPicker(Output& output, std::optional<QString> answer);

    /// Asks for one of @p numbers by its row; with none to pick from it closes at once.
    void open(const QStringList& numbers);
    /// Closes it without a number, if it is open.
    void close();

private:
    void ask();
    void take(const QString& line);
    void tell(const QString& number);

    Output& m_output;
    const std::optional<QString> m_answer;
    LineInput m_input;
    QStringList m_numbers;
    bool m_isOpen = false;
};

} // namespace zyn::handset
