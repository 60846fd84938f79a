#include "ApiError.h"
#include "Objects.h"
#include "Secrets.h"

namespace brevan::sim {

namespace {

constexpr std::uint64_t kLargestScope = 255;

nlohmann::json sessionRecord(RequestContext& context, const std::string& user, std::uint64_t scope)
{
    return {{"deviceid", context.array.options.deviceId}, {"username", user}, {"userscope", std::to_string(scope)}};
}

Answer logIn(RequestContext& context)
{
    const std::string user = context.body.requireText("username");
    const std::string password = context.body.requireText("password", 1024);
    const std::uint64_t scope = context.body.requireNumber("scope", kLargestScope);
    const ServerOptions& options = context.array.options;
    context.array.logins.check(user);
    const bool rightUser = equalInConstantTime(sha256(user), sha256(options.user));
    const bool rightPassword = equalInConstantTime(sha256(password), sha256(options.password));
    if (!rightUser || !rightPassword) {
        context.array.logins.failed(user);
        throw ApiError(kLoginRefused, "The user name or the password is wrong.");
    }
    context.array.logins.succeeded(user);
    const SessionStore::Credentials credentials = context.array.sessions.open(user, scope);
    context.session = credentials.number;
    context.replyHeaders.emplace_back("Set-Cookie", credentials.cookie + "; Path=/; Secure; HttpOnly; SameSite=Strict");
    nlohmann::json record = sessionRecord(context, user, scope);
    record["iBaseToken"] = credentials.token;
    return {kDone, "0", record.dump()};
}

Answer logInInfo(RequestContext& context)
{
    const SessionStore::Session* session = context.array.sessions.find(context.wire.token, context.wire.cookie);
    return {kDone, "0", sessionRecord(context, session->user, session->scope).dump()};
}

Answer logOut(RequestContext& context)
{
    context.array.sessions.close(context.wire.token, context.wire.cookie);
    return {};
}

}  // namespace

void addSessionRoutes(Router& router)
{
    router.add({"POST", "/sessions", logIn, false});
    router.add({"GET", "/server/logininfo", logInInfo});
    router.add({"DELETE", "/sessions", logOut});
}

}  // namespace brevan::sim
