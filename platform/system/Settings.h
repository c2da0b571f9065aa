// The user's own settings: text values under application, section and key.
#pragma once

#include <string>

namespace sys {

/// The value that is kept under application, section and key; `otherwise` if nothing is kept. An empty
/// text that was saved is a value and comes back as such. Upper and lower case letters differ. Values are any
/// bytes, as the names of directories may be.
std::string GetSetting(const std::string& application, const std::string& section, const std::string& key,
                       const std::string& otherwise = {});
/// Keeps the value for this user, at once on disk. False when the settings file cannot be written; nothing
/// is kept then.
bool SaveSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value);
/// Forgets the value; a missing one is not a fault. False when the settings file cannot be written.
bool DeleteSetting(const std::string& application, const std::string& section, const std::string& key);

/// Whether the settings file has parts that cannot be read. What it kept may then be missing from GetSetting.
bool SettingsDamaged();

/// Keeps the settings in this file from now on; an empty path restores the usual place: the file that the
/// environment variable DROVEWRIGHT_SETTINGS names, else Drovewright.ini among the user's settings.
void UseSettingsFile(const std::string& path);
/// Where the settings are kept at present.
std::string SettingsFile();

}  // namespace sys
