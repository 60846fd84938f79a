// Preloaded into the programs under test: hands every session on to the transport and appends its token and cookie, a line each, to
// the file that BREVAN_SESSION_SPY names. Tokens are random, and a test that looks for them has to know them.
#include <UserManager.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

using Register = void (*)(CUserManager*, const void*, const std::string&, const std::string&, unsigned int,
                          const std::string&, const std::string&, bool);

void note(const std::string& token, const std::string& cookie)
{
    const char* name = std::getenv("BREVAN_SESSION_SPY");
    FILE* file = name != nullptr ? std::fopen(name, "a") : nullptr;
    if (file != nullptr) {
        std::fprintf(file, "%s\n%s\n", token.c_str(), cookie.substr(cookie.find('=') + 1).c_str());
        std::fclose(file);
    }
}

}  // namespace

__attribute__((visibility("default"))) void CUserManager::RegisterSession(const void* key, const std::string& deviceId,
                                                                          const std::string& ip, unsigned int port,
                                                                          const std::string& token,
                                                                          const std::string& cookie, bool openedHere)
{
    note(token, cookie);
    constexpr const char* kName =
        "_ZN12CUserManager15RegisterSessionEPKvRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES9_jS9_S9_b";
    const auto next = reinterpret_cast<Register>(dlsym(RTLD_NEXT, kName));
    if (next == nullptr) {
        std::abort();
    }
    next(this, key, deviceId, ip, port, token, cookie, openedHere);
}
