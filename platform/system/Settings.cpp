#include "platform/system/Settings.h"

#include <QSettings>
#include <QString>
#include <cstdlib>

namespace sys {
namespace {

std::string& ChosenFile() {
  static std::string path;
  return path;
}

std::string RedirectedFile() {
  if (!ChosenFile().empty()) return ChosenFile();
  const char* named = std::getenv("DROVEWRIGHT_SETTINGS");
  return named != nullptr ? named : "";
}

/// Runs `work` on the opened settings. They are opened for each call, so that what another copy of the
/// program has saved in between is seen.
template <typename Work>
auto WithSettings(Work work) {
  const std::string path = RedirectedFile();
  if (!path.empty()) {
    QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    return work(settings);
  }
  QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Brackenfel Software", "Drovewright");
  return work(settings);
}

/// Both slashes separate levels in the settings file, so inside a name they are escaped.
QString Level(const std::string& name) {
  QString level = QString::fromStdString(name);
  level.replace('%', "%25").replace('/', "%2F").replace('\\', "%5C");
  return level;
}

QString Place(const std::string& application, const std::string& section, const std::string& key) {
  return Level(application) + '/' + Level(section) + '/' + Level(key);
}

bool Written(QSettings& settings) {
  settings.sync();
  return settings.status() == QSettings::NoError;
}

}  // namespace

std::string GetSetting(const std::string& application, const std::string& section, const std::string& key,
                       const std::string& otherwise) {
  return WithSettings([&](QSettings& settings) {
    const QVariant value = settings.value(Place(application, section, key));
    return value.isValid() ? value.toString().toStdString() : otherwise;
  });
}

bool SaveSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value) {
  return WithSettings([&](QSettings& settings) {
    settings.setValue(Place(application, section, key), QString::fromStdString(value));
    return Written(settings);
  });
}

bool DeleteSetting(const std::string& application, const std::string& section, const std::string& key) {
  return WithSettings([&](QSettings& settings) {
    const QString place = Place(application, section, key);
    // A key that is not there needs no write, so a file that cannot be written does not matter.
    if (!settings.contains(place)) return true;
    settings.remove(place);
    return Written(settings);
  });
}

void UseSettingsFile(const std::string& path) { ChosenFile() = path; }

std::string SettingsFile() {
  return WithSettings([](QSettings& settings) { return settings.fileName().toStdString(); });
}

}  // namespace sys
