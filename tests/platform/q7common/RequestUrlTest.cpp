#include "platform/q7common/RequestUrl.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace brevan {
namespace {

/// What libcurl would ask for.
std::string textOf(const RequestUrl& url)
{
    char* text = nullptr;
    EXPECT_EQ(curl_url_get(url.handle(), CURLUPART_URL, &text, 0), CURLUE_OK);
    const std::string copy = text == nullptr ? "" : text;
    curl_free(text);
    return copy;
}

std::string urlWith(const std::string& path)
{
    RequestUrl url({"127.0.0.1", "8088"}, "");
    url.setPath(path);
    return textOf(url);
}

TEST(RequestUrl, HasTheServersAddressOrTheNameInItsPlace)
{
    EXPECT_EQ(textOf(RequestUrl({"array.lab", "8088"}, "")), "https://array.lab:8088/");
    EXPECT_EQ(textOf(RequestUrl({"::1", "8088"}, "")), "https://[::1]:8088/");
    EXPECT_EQ(textOf(RequestUrl({"::1", "8088"}, "array")), "https://array:8088/");
}

TEST(RequestUrl, TakesPathAndQueryAsTheyAre)
{
    for (const char* path : {"/lun/1", "/lun?filter=NAME:a&range=[0-100]", "/a?b?c=/../d", "/a/./b%20c?d=%25e"}) {
        EXPECT_EQ(urlWith(path), std::string("https://127.0.0.1:8088") + path);
    }
}

TEST(RequestUrl, KeepsNothingOfThePathBefore)
{
    RequestUrl url({"127.0.0.1", "8088"}, "");
    url.setPath("/lun/associate?TYPE=11");
    url.setPath("/lun/1");
    EXPECT_EQ(textOf(url), "https://127.0.0.1:8088/lun/1");
}

TEST(RequestUrl, RefusesWhatIsNoServer)
{
    EXPECT_THROW(RequestUrl({"a b", "8088"}, ""), std::runtime_error);
    EXPECT_THROW(RequestUrl({"a", "x"}, ""), std::runtime_error);
}

}  // namespace
}  // namespace brevan
