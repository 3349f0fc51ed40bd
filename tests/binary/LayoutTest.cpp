/// @file
/// What compiled clients rely on: the sizes of objects, public data, and the slots of virtual functions.
#include <gtest/gtest.h>
#include <velm/VelmUtil.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "velm/core/FileReader.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"

namespace velm::layout_test {

enum class Kind { kPlain, kVirtual };

template <typename T>
void ExpectLayout(Kind kind, std::size_t size) {
    EXPECT_EQ(sizeof(T), size) << typeid(T).name();
    EXPECT_EQ(std::is_polymorphic_v<T>, kind == Kind::kVirtual) << typeid(T).name();
    EXPECT_EQ(std::has_virtual_destructor_v<T>, kind == Kind::kVirtual) << typeid(T).name();
}

TEST(Layout, ObjectsKeepTheirSizes) {
    ExpectLayout<ErrorCode>(Kind::kPlain, 4);
    ExpectLayout<Tick>(Kind::kPlain, 8);
    ExpectLayout<D3d9AdapterRules>(Kind::kPlain, 8);
    ExpectLayout<FileStdio>(Kind::kPlain, 16);
    ExpectLayout<MemoryInfo>(Kind::kPlain, 16);
    ExpectLayout<LoadClassPointerFromDll>(Kind::kPlain, 24);
    ExpectLayout<CrossDotRotate>(Kind::kPlain, 100);
    ExpectLayout<D3d9AdapterCheckItem>(Kind::kPlain, 144);
    ExpectLayout<AutoResetSyncEventWrapper>(Kind::kPlain, sizeof(SyncEvent));
    ExpectLayout<ThreadCaller>(Kind::kPlain, 16 + sizeof(ThreadConfig));
    ExpectLayout<SchedulingProcess>(Kind::kVirtual, 8);
    ExpectLayout<EnvConfigReader>(Kind::kVirtual, 8);
    ExpectLayout<IniConfigReader>(Kind::kVirtual, 8);
    ExpectLayout<WatchdogChecker>(Kind::kVirtual, 8);
    ExpectLayout<SchedulingThread>(Kind::kVirtual, 16);
    ExpectLayout<IReader>(Kind::kVirtual, 24);
    ExpectLayout<Thread>(Kind::kVirtual, 24);
    ExpectLayout<D3D9ResourceBase>(Kind::kVirtual, 40);
    ExpectLayout<AudioFrame>(Kind::kVirtual, 48);
    ExpectLayout<AudioStream>(Kind::kVirtual, 48);
    ExpectLayout<Watchdog>(Kind::kVirtual, 48);
    ExpectLayout<WaveFileReadHelper>(Kind::kVirtual, 80);
    ExpectLayout<D3D9Surface>(Kind::kVirtual, 80);
    ExpectLayout<D3d9AdapterCheckSet>(Kind::kVirtual, 24 + sizeof(std::vector<void*>));
    ExpectLayout<JsonConfigReader>(Kind::kVirtual, 8 + sizeof(std::string));
    ExpectLayout<UrlParser>(Kind::kVirtual,
                            8 + 6 * sizeof(std::string) + sizeof(std::map<std::string, std::string>));
    EXPECT_EQ(offsetof(D3d9AdapterContext, m_nAdapter), 8U);
    EXPECT_EQ(offsetof(D3d9AdapterContext, m_identifier), 16U);
    EXPECT_EQ(offsetof(D3d9AdapterContext, m_caps), 1120U);
    EXPECT_EQ(offsetof(D3d9AdapterContext, m_displayMode), 1120 + sizeof(D3DCAPS9));  // less on Linux
}

#if defined(__GXX_ABI_VERSION)  // the ABI of GCC and clang, Itanium's; Visual C++ has its own
/// A pointer to a virtual function is the offset of its slot plus 1.
template <typename Pointer>
std::size_t SlotOf(Pointer pointer) {
    std::size_t value = 0;
    std::memcpy(&value, &pointer, sizeof value);
    EXPECT_EQ(value % 8, 1U) << "not virtual";
    return value / 8;
}

struct Resource : D3D9ResourceBase {
    using D3D9ResourceBase::OnLostImpl;
    using D3D9ResourceBase::OnRecoverLostImpl;
};

// A virtual destructor takes two slots.
TEST(Layout, VirtualFunctionsKeepTheirSlots) {
    EXPECT_EQ(SlotOf(&WatchdogChecker::IsActive), 2U);
    EXPECT_EQ(SlotOf(&AudioStream::Initialize), 2U);
    EXPECT_EQ(SlotOf(&AudioStream::Terminate), 3U);
    EXPECT_EQ(SlotOf(&Resource::OnLostImpl), 2U);
    EXPECT_EQ(SlotOf(&Resource::OnRecoverLostImpl), 3U);
    EXPECT_EQ(SlotOf(&IReader::Read), 0U);
    EXPECT_EQ(SlotOf(&Thread::operator()), 2U);
    // Its members start in the tail padding of its base.
    ExpectLayout<AudioFrameStream>(Kind::kVirtual, 88);
}
#endif

}  // namespace velm::layout_test
