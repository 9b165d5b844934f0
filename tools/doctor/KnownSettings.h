// The settings that the library reads, and what their values may be.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

struct KnownSetting
{
    QString path; ///< of its file
    QString group;
    QString key;
    QString values; ///< for people
    bool (*fits)(const KnownSetting& setting);

    /// Its value is there, and is none of the possible ones.
    bool isMistaken() const;
    /// Its stored text, even a mistaken one.
    QString text() const;
};

/// Those of the phone applications and the feature switches.
std::vector<KnownSetting> phoneSettings();
/// The states of the stand-in handset.
std::vector<KnownSetting> handsetSettings();

/// A line for each of @p settings: group, key, and what its value may be.
QString valuesHelp(const std::vector<KnownSetting>& settings);

} // namespace zyn::tool
