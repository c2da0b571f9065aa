// Two postings at once on one fleet, while somebody edits its transactions.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <atomic>
#include <map>
#include <new>
#include <random>

#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "support/QuietScreen.h"
#include "support/TempDirectory.h"
#include "support/WholeFleet.h"

namespace {

using test::Apart;
using test::Faults;
using test::RunApart;

constexpr int kEdits = 40;

/// Counters that the three processes share while they run.
struct Shared {
  std::atomic<int> running{2};
  std::atomic<int> edits{0};
  std::atomic<std::int64_t> posted{0};

  static Shared& Make() {
    void* page = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) throw std::runtime_error("no shared memory");
    return *new (page) Shared;
  }
};

/// One posting. Rows that the editor holds cause their known boxes and stay unposted; any other box is a
/// fault.
std::string PostBesideOthers(const std::string& directory, bool clearFirst, Shared& shared) {
  dw::SetDataPath(directory);
  const auto user = test::QuietScreen::Install();
  Faults faults;
  user->onBox = [&](const screen::Box& box) {
    const bool known = box.text.starts_with("Unknown error #3218 during record edit.") ||
                       box.text == "Unable to lock transaction for updating." ||
                       box.text.ends_with("Then click OK to continue.") || box.text == "Posting is Complete.";
    if (!known) faults.Add("box: " + box.text);
  };
  // Posts again and again, until the editor has done its edits.
  for (bool posted = false; faults.Text().empty() && (!posted || shared.edits < kEdits);) {
    try {
      shared.posted += dw::RunPosting(clearFirst, {}).posted;
      posted = true;
    } catch (const dao::StoreError& error) {
      // Clearing needs a hold on every record: it succeeds when the editor is between two edits.
      if (!clearFirst || error.Number() != store::kRecordLocked)
        faults.Add("posting: " + std::to_string(error.Number()) + " " + error.what());
    }
  }
  --shared.running;
  if (user->Texts().empty() || user->Texts().back() != "Posting is Complete.") faults.Add("no end was told");
  return faults.Text();
}

/// Edits rows while a posting runs: the work order number of any row, and the parts cost of rows that still
/// wait; the posting must then use that figure. At the end, the test checks each row's number of edits.
std::string EditBesideOthers(const std::string& directory, Shared& shared) {
  dw::SetDataPath(directory);
  const auto user = test::QuietScreen::Install();
  Faults faults;
  user->onBox = [&](const screen::Box& box) {
    if (box.text != "Record is currently locked elsewhere." &&
        !box.text.ends_with("Then click OK to continue."))
      faults.Add("box: " + box.text);
  };
  dw::DaoWorkspacePtr workspace;
  dw::DaoDatabasePtr database;
  int error = 0;
  dw::DaoOpenDatabase(dw::DataFile, false, "admin", "", workspace, database, error);
  auto rows = database->OpenRecordset("Maintenance Transactions", dao::RecordsetType::Table);
  rows->SetIndex("PrimaryKey");
  const auto last = static_cast<int>(rows->RecordCount());
  std::map<int, int> edits;
  std::map<int, rt::Value> parts;
  std::mt19937 random(5);
  while (shared.running > 0) {
    const int id = 1 + static_cast<int>(random() % static_cast<unsigned>(last));
    rows->Seek({id});
    if (rows->NoMatch()) {
      faults.Add("row " + std::to_string(id) + " is gone");
      break;
    }
    error = dw::DaoGetRecord(*rows);
    if (error == store::kEditLocked || error == store::kRecordLocked) continue;
    const std::string before = edits.contains(id) ? std::to_string(edits[id]) : std::string();
    if (edits.contains(id)) faults.Equal(rows->Get("Work Order Number").Shown(), before, "edits so far");
    rows->Set("Work Order Number", std::to_string(edits[id] + 1));
    if (rows->Get("When Posted").IsNull()) {
      parts[id] = rt::Currency::FromWhole(edits[id]);
      rows->Set("Parts Cost", parts[id]);
    }
    dw::DaoUpdateRecord(*rows);
    ++edits[id];
    ++shared.edits;
  }
  for (const auto& [id, count] : edits) {
    rows->Seek({id});
    faults.Equal(rows->Get("Work Order Number").Shown(), std::to_string(count),
                 "edits of row " + std::to_string(id));
    if (parts.contains(id))
      faults.Equal(rows->Get("Parts Cost").Shown(), parts[id].Shown(), "parts cost of " + std::to_string(id));
  }
  dw::CloseAll(rows, database, workspace);
  return faults.Text();
}

class PostingTogether : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(ClearFirst, PostingTogether, testing::Bool());

TEST_P(PostingTogether, CountsEachRowOnceAndLosesNoEdit) {
  const bool clearFirst = GetParam();
  const test::TempDirectory directory;
  const std::string path = directory.Path("DW.MDB");
  ASSERT_EQ(RunApart([&] {
              test::MakeFleet(directory.Path(), 12, 5);
              Faults faults;
              if (clearFirst) test::Post(directory.Path(), false, faults);
              return faults.Text();
            }),
            "");
  const std::int64_t waiting = std::stoll(RunApart([&] { return std::to_string(test::WaitingRows(path)); }));
  Shared& shared = Shared::Make();
  Apart editor([&] { return EditBesideOthers(directory.Path(), shared); });
  Apart first([&] { return PostBesideOthers(directory.Path(), clearFirst, shared); });
  Apart second([&] { return PostBesideOthers(directory.Path(), clearFirst, shared); });
  EXPECT_EQ(first.Result(), "");
  EXPECT_EQ(second.Result(), "");
  shared.running = 0;
  EXPECT_EQ(editor.Result(), "");
  EXPECT_GE(shared.edits.load(), kEdits);
  EXPECT_EQ(test::CheckMainFileApart(path), "");
  if (!clearFirst) {
    EXPECT_EQ(RunApart([&] { return std::to_string(test::WaitingRows(path)); }),
              std::to_string(waiting - shared.posted.load()))
        << "the two runs together";
  }
  // The next run posts the rows that the editor held.
  EXPECT_EQ(RunApart([&] {
              Faults faults;
              test::Post(directory.Path(), false, faults);
              faults.Equal(test::WaitingRows(path), std::int64_t{0}, "rows that wait in the end");
              faults.Take(test::CheckMainFile(path), "in the end");
              return faults.Text();
            }),
            "");
  munmap(&shared, sizeof shared);
}

}  // namespace
