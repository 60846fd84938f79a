#include "Contract.h"

// The session operations have lines of their own instead of enter and leave, and write the last one before their record.

namespace brevan::contract {
namespace {

using test::Recorder;

const char* const kLogin =
    R"(POST https://10.0.0.1:8088/deviceManager/rest/xxxx/sessions {"username":"admin","password":"pw","scope":0} (flag true))";
const char* const kReply = R"({"deviceid":"2102","iBaseToken":"TOKEN"})";

int login(Sdk& sdk, const std::string& ip, unsigned int port, const std::string& user, const std::string& password)
{
    return sdk.manager.loginDevice(ip, port, user, password, USERTYPE_LOCAL);
}

const Call kCallLogin = [](Sdk& sdk) { return login(sdk, "10.0.0.1", 8088, "admin", "pw"); };

Steps loginReply(const std::string& data, const std::vector<std::string>& headerLines)
{
    Answer reply = test::answer(data);
    reply.headerLines = headerLines;
    return answered(kLogin, reply);
}

Steps began(const Steps& more)
{
    return {"info: Login device start...", "call: check 10.0.0.1", more};
}

const Steps kOk = {"info: Login device OK", "record: loginDevice 0"};
const Steps kNoCookie = {"error: Get cookie Err", "record: loginDevice 1"};

Operation loginDevice()
{
    return Operation("loginDevice")
        // The blank behind "Set-Cookie:" belongs to the cookie.
        .succeeds("with a cookie", kCallLogin,
                  began({loginReply(kReply, {"Content-Type: x", "Set-Cookie: session=abc; path=/", "Set-Cookie: b=2;"}),
                         "call: register MANAGER 2102 10.0.0.1 8088 TOKEN  session=abc true", kOk}),
                  "1")
        .row("unreachable", kCallLogin,
             began({answered(kLogin, test::sendFailure(kUnreachable)),
                    "error: Login device fail, please check network or device is OK", "record: loginDevice 1005"}),
             "0")
        .row("refused", kCallLogin,
             began({answered(kLogin, test::refusal(kRefused, "no such user")),
                    "error: Login device fail,err msg:no such user", "record: loginDevice 50331651"}),
             "0")
        .row("no cookie", kCallLogin, began({loginReply(kReply, {}), kNoCookie}), "0")
        .row("the first cookie line counts, and it has no semicolon", kCallLogin,
             began({loginReply(kReply, {"Set-Cookie: session=abc", "Set-Cookie: b=2;"}), kNoCookie}), "0")
        .row("neither device ID nor token, but a cookie", kCallLogin,
             began({loginReply("", {"Set-Cookie:c;"}), "call: register MANAGER  10.0.0.1 8088  c true", kOk}), "1");
}

/// Checked in this order; the address before the port.
Operation loginChecks()
{
    const Steps empty = {"info: Login device start...", "error: Invalid Parameter!", "record: loginDevice 1"};
    const Steps port = began({"error: Invalid port!", "record: loginDevice 1"});
    return Operation("loginDevice")
        .refusal(
            "no address", [](Sdk& sdk) { return login(sdk, "", 8088, "admin", "pw"); }, empty, "0")
        .refusal(
            "no user", [](Sdk& sdk) { return login(sdk, "10.0.0.1", 8088, "", "pw"); }, empty, "0")
        .refusal(
            "no password", [](Sdk& sdk) { return login(sdk, "10.0.0.1", 8088, "admin", ""); }, empty, "0")
        .refusal(
            "no address literal: the check's result comes out",
            [](Sdk& sdk) {
                Recorder::instance().ipCheckResult = -3;
                return login(sdk, "10.0.0.1", 0, "admin", "pw");
            },
            began({"error: Invalid ip address!", "record: loginDevice 1"}), "-3")
        .refusal(
            "port 0", [](Sdk& sdk) { return login(sdk, "10.0.0.1", 0, "admin", "pw"); }, port, "0")
        .refusal(
            "port 65536", [](Sdk& sdk) { return login(sdk, "10.0.0.1", 65536, "admin", "pw"); }, port, "0")
        .succeeds(
            "port 65535, another scope",
            [](Sdk& sdk) { return sdk.manager.loginDevice("10.0.0.1", 65535, "a", "p", static_cast<USERTYPE>(7)); },
            began({answered(R"(POST https://10.0.0.1:65535/deviceManager/rest/xxxx/sessions )"
                            R"({"username":"a","password":"p","scope":7} (flag true))",
                            [] {
                                Answer reply = test::answer(kReply);
                                reply.headerLines = {"Set-Cookie:c;"};
                                return reply;
                            }()),
                   "call: register MANAGER 2102 10.0.0.1 65535 TOKEN c true", kOk}),
            "1");
}

int adopt(Sdk& sdk, const std::string& ip, const std::string& deviceId, const std::string& token, const std::string& cookie)
{
    return sdk.manager.useConnection(ip, 8088, deviceId, token, cookie);
}

const Steps kAdopted = {"info: Use existed connection start...", "call: check 10.0.0.1",
                        "call: register MANAGER 2102 10.0.0.1 8088 TOKEN COOKIE false",
                        "info: Use existed connection successfully!", "record: useConnection 0"};

/// Sends nothing.
Operation useConnection()
{
    const Steps empty = {"info: Use existed connection start...", "error: Invalid Parameter!", "record: useConnection 1"};
    return Operation("useConnection")
        .succeeds(
            "adopted", [](Sdk& sdk) { return adopt(sdk, "10.0.0.1", "2102", "TOKEN", "COOKIE"); }, kAdopted, "1")
        .succeeds(
            "the port is not checked",
            [](Sdk& sdk) { return sdk.manager.useConnection("10.0.0.1", 0, "2102", "TOKEN", "COOKIE"); },
            {"info: Use existed connection start...", "call: check 10.0.0.1",
             "call: register MANAGER 2102 10.0.0.1 0 TOKEN COOKIE false", "info: Use existed connection successfully!",
             "record: useConnection 0"},
            "1")
        .refusal(
            "no address", [](Sdk& sdk) { return adopt(sdk, "", "2102", "TOKEN", "COOKIE"); }, empty, "0")
        .refusal(
            "no device ID", [](Sdk& sdk) { return adopt(sdk, "10.0.0.1", "", "TOKEN", "COOKIE"); }, empty, "0")
        .refusal(
            "no token", [](Sdk& sdk) { return adopt(sdk, "10.0.0.1", "2102", "", "COOKIE"); }, empty, "0")
        .refusal(
            "no cookie", [](Sdk& sdk) { return adopt(sdk, "10.0.0.1", "2102", "TOKEN", ""); }, empty, "0")
        .refusal(
            "no address literal: the check's result comes out",
            [](Sdk& sdk) {
                Recorder::instance().ipCheckResult = -3;
                return adopt(sdk, "10.0.0.1", "2102", "TOKEN", "COOKIE");
            },
            {"info: Use existed connection start...", "call: check 10.0.0.1", "error: Invalid ip address!",
             "record: useConnection 1"},
            "-3");
}

/// Under an adopted session.
template <class Body>
Call adopted(Body body)
{
    return [body](Sdk& sdk) {
        adopt(sdk, "10.0.0.1", "2102", "TOKEN", "COOKIE");
        return body(sdk);
    };
}

/// Writes no record.
Operation keepAlive()
{
    const char* const kRequest =
        "GET https://10.0.0.1:8088/deviceManager/rest/2102/server/logininfo [47: TOKEN] [8: COOKIE] (flag false)";
    const Call keep = adopted([](Sdk& sdk) { return sdk.manager.keepAlive(); });
    const Steps start = {kAdopted, "info: Keep alive start..."};
    return Operation("keepAlive")
        .succeeds("no record, no closing line", keep, {start, send(kRequest)}, "1")
        .row("unreachable", keep, {start, answered(kRequest, test::sendFailure(kUnreachable)), "error: Keep alive fail!"},
             "0")
        .row("refused", keep,
             {start, answered(kRequest, test::refusal(-401, "session gone")), "error: Keep alive fail err msg:session gone"},
             "0")
        .row(
            "before any login: empty address, port 0, empty device ID", [](Sdk& sdk) { return sdk.manager.keepAlive(); },
            {"info: Keep alive start...",
             send("GET https://:0/deviceManager/rest//server/logininfo [47: ] [8: ] (flag false)")},
            "1");
}

Operation logoutDevice()
{
    const char* const kRequest =
        "DELETE https://10.0.0.1:8088/deviceManager/rest/2102/sessions [47: TOKEN] [8: COOKIE] (flag false)";
    const char* const kAlive =
        "GET https://10.0.0.1:8088/deviceManager/rest/2102/server/logininfo [47: TOKEN] [8: COOKIE] (flag false)";
    const Call logout = adopted([](Sdk& sdk) { return sdk.manager.logoutDevice(); });
    const Steps start = {kAdopted, "info: Logout device start..."};
    const Steps ended = {"call: remove MANAGER", "info: Logout device OK", "record: logoutDevice 0"};
    return Operation("logoutDevice")
        .succeeds("forgets the session", logout, {start, send(kRequest), ended}, "1")
        .row("unreachable", logout,
             {start, answered(kRequest, test::sendFailure(kUnreachable)), "error: Logout device fail",
              "record: logoutDevice 1005"},
             "0")
        .row("refused", logout,
             {start, answered(kRequest, test::refusal(-401, "session gone")),
              "error: Logout device fail err msg:session gone", "record: logoutDevice -401"},
             "0")
        .row("address, token and cookie stay", adopted([](Sdk& sdk) {
                 sdk.manager.logoutDevice();
                 return sdk.manager.keepAlive();
             }),
             {start, send(kRequest), ended, "info: Keep alive start...", send(kAlive)}, "1")
        .row(
            "before any login", [](Sdk& sdk) { return sdk.manager.logoutDevice(); },
            {"info: Logout device start...",
             send("DELETE https://:0/deviceManager/rest//sessions [47: ] [8: ] (flag false)"), ended},
            "1");
}

}  // namespace

Table sessionContract()
{
    return {loginDevice(), loginChecks(), useConnection(), keepAlive(), logoutDevice()};
}

BREVAN_CONTRACT(Session, rowsOf(sessionContract()));

}  // namespace brevan::contract
