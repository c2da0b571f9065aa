// The user's own settings: text values under application, section and key.
#pragma once

#include <string>

namespace sys {

/// The value of a key under an application and section; `otherwise` if there is none. A saved empty text is a
/// value and comes back as such. Upper and lower case letters differ. Values can be any bytes, as the names
/// of directories can.
std::string GetSetting(const std::string& application, const std::string& section, const std::string& key,
                       const std::string& otherwise = {});
/// Saves the value for this user, at once on disk. False, with nothing saved, if the settings file cannot be
/// written.
bool SaveSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value);
/// Removes the value; a missing one is not a fault. False if the settings file cannot be written.
bool DeleteSetting(const std::string& application, const std::string& section, const std::string& key);

/// Whether parts of the settings file are unreadable. GetSetting may then miss values that were saved.
bool SettingsDamaged();

/// Uses this file for the settings from now on. An empty path restores the usual place: the file that the
/// environment variable DROVEWRIGHT_SETTINGS names, else Drovewright.ini among the user's settings.
void UseSettingsFile(const std::string& path);
/// The present file of the settings.
std::string SettingsFile();

}  // namespace sys
