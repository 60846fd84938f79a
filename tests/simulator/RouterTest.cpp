#include "simulator/Router.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

namespace {

Router exampleRouter()
{
    Router router;
    const auto nothing = [](RequestContext&) { return Answer(); };
    router.add({"GET", "/lun/{id}", nothing});
    router.add({"GET", "/lun/count", nothing});
    router.add({"POST", "/lungroup/", nothing});
    router.add({"GET", "/SNAPSHOT/{id}", nothing});
    return router;
}

}  // namespace

TEST(Router, FindsByMethodAndPath)
{
    const Router router = exampleRouter();
    const RouteMatch match = router.find("GET", "/lun/a%3Ab");
    ASSERT_NE(match.route, nullptr);
    EXPECT_EQ(match.id, "a:b");
    EXPECT_EQ(match.route->operation(), "GET /lun/{id}");
    EXPECT_EQ(router.find("POST", "/lun/7").route, nullptr);
}

TEST(Router, PutsLiteralPathsBeforePatterns)
{
    EXPECT_EQ(exampleRouter().find("GET", "/lun/count").route->pattern, "/lun/count");
}

TEST(Router, ComparesCaseAndSlashesToTheLetter)
{
    const Router router = exampleRouter();
    EXPECT_NE(router.find("POST", "/lungroup/").route, nullptr);
    EXPECT_NE(router.find("GET", "/SNAPSHOT/1").route, nullptr);
    for (const char* path : {"/LUN/1", "/lun", "/lun/", "/lun/1/", "/lun//1", "lun/1", "", "/snapshot/1", "/lun/%4"}) {
        EXPECT_EQ(router.find("GET", path).route, nullptr) << path;
    }
    EXPECT_EQ(router.find("POST", "/lungroup").route, nullptr);
}

TEST(Router, NamesOperationsWithoutASlashAtTheEnd)
{
    EXPECT_TRUE(exampleRouter().hasOperation("POST /lungroup"));
    EXPECT_FALSE(exampleRouter().hasOperation("POST /lungroup/"));
}
