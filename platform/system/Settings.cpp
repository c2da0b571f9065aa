#include "platform/system/Settings.h"

#include <QByteArray>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <cstdlib>
#include <cstring>

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

/// Runs `work` on the settings. Opens them for each call, so that it sees what another copy of the program
/// has saved in between.
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

/// In the settings file, both slashes separate levels, so slashes inside a name are escaped.
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
  // A damaged line elsewhere in the file must not hide this value.
  return settings.status() != QSettings::AccessError;
}

/// Marks a value that is not UTF-8: its bytes follow in the percent form.
constexpr const char* kBytes = "bytes:";

QString Stored(const std::string& value) {
  QString text = QString::fromStdString(value);
  if (text.toStdString() == value && !text.startsWith(kBytes)) return text;
  return kBytes + QString::fromLatin1(QByteArray::fromStdString(value).toPercentEncoding("/ "));
}

std::string Read(const QString& text) {
  if (!text.startsWith(kBytes)) return text.toStdString();
  return QByteArray::fromPercentEncoding(text.mid(static_cast<qsizetype>(std::strlen(kBytes))).toLatin1())
      .toStdString();
}

/// If somebody wrote a value with commas into the file without quotation marks, it arrives in parts. This
/// searches for the line with these parts, which has the text between them.
std::string ReadParts(const QString& file, const QStringList& parts) {
  QFile lines(file);
  if (lines.open(QIODevice::ReadOnly)) {
    while (!lines.atEnd()) {
      const QString line = QString::fromUtf8(lines.readLine());
      const QString value = line.mid(line.indexOf('=') + 1).trimmed();
      QStringList found = value.split(',');
      for (QString& part : found) part = part.trimmed();
      if (found == parts) return value.toStdString();
    }
  }
  return parts.join(',').toStdString();
}

}  // namespace

std::string GetSetting(const std::string& application, const std::string& section, const std::string& key,
                       const std::string& otherwise) {
  return WithSettings([&](QSettings& settings) {
    const QVariant value = settings.value(Place(application, section, key));
    if (!value.isValid()) return otherwise;
    const QStringList parts = value.toStringList();
    return parts.size() > 1 ? ReadParts(settings.fileName(), parts) : Read(value.toString());
  });
}

bool SaveSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value) {
  return WithSettings([&](QSettings& settings) {
    settings.setValue(Place(application, section, key), Stored(value));
    return Written(settings);
  });
}

bool SettingsDamaged() {
  QFile file(QString::fromStdString(SettingsFile()));
  if (!file.exists()) return false;
  if (!file.open(QIODevice::ReadOnly)) return true;
  while (!file.atEnd()) {
    const QByteArray line = file.readLine().trimmed();
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
    if (line.contains('\0') || !(line.startsWith('[') ? line.endsWith(']') : line.contains('='))) return true;
  }
  return false;
}

bool DeleteSetting(const std::string& application, const std::string& section, const std::string& key) {
  return WithSettings([&](QSettings& settings) {
    const QString place = Place(application, section, key);
    // Removing a missing key writes nothing, so it works even if the file cannot be written.
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
