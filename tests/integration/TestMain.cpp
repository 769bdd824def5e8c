#include <gmock/gmock.h>

#include <QCoreApplication>

// The adapters' events need an application object; tests turn its event loop themselves.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
