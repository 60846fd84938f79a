#include <brevan/brevan.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace brevan::test {
namespace {

template <class Interface>
class HandlerInterface : public testing::Test {
};

using Interfaces = testing::Types<CLunHandler, CLunGroupHandler, CSnapshotHandler, CHostHandler, CHostGroupHandler,
                                  CMappingViewHandler, CIscsiInitiatorHandler, CFCInitiatorHandler, CFCPortHandler,
                                  CFCoEPortHandler, CETHPortHandler, CDiskAttachHandler, CDiskScannerHandler>;
TYPED_TEST_SUITE(HandlerInterface, Interfaces);

TYPED_TEST(HandlerInterface, IsAnAbstractHandlerWithAVirtualDestructor)
{
    EXPECT_TRUE((std::is_base_of_v<CHandler, TypeParam>));
    EXPECT_TRUE(std::is_abstract_v<TypeParam>);
    EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
    EXPECT_EQ(sizeof(TypeParam), sizeof(void*));  // no data: what a handler holds is the implementation's
}

TEST(HandlerBase, IsDeletedThroughItself)
{
    struct Probe final : CHandler {
        explicit Probe(bool& gone) : m_gone(gone) {}
        ~Probe() override { m_gone = true; }
        bool& m_gone;
    };
    bool gone = false;
    std::unique_ptr<CHandler>(std::make_unique<Probe>(gone)).reset();
    EXPECT_TRUE(gone);
}

}  // namespace
}  // namespace brevan::test
