#include <gmock/gmock.h>

#include <QApplication>

// Windows need an application object; without a choice of platform they stay off the screen.
// The font and platform libraries keep what they loaded until the process ends, and a leak report
// cannot tell that from a leak of ours. Read by the address sanitizer alone.
extern "C" const char* __asan_default_options();   // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "detect_leaks=0";
}

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setStyle("fusion");
  return RUN_ALL_TESTS();
}
