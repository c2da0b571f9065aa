#include <gtest/gtest.h>

#include "platform/controls/Application.h"
#include "support/desktop/Role.h"
#include "support/desktop/Watchdog.h"

namespace {

QtMessageHandler usual = nullptr;

/// The offscreen platform warns at each window that it cannot raise it.
void WithoutRaise(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (!message.contains("does not support raise()")) usual(type, context, message);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  usual = qInstallMessageHandler(WithoutRaise);
  ui::Application application(argc, argv);
  ui::InstallUncaught([](const std::exception_ptr& error) { ADD_FAILURE() << ui::UncaughtText(error); });
  const int role = test::Role::Run();
  if (role >= 0) return role;
  // Well below the limit of CTest, which can report neither the test's line nor its stack.
  test::WatchTests(120);
  return RUN_ALL_TESTS();
}
