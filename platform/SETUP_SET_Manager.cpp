// The settings store.
#include "platform/SETUP_SET_Manager.h"

#include "platform/SettingsFile_p.h"

namespace {

using zyn::settingWord;

std::optional<unsigned int> toUInt(const QByteArray& text)
{
    bool ok = false;
    const unsigned int number = settingWord(text).toUInt(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<bool> toBool(const QByteArray& text)
{
    const QByteArray flag = settingWord(text);
    if (flag == "true" || flag == "1")
        return true;
    if (flag == "false" || flag == "0")
        return false;
    return std::nullopt;
}

template<typename Value>
bool assign(Value& target, const std::optional<Value>& stored, const Value& defaultValue)
{
    target = stored.value_or(defaultValue);
    return stored.has_value();
}

} // namespace

class SETUP_SET_Manager::Private
{
public:
    explicit Private(QString path)
        : file(std::move(path))
    {}

    template<typename Value, typename Convert>
    bool get(const QString& group, const QString& key, Value& value, const Value& defaultValue, Convert convert)
    {
        const std::optional<QByteArray> text = file.value(group, key);
        return assign<Value>(value, text ? convert(*text) : std::nullopt, defaultValue);
    }

    bool set(const QString& group, const QString& key, const QString& value)
    {
        const bool stored = file.setValue(group, key, value);
        failed = failed || !stored;
        return stored;
    }

    zyn::SettingsFile file;
    bool failed = false;
};

SETUP_SET_Manager::SETUP_SET_Manager(AM_Global::Apps app, bool)
    : d(std::make_unique<Private>(zyn::settingsFile(app)))
{}

SETUP_SET_Manager::SETUP_SET_Manager(QString path, bool)
    : d(std::make_unique<Private>(std::move(path)))
{}

SETUP_SET_Manager::~SETUP_SET_Manager() = default;

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, int& value, int defaultValue)
{
    return d->get(group, key, value, defaultValue, zyn::settingInt);
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, unsigned int& value, unsigned int defaultValue)
{
    return d->get(group, key, value, defaultValue, toUInt);
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, bool& value, bool defaultValue)
{
    return d->get(group, key, value, defaultValue, toBool);
}

bool SETUP_SET_Manager::getSettingInfo(QString group, QString key, QString& value, QString defaultValue, bool)
{
    return d->get(group, key, value, defaultValue,
                  [](const QByteArray& text) { return std::optional(zyn::settingText(text)); });
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, int value)
{
    return d->set(group, key, QString::number(value));
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, bool value)
{
    return d->set(group, key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

bool SETUP_SET_Manager::setSettingInfo(QString group, QString key, QString value, bool)
{
    return d->set(group, key, value);
}

bool SETUP_SET_Manager::flush()
{
    return !d->failed;
}
