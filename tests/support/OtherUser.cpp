#include "support/OtherUser.h"

#include <gtest/gtest.h>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"

namespace test {

OtherUser::OtherUser()
    : process_([](SecondProcess::Channel& test) {
        const std::string path = test.Hear();
        const std::string sql = test.Hear();
        const auto cursor = store::Cursor::OpenQuery(store::Connection::Open({.path = path}), sql,
                                                     store::Locking::Pessimistic);
        cursor->Edit();
        test.Say("held");
        test.Hear();
      }) {}

void OtherUser::Hold(const std::string& path, const std::string& sql) {
  process_.Talk().Say(path);
  process_.Talk().Say(sql);
  ASSERT_EQ(process_.Talk().Hear(), "held");
}

void OtherUser::Leave() {
  process_.Talk().Say("leave");
  EXPECT_EQ(process_.Join(), 0);
}

}  // namespace test
