// Commands that change data: post, unpost and compact.
#include <iostream>

#include "costing/Posting.h"
#include "costing/Unposting.h"
#include "data/Compact.h"
#include "data/GenericDAO.h"
#include "data/MainFile.h"
#include "platform/store/Engine.h"
#include "tools/dwadmin/Commands.h"

namespace dw {
namespace {

/// Ends an edit that is still in hand, so that the record is given back.
class EndOfEdit {
 public:
  explicit EndOfEdit(dao::Recordset& recordset) : recordset_(recordset) {}
  ~EndOfEdit() {
    try {
      if (recordset_.Editing()) recordset_.CancelUpdate();
    } catch (const std::exception&) {
      // Closing the file gives the record back as well.
    }
  }
  EndOfEdit(const EndOfEdit&) = delete;
  EndOfEdit& operator=(const EndOfEdit&) = delete;

 private:
  dao::Recordset& recordset_;
};

}  // namespace

int Post(const SignOnRequest& signOn, const CommandScreen& screen, bool clearFirst) {
  RequireFile("DW.MDB");
  const Session session(signOn, screen);
  Progress progress;
  PostingProgress told;
  told.status = [&](const std::string& text) {
    StopIfAsked();
    progress.Stage(text);
  };
  // Told between two transactions: what has been posted up to here is whole.
  told.percent = [&](int percent) {
    StopIfAsked();
    progress.Percent(percent);
  };
  const PostingCounts counts = RunPosting(clearFirst, told);
  std::cout << counts.seen << " transactions seen, " << counts.posted << " posted; " << counts.added
            << " cost rows added, " << counts.changed << " changed.\n";
  return 0;
}

int Unpost(const SignOnRequest& signOn, const CommandScreen& screen, std::int32_t transaction) {
  RequireFile("DW.MDB");
  const Session session(signOn, screen);
  const std::string number = std::to_string(transaction);
  MainFile file;
  if (!file.IsOpen()) return 1;
  const DaoRecordsetPtr row =
      file.Database().OpenRecordset("SELECT * FROM [Maintenance Transactions] WHERE [ID] = " + number);
  if (row->AtEnd()) throw NotDone("There is no transaction " + number + ".");
  int error = 0;
  DaoGetRecord(*row, error);
  if (error != 0) return 1;
  const EndOfEdit end(*row);
  if (row->Get("When Posted").IsNull()) throw NotDone("Transaction " + number + " is not posted.");
  if (!UnpostHeldTransaction(row)) return 1;
  std::cout << "Transaction " << number << " is unposted.\n";
  return 0;
}

int Compact(const SignOnRequest& signOn, const CommandScreen& screen) {
  for (const char* file : kDataFiles) RequireFile(file);
  const Session session(signOn, screen);
  int result = 0;
  for (const char* file : kDataFiles) {
    StopIfAsked();
    const std::string path = RequireFile(file);
    std::cerr << "Compacting " << file << "..." << std::endl;
    const auto before = store::Engine::Of(path).Bytes(path);
    CompactDatabase(path);
    if (screen.LastText() == "Compacting complete.") {
      std::cout << file << ": " << before << " bytes before, " << store::Engine::Of(path).Bytes(path)
                << " bytes now.\n";
    } else {
      std::cout << file << ": not compacted.\n";
      result = 1;
    }
  }
  return result;
}

}  // namespace dw
