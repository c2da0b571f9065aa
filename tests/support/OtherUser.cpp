#include "support/OtherUser.h"

#include <gtest/gtest.h>

#include <memory>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/StoreError.h"

namespace test {

OtherUser::OtherUser()
    : process_([](SecondProcess::Channel& test) {
        std::shared_ptr<store::Cursor> held;
        for (std::string order = test.Hear(); order != "leave"; order = test.Hear()) {
          const std::string path = test.Hear();
          const std::string sql = test.Hear();
          try {
            const auto connection = store::Connection::Open({.path = path});
            if (order == "run") {
              connection->Execute(sql);
            } else {
              held = store::Cursor::OpenQuery(connection, sql, store::Locking::Pessimistic);
              held->Edit();
            }
            test.Say("done");
          } catch (const store::StoreError& error) {
            test.Say(std::to_string(error.Number()) + " " + error.what());
          }
        }
      }) {}

void OtherUser::Hold(const std::string& path, const std::string& sql) {
  ASSERT_EQ(Order("hold", path, sql), "done");
}

std::string OtherUser::Run(const std::string& path, const std::string& sql) {
  return Order("run", path, sql);
}

std::string OtherUser::Order(const std::string& order, const std::string& path, const std::string& sql) {
  process_.Talk().Say(order);
  process_.Talk().Say(path);
  process_.Talk().Say(sql);
  return process_.Talk().Hear();
}

void OtherUser::Leave() {
  process_.Talk().Say("leave");
  EXPECT_EQ(process_.Join(), 0);
}

}  // namespace test
