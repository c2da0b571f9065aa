// Users of a side file in processes of their own, with results as texts.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/SideFile.h"
#include "support/SecondProcess.h"
#include "support/TempDirectory.h"

namespace store {

using Owner = std::unique_ptr<SideFile>;

inline std::string Text(const Holder& holder) {
  return holder.user + "@" + holder.computer + (holder.hold == Hold::Edit ? " edit" : " transaction") +
         (holder.wholeTable ? " table" : "");
}

inline std::string Text(const std::vector<HeldRecord>& records) {
  std::string text;
  for (const HeldRecord& record : records) {
    text +=
        std::to_string(record.table) + "/" + std::to_string(record.row) + " " + Text(record.holder) + "; ";
  }
  return text;
}

/// "yes", or the user who holds it.
inline std::string Take(SideFile& side, Hold hold, int table, std::int64_t row) {
  Holder refused;
  return side.Take(hold, table, row, &refused) ? "yes" : Text(refused);
}

/// "slot 3", or the error's number and text.
inline std::string Enter(Owner* owner, const std::string& file, Share share, const std::string& computer,
                         const std::string& user) {
  try {
    *owner = SideFile::Enter(file, share, computer, user);
    return "slot " + std::to_string((*owner)->Slot());
  } catch (const StoreError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  }
}

/// A user in a process of its own: each line is an order, and it replies with one line.
class OtherUser {
 public:
  explicit OtherUser(const std::string& file)
      : process_([file](test::SecondProcess::Channel& channel) {
          Owner side;
          for (;;) channel.Say(Do(&side, file, channel.Hear()));
        }) {}

  std::string Ask(const std::string& line) {
    process_.Talk().Say(line);
    return process_.Talk().Hear();
  }
  void Kill() { process_.Kill(); }

 private:
  static std::string Do(Owner* side, const std::string& file, const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "leave") return side->reset(), "left";
    if (verb == "share" || verb == "exclude") {
      std::string computer;
      std::string user;
      words >> computer >> user;
      return Enter(side, file, verb == "share" ? Share::Shared : Share::Exclusive, computer, user);
    }
    if (verb == "child") {
      // Its output shows that the program has started and is not a copy of this process any more.
      FILE* program = popen("echo $$; exec sleep 60", "r");
      char number[32] = "";
      if (!program || !fgets(number, sizeof number, program)) return "0";
      return std::to_string(std::atoi(number));
    }
    int table = 0;
    std::int64_t row = 0;
    words >> table >> row;
    if (verb == "edit") return Take(**side, Hold::Edit, table, row);
    if (verb == "transact") return Take(**side, Hold::Transaction, table, row);
    if (verb == "table") return Text((*side)->TakeTable(table));
    if (verb == "unedit") return (*side)->Release(Hold::Edit, table, row), "done";
    if (verb == "untransact") return (*side)->Release(Hold::Transaction, table, row), "done";
    if (verb == "untable") return (*side)->ReleaseTable(table), "done";
    return "what?";
  }

  test::SecondProcess process_;
};

/// Memory that this process and its later children share.
template <typename T>
T* SharedMemory() {
  void* memory = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return new (memory) T{};
}

/// Runs `work` in three processes at once, each with its number.
inline void RunThree(const std::function<void(int)>& work) {
  std::vector<std::unique_ptr<test::SecondProcess>> processes;
  for (int number = 0; number < 3; ++number) {
    processes.push_back(std::make_unique<test::SecondProcess>(
        [&work, number](test::SecondProcess::Channel&) { work(number); }));
  }
  for (auto& process : processes) EXPECT_EQ(process->Join(), 0);
}

class SideFileUsers : public testing::Test {
 protected:
  std::string Side() const { return SideFile::PathFor(file_); }
  Owner Join(const std::string& user) { return SideFile::Enter(file_, Share::Shared, "HERE", user); }

  test::TempDirectory directory_;
  std::string file_ = directory_.Path("DW.MDB");
};

}  // namespace store
