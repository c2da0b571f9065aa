#include "platform/print/definition/DefinitionReader.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/print/definition/DefinitionBuilder.h"
#include "platform/print/definition/DefinitionParts.h"
#include "platform/store/Connection.h"
#include "platform/store/StoreError.h"

namespace print {
namespace {

/// Larger than any definition that people can overlook.
constexpr std::uintmax_t kMostBytes = 4'000'000;

std::string ContentOf(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error))
    throw PrintError("The report file '" + path + "' is not there.");
  if (std::filesystem::file_size(path, error) > kMostBytes)
    throw PrintError("The report file '" + path + "' is larger than 4 MB.");
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  if (!in) throw PrintError("The report file '" + path + "' cannot be read.");
  return std::move(content).str();
}

std::shared_ptr<const store::Schema> SchemaOf(const std::string& dataFile) {
  if (dataFile.empty()) return nullptr;
  try {
    return store::Connection::Open({dataFile, store::Share::Shared, true})->Tables();
  } catch (const store::StoreError& error) {
    throw PrintError("The data file '" + dataFile + "' cannot be read: " + error.what());
  }
}

struct ReadFile {
  std::shared_ptr<const ReportDefinition> report;
  std::vector<DefinitionFault> faults;
};

ReadFile Read(const std::string& path, const store::Schema* schema, const FormulaTexts& replaced,
              const std::vector<std::string>& extraFields) {
  Faults faults(std::filesystem::path(path).filename().string());
  ReadFile result;
  try {
    XmlElement root = ReadXml(ContentOf(path));
    UseParts(root, path, faults);
    DefinitionBuilder builder(faults, schema, nullptr);
    result.report = builder.Build(root, path, replaced, extraFields);
  } catch (const XmlFault& fault) {
    faults.Add(fault.place, fault.text);
  }
  result.faults = faults.Sorted();
  return result;
}

std::shared_ptr<const ReportDefinition> WithoutFault(ReadFile read) {
  if (!read.faults.empty()) throw PrintError(read.faults[0].Shown());
  return std::move(read.report);
}

}  // namespace

std::string DefinitionFault::Shown() const {
  if (file.empty()) return text;
  return file + ", line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " +
         text;
}

std::shared_ptr<const ReportDefinition> ReadDefinition(const std::string& path, const std::string& dataFile,
                                                       const FormulaTexts& replaced,
                                                       const std::vector<std::string>& extraFields) {
  return ReadDefinition(path, SchemaOf(dataFile).get(), replaced, extraFields);
}

std::shared_ptr<const ReportDefinition> ReadDefinition(const std::string& path, const store::Schema* schema,
                                                       const FormulaTexts& replaced,
                                                       const std::vector<std::string>& extraFields) {
  return WithoutFault(Read(path, schema, replaced, extraFields));
}

std::vector<DefinitionFault> CheckDefinition(const std::string& path, const std::string& dataFile) {
  return CheckDefinition(path, SchemaOf(dataFile).get());
}

std::vector<DefinitionFault> CheckDefinition(const std::string& path, const store::Schema* schema) {
  return Read(path, schema, {}, {}).faults;
}

}  // namespace print
