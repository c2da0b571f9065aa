#include <gtest/gtest.h>

#include "platform/controls/Application.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  ui::Application application(argc, argv);
  ui::InstallUncaught([](std::exception_ptr error) { ADD_FAILURE() << ui::UncaughtText(error); });
  return RUN_ALL_TESTS();
}
