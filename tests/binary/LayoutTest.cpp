/// @file
/// What clients compiled elsewhere rely on: the order and the sizes of members, and the slots of virtual
/// operations. Members are given in the order of the documented data.
#include <gtest/gtest.h>
#include <velm/VelmUtil.h>

#include <cstring>
#include <map>
#include <typeindex>
#include <vector>

#include "velm/core/FileReader.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"

namespace velm {
namespace {

struct Member {
    std::size_t offset;
    std::size_t size;
};

std::map<std::type_index, std::vector<Member>>& Members() {
    static std::map<std::type_index, std::vector<Member>> members;
    return members;
}

// A pointer to a member is its offset; one to a virtual operation is 1 and the offset in the virtual table.
template <typename Pointer>
std::size_t Value(Pointer pointer) {
    std::size_t value = 0;
    std::memcpy(&value, &pointer, sizeof value);
    return value;
}

template <typename Class, typename Type>
void Add(Type Class::*pointer) {
    if constexpr (std::is_function_v<Type>) {
        Members()[typeid(Class)].push_back({Value(pointer), 0});
    } else {
        Members()[typeid(Class)].push_back({Value(pointer), sizeof(Type)});
    }
}

/// Private members can be named where a template is instantiated explicitly, and nowhere else.
template <auto... pointers>
struct Record {
    static const bool done;
};
template <auto... pointers>
const bool Record<pointers...>::done = (Add(pointers), ..., true);

template struct Record<&LoadClassPointerFromDll::mInitialized, &LoadClassPointerFromDll::mModule,
                       &LoadClassPointerFromDll::mClass>;
template struct Record<&FileStdio::mFile>;
template struct Record<&ThreadCaller::mId, &ThreadCaller::mState, &ThreadCaller::mConfig,
                       &ThreadCaller::mThread>;
template struct Record<&AutoResetSyncEventWrapper::mEvent>;
template struct Record<&SchedulingThread::mTaskHandle>;
template struct Record<&WatchdogChecker::IsActive>;
template struct Record<&Watchdog::mActive, &Watchdog::mWindow, &Watchdog::mTimerId, &Watchdog::mElapse,
                       &Watchdog::mExitCode, &Watchdog::mChecker>;
template struct Record<&MemoryInfo::mInitialized, &MemoryInfo::mProcess>;
template struct Record<&AudioFrame::m_bInitialized, &AudioFrame::m_pFrameBuffer,
                       &AudioFrame::m_nFrameBufferSize, &AudioFrame::m_pOwnBuffer,
                       &AudioFrame::m_nOwnBufferSize>;
template struct Record<&AudioStream::Initialize, &AudioStream::Terminate, &AudioStream::m_nMaxSampleSize,
                       &AudioStream::m_nChannelNum, &AudioStream::m_nBitsPerSample,
                       &AudioStream::m_nSampleByteSize, &AudioStream::m_pBuffer,
                       &AudioStream::m_nBufferByteSize, &AudioStream::m_nBackIndex,
                       &AudioStream::m_nFrontIndex>;
template struct Record<&AudioFrameStream::Initialize, &AudioFrameStream::Terminate,
                       &AudioFrameStream::m_nFrameSampleSize, &AudioFrameStream::m_nFrameNum,
                       &AudioFrameStream::m_pPushSemaphore, &AudioFrameStream::m_pTakeSemaphore,
                       &AudioFrameStream::m_pLockSemaphore, &AudioFrameStream::m_bInitialized>;
template struct Record<&WaveFileReadHelper::m_pReader, &WaveFileReadHelper::m_bChunkHeaderRead,
                       &WaveFileReadHelper::m_nChunkType, &WaveFileReadHelper::m_nChunkSize,
                       &WaveFileReadHelper::m_nChunkReadSize, &WaveFileReadHelper::m_stFormat,
                       &WaveFileReadHelper::m_nRiffSize, &WaveFileReadHelper::m_bInitialized,
                       &WaveFileReadHelper::m_bHeaderRead, &WaveFileReadHelper::m_bFormatRead>;
template struct Record<&D3d9AdapterCheckItem::m_eCommand, &D3d9AdapterCheckItem::m_eType,
                       &D3d9AdapterCheckItem::m_eCompare, &D3d9AdapterCheckItem::m_value>;
template struct Record<&D3d9AdapterContext::m_pD3d9, &D3d9AdapterContext::m_nAdapter,
                       &D3d9AdapterContext::m_identifier, &D3d9AdapterContext::m_caps,
                       &D3d9AdapterContext::m_displayMode>;
template struct Record<&D3d9AdapterCheckSet::m_items, &D3d9AdapterCheckSet::m_pNotifyError,
                       &D3d9AdapterCheckSet::m_pNotifyUser>;
template struct Record<&D3D9ResourceBase::OnLostImpl, &D3D9ResourceBase::OnRecoverLostImpl,
                       &D3D9ResourceBase::m_nRegisterId, &D3D9ResourceBase::m_pUser,
                       &D3D9ResourceBase::m_pLostCallback, &D3D9ResourceBase::m_pRecoverLostCallback>;
template struct Record<&D3D9Surface::OnLostImpl, &D3D9Surface::OnRecoverLostImpl, &D3D9Surface::m_pSurface,
                       &D3D9Surface::m_desc>;
template struct Record<&CrossDotRotate::m_stAxis, &CrossDotRotate::m_fCos, &CrossDotRotate::m_fSin,
                       &CrossDotRotate::m_fCosSinZ, &CrossDotRotate::m_stCenter, &CrossDotRotate::m_bValid,
                       &CrossDotRotate::m_stRelative, &CrossDotRotate::m_stParallel,
                       &CrossDotRotate::m_stPerpendicular, &CrossDotRotate::m_stCross,
                       &CrossDotRotate::m_stRotated>;
template struct Record<&JsonConfigReader::m_strJson>;
template struct Record<&UrlParser::m_strUrl, &UrlParser::m_strScheme, &UrlParser::m_strAuthority,
                       &UrlParser::m_strPath, &UrlParser::m_strQuery, &UrlParser::m_strFragment,
                       &UrlParser::m_mapParam>;
template struct Record<&Tick::m_count>;
template struct Record<&IReader::Read>;
template struct Record<&Thread::operator()>;

enum class Kind { kPlain, kVirtual };

struct Class {
    std::type_index type;
    std::size_t size;
    std::size_t expectedSize;
    std::vector<Member> members;
};

template <typename T>
Class Of(Kind kind, std::size_t expectedSize, std::vector<Member> members = {}) {
    EXPECT_EQ(std::is_polymorphic_v<T>, kind == Kind::kVirtual) << typeid(T).name();
    EXPECT_EQ(std::has_virtual_destructor_v<T>, kind == Kind::kVirtual) << typeid(T).name();
    return {typeid(T), sizeof(T), expectedSize, std::move(members)};
}

// Virtual operations come as 1 + 8 * slot and size 0. A virtual destructor takes two slots.
TEST(Layout, MembersAndVirtualOperationsAreWhereTheyAreDocumented) {
    constexpr std::size_t kString = sizeof(std::string);
    constexpr std::size_t kCaps = sizeof(D3DCAPS9);  // less on Linux
    constexpr Kind kPlain = Kind::kPlain;
    constexpr Kind kVirtual = Kind::kVirtual;
    const Class classes[] = {
        Of<WindowsUtil>(kPlain, 1),
        Of<KeyStringToByteData>(kPlain, 1),
        Of<UrlSchemeUtil>(kPlain, 1),
        Of<D3D9ResourceManager>(kPlain, 1),
        Of<SchedulingProcess>(kVirtual, 8),
        Of<EnvConfigReader>(kVirtual, 8),
        Of<IniConfigReader>(kVirtual, 8),
        Of<WatchdogChecker>(kVirtual, 8, {{17, 0}}),
        Of<LoadClassPointerFromDll>(kPlain, 24, {{0, 4}, {8, 8}, {16, 8}}),
        Of<FileStdio>(kPlain, 16, {{0, 8}}),  // and whether it is the object's own
        Of<ThreadCaller>(kPlain, 16 + sizeof(ThreadConfig),
                         {{0, 4}, {4, 4}, {8, sizeof(ThreadConfig)}, {8 + sizeof(ThreadConfig), 8}}),
        Of<AutoResetSyncEventWrapper>(kPlain, sizeof(SyncEvent), {{0, sizeof(SyncEvent)}}),
        Of<SchedulingThread>(kVirtual, 16, {{8, 8}}),
        Of<Watchdog>(kVirtual, 48, {{8, 1}, {16, 8}, {24, 8}, {32, 4}, {36, 4}, {40, 8}}),
        Of<MemoryInfo>(kPlain, 16, {{0, 4}, {8, 8}}),
        Of<AudioFrame>(kVirtual, 48, {{8, 1}, {16, 8}, {24, 4}, {32, 8}, {40, 4}}),
        Of<AudioStream>(
            kVirtual, 48,
            {{17, 0}, {25, 0}, {8, 4}, {12, 4}, {16, 4}, {20, 4}, {24, 8}, {32, 4}, {36, 4}, {40, 4}}),
        // Members follow those of the base in its last four bytes.
        Of<AudioFrameStream>(kVirtual, 88,
                             {{17, 0}, {25, 0}, {44, 4}, {48, 4}, {56, 8}, {64, 8}, {72, 8}, {80, 4}}),
        Of<WaveFileReadHelper>(
            kVirtual, 80,
            {{8, 8}, {16, 1}, {20, 4}, {24, 8}, {32, 8}, {40, 18}, {64, 8}, {72, 1}, {73, 1}, {74, 1}}),
        Of<D3d9AdapterCheckItem>(kPlain, 144, {{0, 4}, {4, 4}, {8, 4}, {16, 128}}),
        Of<D3d9AdapterContext>(
            kPlain, 1136 + kCaps,
            {{0, 8}, {8, 4}, {16, 1104}, {1120, kCaps}, {1120 + kCaps, sizeof(D3DDISPLAYMODE)}}),
        Of<D3d9AdapterCheckSet>(kVirtual, 48, {{8, 24}, {32, 8}, {40, 8}}),
        Of<D3D9ResourceBase>(kVirtual, 40, {{17, 0}, {25, 0}, {8, 8}, {16, 8}, {24, 8}, {32, 8}}),
        Of<D3D9Surface>(kVirtual, 80, {{17, 0}, {25, 0}, {40, 8}, {48, 32}}),
        Of<CrossDotRotate>(kPlain, 100,
                           {{0, 12},
                            {12, 4},
                            {16, 4},
                            {20, 4},
                            {24, 12},
                            {36, 4},
                            {40, 12},
                            {52, 12},
                            {64, 12},
                            {76, 12},
                            {88, 12}}),
        Of<JsonConfigReader>(kVirtual, 8 + kString, {{8, kString}}),
        Of<UrlParser>(kVirtual, 8 + 6 * kString + 48,
                      {{8, kString},
                       {8 + kString, kString},
                       {8 + 2 * kString, kString},
                       {8 + 3 * kString, kString},
                       {8 + 4 * kString, kString},
                       {8 + 5 * kString, kString},
                       {8 + 6 * kString, 48}}),
        Of<Tick>(kPlain, 8, {{0, 8}}),
        Of<IReader>(kVirtual, 24, {{1, 0}}),
        Of<Thread>(kVirtual, 24, {{17, 0}}),
        Of<ErrorCode>(kPlain, 4),
    };
    for (const Class& expected : classes) {
        SCOPED_TRACE(expected.type.name());
        EXPECT_EQ(expected.size, expected.expectedSize);
        const std::vector<Member>& members = Members()[expected.type];
        ASSERT_EQ(members.size(), expected.members.size());
        for (std::size_t i = 0; i < members.size(); ++i) {
            EXPECT_EQ(members[i].offset, expected.members[i].offset) << "member " << i;
            EXPECT_EQ(members[i].size, expected.members[i].size) << "member " << i;
        }
    }
}

}  // namespace
}  // namespace velm
