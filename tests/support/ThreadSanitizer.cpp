// What the thread sanitizer cannot see: Debian's OpenSSL is not built with it, so that the counting of references by which threads share a
// TLS session is no synchronisation to it, and copying and freeing what they share would look like a race.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions()
{
    return "called_from_lib:libcrypto.so.3\n";
}
