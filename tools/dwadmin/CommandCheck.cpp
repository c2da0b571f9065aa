// Checks that the data files are what they should be.
#include <iostream>
#include <utility>

#include "costing/CostCheck.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "data/GenericTools.h"
#include "platform/runtime/Error.h"
#include "platform/store/Connection.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

/// A finding, as a sentence for people and as parts for programs.
class Findings {
 public:
  void Add(const std::string& file, const char* about, const std::string& text) {
    table_.rows.push_back({file, about, text, rt::Null(), rt::Null(), rt::Null(), rt::Null(), rt::Null()});
  }
  void Add(const std::string& file, const CostDifference& found) {
    const std::string where = "[" + found.table + "] " + found.key + ": ";
    const std::string text =
        found.column.empty() ? where + found.stored + ", but " + found.expected
                             : where + found.column + " is " + found.stored + " instead of " + found.expected;
    table_.rows.push_back({file, "costs", text, found.table, found.key,
                           found.column.empty() ? rt::Value() : rt::Value(found.column), found.stored,
                           found.expected});
  }
  bool Empty() const { return table_.rows.empty(); }

  void WriteText() const {
    for (const std::vector<rt::Value>& row : table_.rows)
      std::cout << row[0].AsText() << ", " << row[1].AsText() << ": " << row[2].AsText() << '\n';
    if (Empty()) {
      std::cout << "No differences.\n";
    } else {
      std::cout << table_.rows.size() << (table_.rows.size() == 1 ? " difference.\n" : " differences.\n");
    }
  }
  void WriteJson() const {
    table_.WriteJson(std::cout);
    std::cout << '\n';
  }

 private:
  ResultTable table_{{"File", "Check", "Text", "Table", "Row", "Column", "Stored", "Expected"}, {}};
};

/// Runs one of the checks. If it cannot be finished, that is a finding too, and the others go on.
template <class Work>
void Attempt(Findings& findings, const std::string& file, const char* about, Work work) {
  const auto note = [&](int number, const std::string& text) {
    findings.Add(file, about, "Error # " + std::to_string(number) + ": " + text);
  };
  try {
    work();
  } catch (const rt::Error& error) {
    note(error.Number(), error.what());
  }
}

void CheckFile(const std::string& file, Findings& findings) {
  const std::string path = FindFile(DataPath, file);
  if (!FileExists(path)) {
    findings.Add(file, "structure", "the file is missing");
    return;
  }
  std::shared_ptr<store::Connection> connection;
  Attempt(findings, file, "integrity",
          [&] { connection = store::Connection::Open({.path = path, .readOnly = true}); });
  if (!connection) return;
  Attempt(findings, file, "integrity", [&] {
    for (const std::string& fault : connection->CheckIntegrity()) findings.Add(file, "integrity", fault);
  });
  Attempt(findings, file, "structure", [&] {
    for (const std::string& difference : CompareWithCatalogue(*connection, CatalogueOf(file)))
      findings.Add(file, "structure", difference);
  });
  if (file != kDataFiles.front()) return;
  if (connection->Holds().Roster().size() > 1)
    std::cerr << "Others have " << file << " open: what they post now may show as a difference." << std::endl;
  Attempt(findings, file, "costs", [&] {
    for (const CostDifference& difference : CheckCosts(*connection)) findings.Add(file, difference);
  });
}

}  // namespace

int Check(Format format) {
  RequireFile("DW.MDB");
  Findings findings;
  for (const char* file : kDataFiles) CheckFile(file, findings);
  if (format == Format::Json) {
    findings.WriteJson();
  } else {
    findings.WriteText();
  }
  return findings.Empty() ? 0 : 1;
}

}  // namespace dw
