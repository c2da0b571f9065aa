// Damaged files, and files that are not ours: the program recognizes them, never crashes or loops, and never
// writes to them.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <random>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/store/Cursor.h"
#include "platform/store/Engine.h"
#include "support/QuietScreen.h"
#include "support/TempDirectory.h"
#include "support/WholeFleet.h"

namespace {

namespace fs = std::filesystem;
using store::Connection;
using store::Cursor;
using store::Locking;
using test::Faults;
using test::RunApart;

constexpr std::size_t kPage = 4096;
/// Enough time for the slowest machine; an endless loop would take longer.
constexpr int kPatience = 100;

/// The number and text of the error that ends the work, or "". Values in a wrong form count as errors, too.
template <class Work>
std::string ErrorOf(Work work) {
  try {
    work();
  } catch (const store::StoreError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  } catch (const rt::RuntimeError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  }
  return {};
}

void ReadAll(Cursor& rows) {
  for (std::int64_t count = 0; !rows.AtEnd(); rows.MoveNext()) {
    if (++count > 1000000) throw std::runtime_error("the rows have no end");
    for (std::size_t i = 0; i < rows.Fields().size(); ++i)
      ErrorOf([&] { rows.Get(static_cast<int>(i)).Shown(); });
  }
}

/// Reads whatever can be read, and returns how many of the readings met an error. Throws other exceptions.
int ReadEverything(const std::string& path, bool readOnly) {
  int errors = 0;
  const auto attempt = [&](auto work) { errors += ErrorOf(work).empty() ? 0 : 1; };
  std::shared_ptr<Connection> file;
  attempt([&] { file = Connection::Open({.path = path, .readOnly = readOnly}); });
  if (!file) return errors;
  attempt([&] {
    if (!file->CheckIntegrity().empty()) ++errors;
  });
  attempt([&] { dw::CompareWithCatalogue(*file, dw::CatalogueOf("DW.MDB")); });
  attempt([&] {
    if (!dw::CheckCosts(*file).empty()) ++errors;
  });
  for (const store::TableInfo& table : dw::CatalogueOf("DW.MDB").tables) {
    attempt(
        [&] { ReadAll(*Cursor::OpenQuery(file, "SELECT * FROM [" + table.name + "]", Locking::ReadOnly)); });
    attempt([&] { ReadAll(*Cursor::OpenTable(file, table.name, Locking::ReadOnly)); });
    for (const store::IndexInfo& index : table.indexes)
      attempt([&] {
        const auto rows = Cursor::OpenTable(file, table.name, Locking::ReadOnly);
        rows->SetIndex(index.name);
        rows->MoveFirst();
        ReadAll(*rows);
      });
  }
  return errors;
}

/// The names in a directory.
std::string Listing(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  std::string all;
  for (const std::string& name : names) all += name + " ";
  return all;
}

class DamagedFile : public testing::Test {
 protected:
  DamagedFile() {
    EXPECT_EQ(RunApart([&] {
                test::MakeFleet(fleet_.Path(), 8, 3);
                Faults faults;
                test::Post(fleet_.Path(), false, faults);
                return faults.Text();
              }),
              "");
    whole_ = test::BytesOf(fleet_.Path("DW.MDB"));
  }

  /// The root page of a table, from 1.
  std::size_t RootOf(const std::string& table) const {
    sqlite3* db = nullptr;
    sqlite3_open_v2(fleet_.Path("DW.MDB").c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    std::size_t root = 0;
    sqlite3_exec(
        db, ("SELECT rootpage FROM sqlite_schema WHERE name = '" + table + "'").c_str(),
        [](void* to, int, char** values, char**) {
          *static_cast<std::size_t*>(to) = std::stoul(values[0]);
          return 0;
        },
        &root, nullptr);
    sqlite3_close(db);
    return root;
  }
  unsigned Byte(std::size_t at) const { return static_cast<unsigned char>(whole_.at(at)); }
  unsigned Two(std::size_t at) const { return Byte(at) * 256 + Byte(at + 1); }
  unsigned Four(std::size_t at) const { return Two(at) * 65536 + Two(at + 2); }

  /// The offset of a row's key in the file, for keys of two bytes; 0 if it is not found.
  std::size_t KeyAt(std::size_t page, unsigned key) const {
    const std::size_t start = (page - 1) * kPage;
    const unsigned kind = Byte(start);
    const unsigned cells = Two(start + 3);
    for (unsigned i = 0; i < cells; ++i) {
      std::size_t cell = start + Two(start + (kind == 5 ? 12 : 8) + 2 * i);
      if (kind == 5) {
        if (const std::size_t found = KeyAt(Four(cell), key)) return found;
        continue;
      }
      while (Byte(cell) >= 128) ++cell;  // the length of the row
      ++cell;
      if (Byte(cell) == (128 | key >> 7U) && Byte(cell + 1) == (key & 127U)) return cell;
    }
    return kind == 5 ? KeyAt(Four(start + 8), key) : 0;
  }

  /// Reads everything from a damaged copy in a process of its own: empty if it met errors of the engine,
  /// "none" if it met none.
  std::string Read(const std::string& bytes, bool readOnly) {
    fs::remove_all(directory_.Path());
    fs::create_directory(directory_.Path());
    test::WriteBytes(path_, bytes);
    const std::string listing = Listing(directory_.Path());
    std::string result =
        RunApart([&] { return ReadEverything(path_, readOnly) == 0 ? "none" : ""; }, kPatience);
    if (test::BytesOf(path_) != bytes) result += " the file was written to";
    if (Listing(directory_.Path()) != listing) result += " left behind: " + Listing(directory_.Path());
    return result;
  }

  test::TempDirectory fleet_;
  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
  std::string whole_;
};

TEST_F(DamagedFile, IsReadWithoutCrashOrEndAndStaysAsItIs) {
  EXPECT_EQ(Read(whole_, false), "none");
  std::mt19937 random(1800);
  const auto pick = [&](std::size_t below) { return random() % below; };
  const std::size_t pages = whole_.size() / kPage;
  int noticed = 0;
  for (int place = 0; place < 40; ++place) {
    std::string bytes = whole_;
    std::string what;
    switch (place % 5) {
      case 0: {  // single bits, mostly in the heads of pages
        const std::size_t at = pick(pages) * kPage + pick(place % 2 == 0 ? 100 : kPage);
        bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1U << pick(8)));
        what = "a bit at " + std::to_string(at);
        break;
      }
      case 1: {
        const std::size_t at = pick(whole_.size() - 64);
        for (std::size_t i = 0; i < 64; ++i) bytes[at + i] = static_cast<char>(pick(256));
        what = "64 bytes at " + std::to_string(at);
        break;
      }
      case 2: {
        const std::size_t page = place == 2 ? 0 : pick(pages);
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(page * kPage), kPage, '\0');
        what = "zeros in page " + std::to_string(page + 1);
        break;
      }
      case 3:
        bytes.resize(place == 3 ? 50 : pick(whole_.size()));
        what = "the end at " + std::to_string(bytes.size());
        break;
      default: {  // a page in the place of another, so that pages may form a loop
        const std::size_t from = pick(pages);
        const std::size_t to = pick(pages);
        bytes.replace(to * kPage, kPage, whole_, from * kPage, kPage);
        what = "page " + std::to_string(from + 1) + " over " + std::to_string(to + 1);
      }
    }
    const std::string result = Read(bytes, place % 3 == 0);
    EXPECT_TRUE(result.empty() || result == "none") << what << ": " << result;
    if (result.empty()) ++noticed;
  }
  EXPECT_GT(noticed, 15);
}

TEST_F(DamagedFile, KeysOutOfOrderLeadNoCursorInCircles) {
  // A reader that goes on from the highest key so far would return to this row forever.
  const std::size_t at = KeyAt(RootOf("Maintenance Transactions"), 193);
  ASSERT_NE(at, 0U);
  std::string bytes = whole_;
  bytes[at + 1] = 1;  // 129 instead of 193
  EXPECT_EQ(Read(bytes, false), "");
  EXPECT_EQ(RunApart(
                [&] {
                  Faults faults;
                  const auto file = Connection::Open({.path = path_, .readOnly = true});
                  const std::string error = ErrorOf([&] {
                    ReadAll(*Cursor::OpenTable(file, "Maintenance Transactions", Locking::ReadOnly));
                  });
                  if (!error.starts_with("3343 ")) faults.Add("walk: " + error);
                  return faults.Text();
                },
                kPatience),
            "");
  EXPECT_EQ(RunApart(
                [&] {
                  Faults faults;
                  dw::SetDataPath(directory_.Path());
                  test::QuietScreen::Install();
                  const std::string error = ErrorOf([] { dw::RunPosting(false, {}); });
                  if (!error.starts_with("3343 ")) faults.Add("posting: " + error);
                  return faults.Text();
                },
                kPatience),
            "");
}

/// Databases of another program.
std::string MadeElsewhere(const std::string& path, const std::string& statements) {
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  sqlite3_exec(db, statements.c_str(), nullptr, nullptr, nullptr);
  sqlite3_close(db);
  return test::BytesOf(path);
}

TEST_F(DamagedFile, FilesThatAreNotOursAreToldApartAndLeftAlone) {
  const std::string table = "CREATE TABLE Birds (Name TEXT); INSERT INTO Birds VALUES ('Wren');";
  const std::string foreign = MadeElsewhere(fleet_.Path("a"), table);
  const std::string foreignLog =
      MadeElsewhere(fleet_.Path("b"), "PRAGMA journal_mode = WAL; " + table + "PRAGMA user_version = 7;");
  std::string log = whole_;
  log[18] = log[19] = 2;
  std::string later = whole_;
  later[63] = 9;
  std::string otherHead = whole_;
  otherHead[3] = 'x';
  struct Case {
    const char* name;
    std::string bytes;
    const char* error;
    std::string words;
  };
  const Case cases[] = {
      {"DW.MDB", "Dear Anna,\nplease fill in.\n", "3049", "': it is not a data file."},
      {"DW.MDB", std::string(20000, 'a'), "3049", "': it is not a data file."},
      {"DW.MDB", otherHead, "3343", "': it is damaged (its first bytes are not those of a data file)."},
      {"DW.MDB", std::string(8192, '\0'), "3049", "': it is not a data file."},
      {"DW.MDB", "", "3049", "': the file is empty."},
      {"DW.MDB", foreign, "3049", "': it belongs to another program."},
      {"DW.MDB", foreignLog, "3049", "': it belongs to another program."},
      {"DW.MDB", log, "3051", "PRAGMA journal_mode = DELETE'."},
      {"DW.MDB", later, "3041",
       "': it was made by a later version of this program. Use that version on this workstation too."},
      // The reader's own side file would overwrite it.
      {"DW.LDB", "Dear Anna,\nplease fill in.\n", "3049", "': the ending .LDB is that of side files."},
      {"DW.LDB", whole_, "3049", "': the ending .LDB is that of side files."},
  };
  for (const Case& c : cases) {
    const test::TempDirectory directory;
    const std::string path = directory.Path(c.name);
    test::WriteBytes(path, c.bytes);
    const std::string found = RunApart([&] {
      Faults faults;
      const auto refused = [&](const char* what, const std::string& error) {
        if (!error.starts_with(c.error) || !error.ends_with(c.words))
          faults.Add(std::string(what) + ": " + error);
      };
      for (const bool readOnly : {false, true})
        refused("open", ErrorOf([&] { Connection::Open({.path = path, .readOnly = readOnly}); }));
      refused("open alone", ErrorOf([&] { Connection::Open({path, store::Share::Exclusive}); }));
      refused("compact",
              ErrorOf([&] { (void)store::Engine::Of(path).Compact(path, directory.Path("copy")); }));
      const std::string made = ErrorOf([&] { Connection::Create(path); });
      if (!made.starts_with("3204 ") && !made.ends_with(c.words)) faults.Add("create: " + made);
      return faults.Text();
    });
    EXPECT_EQ(found, "") << c.words;
    EXPECT_TRUE(test::BytesOf(path) == c.bytes) << "changed: " << c.words;
    EXPECT_EQ(Listing(directory.Path()), std::string(c.name) + " ") << c.words;
  }

  const test::TempDirectory directory;
  fs::create_directory(directory.Path("DW.MDB"));
  const std::string path = directory.Path("DW.MDB");
  EXPECT_EQ(ErrorOf([&] { Connection::Open({path}); }),
            "3051 '" + path + "' is a directory, not a data file.");
  EXPECT_EQ(ErrorOf([&] { (void)store::Engine::Of(path).Compact(path, directory.Path("copy")); }),
            "3051 '" + path + "' is a directory, not a data file.");
  EXPECT_TRUE(ErrorOf([&] { Connection::Create(path); }).starts_with("3204 "));
  // A directory with the name of a compaction's copy.
  test::WriteBytes(directory.Path("A.MDB"), whole_);
  EXPECT_TRUE(ErrorOf([&] {
                (void)store::Engine::Of(directory.Path("A.MDB")).Compact(directory.Path("A.MDB"), path);
              }).starts_with("3204 "));
  EXPECT_EQ(Listing(directory.Path()), "A.MDB DW.MDB ");
}

}  // namespace
