#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QObject>
#include <QUrl>
#include <ostream>
#include <vector>

#include "platform/TemporaryFolder.h"
#include "platform/qtwidgets/QtDesktop.h"

namespace wattlark {
namespace {

// Stands in for the browser, and for whatever opens other schemes.
class Opener : public QObject {
  Q_OBJECT

 public:
  Opener() {
    for (const char* scheme : kSchemes) QDesktopServices::setUrlHandler(scheme, this, "Open");
  }
  ~Opener() override {
    for (const char* scheme : kSchemes) QDesktopServices::unsetUrlHandler(scheme);
  }

  std::vector<std::string> opened;

 public slots:
  void Open(const QUrl& url) { opened.push_back(url.toString().toStdString()); }

 private:
  static constexpr const char* kSchemes[] = {"http", "https", "file", "mailto", "smb"};
};

struct AddressCase {
  const char* address;
  bool opens;
};

class OpenURLTest : public testing::TestWithParam<AddressCase> {};

TEST_P(OpenURLTest, OpensTheWebAlone) {
  Opener opener;
  QtDesktop desktop;
  EXPECT_EQ(desktop.OpenURL(GetParam().address), GetParam().opens);
  std::vector<std::string> expected;
  if (GetParam().opens) expected.push_back(GetParam().address);
  EXPECT_EQ(opener.opened, expected);
}

INSTANTIATE_TEST_SUITE_P(Addresses, OpenURLTest,
                         testing::Values(AddressCase{"https://example.org/help?a=1#b", true},
                                         AddressCase{"http://example.org", true},
                                         AddressCase{"", false}, AddressCase{"example.org", false},
                                         AddressCase{"https://", false},
                                         AddressCase{"https:///etc/passwd", false},
                                         AddressCase{"file:///etc/passwd", false},
                                         AddressCase{"/etc/passwd", false},
                                         AddressCase{"mailto:a@example.org", false},
                                         AddressCase{"smb://example.org/a", false},
                                         AddressCase{"https://example.org/a b", false},
                                         AddressCase{"-https://example.org", false}));

TEST(PlayWave, ReturnsForWhateverIsAskedOfIt) {
  const TemporaryFolder folder;
  WriteFile(folder.File("notice.wav"), "this is no sound");
  QtDesktop desktop;
  EXPECT_NO_THROW(desktop.PlayWave(folder.File("notice.wav")));
  EXPECT_NO_THROW(desktop.PlayWave(folder.File("missing.wav")));
  EXPECT_NO_THROW(desktop.PlayWave(folder.Path()));
  EXPECT_NO_THROW(desktop.PlayWave(""));
}

}  // namespace
}  // namespace wattlark

#include "QtDesktopTest.moc"
