#include "session/DeviceManagerImpl.h"

#include "support/SdkTest.h"

#include <sstream>
#include <stdexcept>

namespace brevan::test {
namespace {

constexpr const char* kLoginData = R"({"deviceid":"2100","iBaseToken":"T0KEN"})";
const std::string kLoginRequest = R"(POST https://10.0.0.1:8088/deviceManager/rest/xxxx/sessions )"
                                  R"({"username":"admin","password":"s\"3","scope":1} (flag true))";
const std::string kSession = " [47: T0KEN] [8:  session=abc]";
const std::string kKeepAliveRequest =
    "GET https://10.0.0.1:8088/deviceManager/rest/2100/server/logininfo" + kSession + " (flag false)";
const std::string kLogoutRequest =
    "DELETE https://10.0.0.1:8088/deviceManager/rest/2100/sessions" + kSession + " (flag false)";

Answer loginAnswer(const std::string& data = kLoginData,
                   std::vector<std::string> headerLines = {"Server: a", "Set-Cookie: session=abc; path=/"})
{
    Answer result = answer(data);
    result.headerLines = std::move(headerLines);
    return result;
}

class LoginSession : public SdkTest {
protected:
    int login(const std::string& ip = "10.0.0.1", unsigned int port = 8088, const std::string& user = "admin",
              const std::string& password = "s\"3", USERTYPE scope = USERTYPE_LDAP)
    {
        return manager.loginDevice(ip, port, user, password, scope);
    }

    void openSession()
    {
        expect(kLoginRequest, loginAnswer());
        EXPECT_EQ(login(), 1);
        newLog();
    }

    std::string registered(const std::string& rest) const { return "register " + address() + " " + rest; }
    std::string removed() const { return "remove " + address(); }

private:
    std::string address() const
    {
        std::ostringstream text;
        text << static_cast<const void*>(&manager);
        return text.str();
    }
};

/// The whole log of an operation that failed with one line.
Lines failure(const std::string& first, const std::string& line, const std::string& operation, int code)
{
    return {"info: " + first, "error: " + line, "record: " + operation + " " + std::to_string(code)};
}

Lines loginFailure(const std::string& line, int code)
{
    return failure("Login device start...", line, "loginDevice", code);
}

TEST_F(LoginSession, OpensARegisteredSession)
{
    expect(kLoginRequest, loginAnswer());
    EXPECT_EQ(login(), 1);
    EXPECT_EQ(newLog(), (Lines{"info: Login device start...", "info: Login device OK", "record: loginDevice 0"}));
    EXPECT_EQ(recorder.calls(), (Lines{"check 10.0.0.1", registered("2100 10.0.0.1 8088 T0KEN  session=abc true")}));
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_TRUE(recorder.handles().empty());  // sent to a server, not under a session
}

TEST_F(LoginSession, PassesTheScopeOnAsItsNumber)
{
    expect(
        "POST https://10.0.0.1:8088/deviceManager/rest/xxxx/sessions "
        R"({"username":"a","password":"b","scope":77} (flag true))",
        loginAnswer());
    EXPECT_EQ(login("10.0.0.1", 8088, "a", "b", static_cast<USERTYPE>(77)), 1);
}

TEST_F(LoginSession, IsReplacedByTheNextOne)
{
    openSession();
    expect(kLoginRequest, loginAnswer(R"({"deviceid":"2200","iBaseToken":"NEXT"})", {"Set-Cookie:c=2;"}));
    EXPECT_EQ(login(), 1);
    EXPECT_EQ(recorder.calls().back(), registered("2200 10.0.0.1 8088 NEXT c=2 true"));
    expect("GET https://10.0.0.1:8088/deviceManager/rest/2200/server/logininfo [47: NEXT] [8: c=2] (flag false)",
           answer(""));
    EXPECT_EQ(manager.keepAlive(), 1);
}

struct PortRow {
    unsigned int port;
    bool valid;
};

class LoginPort : public LoginSession, public testing::WithParamInterface<PortRow> {};

TEST_P(LoginPort, IsFrom1To65535)
{
    const auto [port, valid] = GetParam();
    if (valid) {
        expect("POST https://10.0.0.1:" + std::to_string(port) +
                   R"(/deviceManager/rest/xxxx/sessions {"username":"admin","password":"s\"3","scope":1} (flag true))",
               loginAnswer());
    }
    EXPECT_EQ(login("10.0.0.1", port), valid ? 1 : 0);
    EXPECT_EQ(newLog() == loginFailure("Invalid port!", 1), !valid);
    EXPECT_EQ(lastFailure().text, valid ? "" : "Invalid port!");
}

INSTANTIATE_TEST_SUITE_P(Bounds, LoginPort,
                         testing::Values(PortRow{0, false}, PortRow{1, true}, PortRow{65535, true}, PortRow{65536, false},
                                         PortRow{4294967295U, false}),
                         [](const auto& tested) { return "Port" + std::to_string(tested.param.port); });

TEST_F(LoginSession, IsNotAskedForWithAnEmptyArgument)
{
    for (const auto& arguments : std::vector<std::array<const char*, 3>>{
             {"", "admin", "pw"}, {"10.0.0.1", "", "pw"}, {"10.0.0.1", "admin", ""}, {"", "", ""}}) {
        EXPECT_EQ(login(arguments[0], 8088, arguments[1], arguments[2]), 0);
        EXPECT_EQ(newLog(), loginFailure("Invalid Parameter!", 1));
    }
    EXPECT_EQ(recorder.calls(), Lines{});  // not even the address was looked at
}

TEST_F(LoginSession, PassesOnTheResultOfTheAddressCheck)
{
    for (const int result : {0, -1, 2, 77}) {
        recorder.ipCheckResult = result;
        EXPECT_EQ(login("host", 0), result);
        EXPECT_EQ(newLog(), loginFailure("Invalid ip address!", 1));
        EXPECT_EQ(manager.useConnection("host", 0, "2100", "T", "c"), result);
        EXPECT_EQ(newLog(), failure("Use existed connection start...", "Invalid ip address!", "useConnection", 1));
    }
}

/// The ways in which a login fails after it was sent.
struct LoginRow {
    const char* what;
    Answer answer;
    std::string line;
    int code;
};

class FailedLogin : public LoginSession, public testing::WithParamInterface<LoginRow> {};

TEST_P(FailedLogin, IsLoggedAndRegistersNothing)
{
    expect(kLoginRequest, GetParam().answer);
    EXPECT_EQ(login(), 0);
    EXPECT_EQ(newLog(), loginFailure(GetParam().line, GetParam().code));
    EXPECT_EQ(recorder.calls(), Lines{"check 10.0.0.1"});
    EXPECT_EQ(lastFailure().operation, "loginDevice");
    EXPECT_EQ(lastFailure().code, GetParam().code);
    EXPECT_EQ(lastFailure().text, GetParam().line);
}

TEST_P(FailedLogin, LeavesAnOpenSessionAsItIs)
{
    openSession();
    expect(kLoginRequest, GetParam().answer);
    EXPECT_EQ(login(), 0);
    expect(kKeepAliveRequest, answer(""));
    EXPECT_EQ(manager.keepAlive(), 1);
}

const std::string kUnsent = "Login device fail, please check network or device is OK";

Answer throwing()
{
    Answer result = loginAnswer();
    result.before = [] { throw std::runtime_error("50%s"); };
    return result;
}

INSTANTIATE_TEST_SUITE_P(
    Ways, FailedLogin,
    testing::Values(LoginRow{"NoConnection", sendFailure(1005), kUnsent, 1005},
                    LoginRow{"NotTrusted", sendFailure(1006), kUnsent, 1006},
                    LoginRow{"Negative", sendFailure(-1), kUnsent, -1},
                    LoginRow{"Refused", refusal(1077949061, "50%s\n%n wrong"), "Login device fail,err msg:50%s\n%n wrong",
                             1077949061},
                    LoginRow{"RefusedWithNegativeCode", refusal(-401, ""), "Login device fail,err msg:", -401},
                    LoginRow{"DeviceIdAList", loginAnswer(R"({"deviceid":["2100"],"iBaseToken":"T"})"), kUnsent, 1009},
                    LoginRow{"TokenAnObject", loginAnswer(R"({"deviceid":"2100","iBaseToken":{}})"), kUnsent, 1009},
                    LoginRow{"RecordANumber", loginAnswer("[7]"), kUnsent, 1009},
                    LoginRow{"RecordAText", loginAnswer(R"(["T"])"), kUnsent, 1009},
                    LoginRow{"NoHeaders", loginAnswer(kLoginData, {}), "Get cookie Err", 1},
                    LoginRow{"CookieWithoutSemicolon", loginAnswer(kLoginData, {"Set-Cookie: a=1", "Set-Cookie: b=2;"}),
                             "Get cookie Err", 1},
                    LoginRow{"ForeignException", throwing(), "unexpected failure: 50%s loginDevice", 1}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(LoginSession, IsAdoptedWithoutARequest)
{
    EXPECT_EQ(manager.useConnection("10.0.0.1", 8088, "2100", "T0KEN", " session=abc"), 1);
    EXPECT_EQ(newLog(), (Lines{"info: Use existed connection start...", "info: Use existed connection successfully!",
                               "record: useConnection 0"}));
    EXPECT_EQ(recorder.calls(), (Lines{"check 10.0.0.1", registered("2100 10.0.0.1 8088 T0KEN  session=abc false")}));
    expect(kKeepAliveRequest, answer(""));
    EXPECT_EQ(manager.keepAlive(), 1);
}

TEST_F(LoginSession, IsAdoptedWhateverThePort)
{
    for (const unsigned int port : {0U, 65536U, 4294967295U}) {
        EXPECT_EQ(manager.useConnection("10.0.0.1", port, "2100", "T", "c"), 1);
        EXPECT_EQ(recorder.calls().back(), registered("2100 10.0.0.1 " + std::to_string(port) + " T c false"));
    }
}

TEST_F(LoginSession, IsNotAdoptedWithAnEmptyArgument)
{
    for (std::size_t empty = 0; empty < 4; ++empty) {
        std::array<std::string, 4> arguments = {"10.0.0.1", "2100", "T", "c"};
        arguments.at(empty).clear();
        EXPECT_EQ(manager.useConnection(arguments[0], 8088, arguments[1], arguments[2], arguments[3]), 0);
        EXPECT_EQ(newLog(), failure("Use existed connection start...", "Invalid Parameter!", "useConnection", 1));
    }
    EXPECT_EQ(recorder.calls(), Lines{});
}

TEST_F(LoginSession, IsKeptAliveWithoutARecord)
{
    openSession();
    expect(kKeepAliveRequest, answer(""));
    EXPECT_EQ(manager.keepAlive(), 1);
    EXPECT_EQ(newLog(), Lines{"info: Keep alive start..."});
}

TEST_F(LoginSession, EndsWithItsRegistrationAndKeepsItsFields)
{
    openSession();
    expect(kLogoutRequest, answer(""));
    EXPECT_EQ(manager.logoutDevice(), 1);
    EXPECT_EQ(newLog(), (Lines{"info: Logout device start...", "info: Logout device OK", "record: logoutDevice 0"}));
    EXPECT_EQ(recorder.calls().back(), removed());
    expect(kKeepAliveRequest, refusal(-401, "gone"));
    EXPECT_EQ(manager.keepAlive(), 0);
}

/// How the two other requests of a session fail.
struct ExchangeRow {
    const char* what;
    Answer answer;
    std::string keepAliveLine;
    std::string logoutLine;
    int code;
};

class FailedExchange : public LoginSession, public testing::WithParamInterface<ExchangeRow> {};

TEST_P(FailedExchange, OfKeepAliveWritesALineButNoRecord)
{
    openSession();
    expect(kKeepAliveRequest, GetParam().answer);
    EXPECT_EQ(manager.keepAlive(), 0);
    EXPECT_EQ(newLog(), (Lines{"info: Keep alive start...", "error: " + GetParam().keepAliveLine}));
    EXPECT_EQ(lastFailure().operation, "keepAlive");
    EXPECT_EQ(lastFailure().code, GetParam().code);
}

TEST_P(FailedExchange, OfLogoutLeavesTheSessionRegistered)
{
    openSession();
    expect(kLogoutRequest, GetParam().answer);
    EXPECT_EQ(manager.logoutDevice(), 0);
    EXPECT_EQ(newLog(), failure("Logout device start...", GetParam().logoutLine, "logoutDevice", GetParam().code));
    EXPECT_NE(recorder.calls().back(), removed());
    EXPECT_EQ(lastFailure().code, GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, FailedExchange,
    testing::Values(ExchangeRow{"Timeout", sendFailure(1007), "Keep alive fail!", "Logout device fail", 1007},
                    ExchangeRow{"Refused", refusal(-401, "50%s\n%n"), "Keep alive fail err msg:50%s\n%n",
                                "Logout device fail err msg:50%s\n%n", -401},
                    ExchangeRow{"ForeignException", throwing(), "unexpected failure: 50%s keepAlive",
                                "unexpected failure: 50%s logoutDevice", 1}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(LoginSession, ThatWasNeverOpenedGoesToTheEmptyAddress)
{
    expect("GET https://:0/deviceManager/rest//server/logininfo [47: ] [8: ] (flag false)", sendFailure(1005));
    EXPECT_EQ(manager.keepAlive(), 0);
    expect("DELETE https://:0/deviceManager/rest//sessions [47: ] [8: ] (flag false)", sendFailure(1005));
    EXPECT_EQ(manager.logoutDevice(), 0);
}

}  // namespace
}  // namespace brevan::test
