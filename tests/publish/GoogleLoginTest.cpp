#include "WebLoggerTest.h"
#include "publish/GoogleLogin.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct GoogleLogin : WebLoggerTest {
  GoogleLogin() {
    settings.GoogleUsername = "me@example.org";
    settings.GooglePassword = "s3cret";
  }
  /// The error text; empty when the sign-in succeeded.
  std::string SignIn(bool quiet = false) {
    try {
      GoogleClientLogin(settings, endpoints, runner, prompts, quiet);
    } catch (const PublishError& error) {
      return error.what();
    }
    return {};
  }
};

TEST_F(GoogleLogin, PostsTheCredentialsAndKeepsTheToken) {
  http.answers = {{"SID=abc\nLSID=def\nAuth=thetoken\n"}};
  EXPECT_EQ(SignIn(), "");
  EXPECT_EQ(settings.GoogleAuthToken, "thetoken");
  EXPECT_THAT(http.requests,
              ElementsAre(ScriptedHttp::Request{
                  "https://www.google.com/accounts/ClientLogin", "POST",
                  "Email=me@example.org&Passwd=s3cret&source=FennickLabs-Wattlark-v2.0"
                  "&service=wise",
                  "Content-Type:application/x-www-form-urlencoded"}));
  EXPECT_EQ(runner.State().ProgressText, "Authenticating...");
}

TEST_F(GoogleLogin, TakesTheLastToken) {
  EXPECT_EQ(ParseAuthToken("Auth=one\nAuth=two\r\n"), "two");
  EXPECT_EQ(ParseAuthToken("Auth= blanks around \r\n\r\n"), "blanks around");
  for (const char* response : {"Auth=", "Auth=one\nAuth=\n", "Auth=one\r\nSet-Cookie: two",
                               "Authentication failed", "auth=small", ""}) {
    EXPECT_EQ(ParseAuthToken(response), std::nullopt) << response;
  }
}

TEST_F(GoogleLogin, TellsAnInvalidResponse) {
  http.answers = {{""}, {"<html>\t500</html>"}};
  EXPECT_EQ(SignIn(), "Google: Invalid response >> ");
  EXPECT_EQ(SignIn(), "Google: Invalid response >> <html> 500</html>");
  EXPECT_EQ(settings.GoogleAuthToken, "");
  EXPECT_THAT(prompts.signIns, IsEmpty());
  // Nothing is quoted that signs in.
  EXPECT_EQ(QuoteSignInResponse("SID=one\nLSID=two\r\nAuth=\n", "s3cret"),
            "SID=****\nLSID=****\r\nAuth=****\n");
  EXPECT_EQ(QuoteSignInResponse("Passwd=s3cret&SID=last", "s3cret"), "Passwd=****&SID=****");
}

TEST_F(GoogleLogin, AsksForMissingCredentials) {
  settings.GooglePassword.clear();
  EXPECT_EQ(SignIn(true), "Google: Bad username or password");
  EXPECT_THAT(prompts.signIns, IsEmpty());
  EXPECT_EQ(SignIn(false), "Google: Bad username or password");
  EXPECT_THAT(prompts.signIns,
              ElementsAre(ScriptedPrompts::SignInAsked{"Google Login", "me@example.org", ""}));
  EXPECT_THAT(http.requests, IsEmpty());
  // A refused password that is not corrected ends it as well.
  settings.GooglePassword = "s3cret";
  for (const bool quiet : {true, false}) {
    http.answers = {{"Error=BadAuthentication\n"}};
    EXPECT_EQ(SignIn(quiet), "Google: Bad username or password");
  }
  EXPECT_EQ(prompts.signIns.size(), 2U);
  EXPECT_EQ(settings.GooglePassword, "s3cret");
}

TEST_F(GoogleLogin, AsksAgainUntilTheCredentialsAreTaken) {
  settings.GoogleUsername.clear();
  endpoints.ClientLoginURL = "http://127.0.0.1:8080/login";
  prompts.credentials = {{{"a", "1"}}, {{"b", "2"}}};
  http.answers = {{"Error=BadAuthentication\nAuth=not this\n"}, {"Auth=t"}};
  EXPECT_EQ(SignIn(), "");
  ASSERT_EQ(http.requests.size(), 2U);
  EXPECT_EQ(http.requests[0].url, endpoints.ClientLoginURL);
  EXPECT_THAT(http.requests[0].body, testing::StartsWith("Email=a&Passwd=1&"));
  EXPECT_THAT(http.requests[1].body, testing::StartsWith("Email=b&Passwd=2&"));
  EXPECT_EQ(settings.GoogleUsername, "b");
  EXPECT_EQ(settings.GooglePassword, "2");
  EXPECT_EQ(settings.GoogleAuthToken, "t");
}

}  // namespace
}  // namespace wattlark
