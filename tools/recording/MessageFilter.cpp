// Which messages are wanted.
#include "tools/recording/MessageFilter.h"

#include "tools/recording/MessageFields.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QList<QRegularExpression> patternsFrom(const QStringList& wildcards)
{
    QList<QRegularExpression> patterns;
    for (const QString& wildcard : wildcards) {
        patterns += QRegularExpression(QRegularExpression::wildcardToRegularExpression(wildcard),
                                       QRegularExpression::CaseInsensitiveOption);
        if (!patterns.last().isValid())
            throw usageError(u"'%1' is no pattern: %2"_s.arg(wildcard, patterns.last().errorString()));
    }
    return patterns;
}

/// Whether one of @p texts fits one of @p patterns, of which there may be none.
bool fits(const QList<QRegularExpression>& patterns, const QStringList& texts)
{
    return patterns.isEmpty() || std::ranges::any_of(patterns, [&](const QRegularExpression& pattern) {
               return std::ranges::any_of(texts, [&](const QString& text) { return pattern.match(text).hasMatch(); });
           });
}

} // namespace

QList<QCommandLineOption> MessageFilter::options()
{
    return {
        valueOption(u"message"_s, u"NAME"_s,
                    u"only messages with this word, name or enumerator; * stands for anything. May be given again"_s),
        valueOption(u"from"_s, u"PROGRAM"_s, u"only messages of this program, likewise"_s),
        valueOption(u"match"_s, u"TEXT"_s, u"only messages with this text in their values. May be given again"_s)};
}

MessageFilter::MessageFilter(const Invocation& invocation)
    : m_messages(patternsFrom(invocation.values(u"message"_s)))
    , m_senders(patternsFrom(invocation.values(u"from"_s)))
    , m_texts(invocation.values(u"match"_s))
{}

bool MessageFilter::lets(const ReceivedMessage& message) const
{
    if (!fits(m_senders, {message.sender.program}))
        return false;
    if (!m_messages.isEmpty()) {
        const MessageFields fields = messageFields(message.channel, message.name, message.payload);
        if (!fits(m_messages,
                  {messageWord(message.channel, message.name), QString::fromUtf8(message.name), fields.enumerator}))
            return false;
    }
    const QString values = m_texts.isEmpty() ? QString() : valueTexts(message).join(u' ');
    return m_texts.isEmpty() || std::ranges::any_of(m_texts, [&](const QString& text) {
               return values.contains(text, Qt::CaseInsensitive);
           });
}

} // namespace zyn::tool
