#include <gmock/gmock.h>

#include <QApplication>

// Windows need an application object; without a choice of platform they stay off the screen.
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setStyle("fusion");
  return RUN_ALL_TESTS();
}
