#include "velm/D3D9ResourceManager.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "velm/D3D9ResourceBase.h"

namespace velm {
namespace {

/// A resource that writes down what it is told.
class Probe final : public D3D9ResourceBase {
public:
    explicit Probe(std::string* log) : m_log(log) {}

    using D3D9ResourceBase::Register;

    void WriteCalls() {
        SetUserCallback(
            m_log, [](D3D9ResourceBase*, void* log) { *static_cast<std::string*>(log) += "l"; },
            [](D3D9ResourceBase*, void* log, IDirect3DDevice9*, const D3DPRESENT_PARAMETERS&) {
                *static_cast<std::string*>(log) += "r";
            });
    }

protected:
    void OnLostImpl() override { *m_log += "L"; }
    void OnRecoverLostImpl(IDirect3DDevice9*, const D3DPRESENT_PARAMETERS&) override { *m_log += "R"; }

private:
    std::string* m_log;
};

class D3D9ResourceManagerTest : public testing::Test {
protected:
    ~D3D9ResourceManagerTest() override { D3D9ResourceManager::Finalize(); }

    /// What a loss and a recovery made the probes write.
    std::string Broadcast() {
        m_log.clear();
        D3D9ResourceManager::OnLost();
        D3D9ResourceManager::OnRecoverLost(nullptr, D3DPRESENT_PARAMETERS{});
        return m_log;
    }

    std::string m_log;
};

TEST_F(D3D9ResourceManagerTest, CallbacksStandAroundTheResourcesOwnWork) {
    D3D9ResourceManager::Initialize();
    Probe probe(&m_log);
    probe.Register();
    EXPECT_EQ(Broadcast(), "LR");
    probe.WriteCalls();
    probe.Register();  // a second time is no second entry
    EXPECT_EQ(Broadcast(), "lLRr");
    probe.UnsetUserCallback();
    EXPECT_EQ(Broadcast(), "LR");
}

TEST_F(D3D9ResourceManagerTest, OnlyALivingManagerReachesResources) {
    auto probe = std::make_unique<Probe>(&m_log);
    probe->Register();
    EXPECT_EQ(Broadcast(), "");
    EXPECT_EQ(D3D9ResourceManager::Finalize(), 0U);
    EXPECT_EQ(D3D9ResourceManager::Initialize(), 0U);
    EXPECT_EQ(Broadcast(), "") << "registered while there was no manager";
    probe->Register();
    EXPECT_EQ(D3D9ResourceManager::Initialize(), 0U);
    EXPECT_EQ(Broadcast(), "LR") << "the second Initialize made another manager";
    D3D9ResourceManager::Finalize();
    EXPECT_EQ(Broadcast(), "");
    D3D9ResourceManager::Initialize();
    probe->Register();
    EXPECT_EQ(Broadcast(), "") << "an earlier manager's resource came back";
    Probe other(&m_log);
    other.Register();  // both have the number 1
    probe.reset();
    EXPECT_EQ(Broadcast(), "LR") << "an earlier manager's number removed somebody else";
    D3D9ResourceManager::Finalize();  // before the resource
}

TEST_F(D3D9ResourceManagerTest, EveryCopyHasAnEntryOfItsOwn) {
    D3D9ResourceManager::Initialize();
    Probe probe(&m_log);
    const Probe ofUnregistered(probe);
    EXPECT_EQ(Broadcast(), "");
    probe.WriteCalls();
    probe.Register();
    {
        Probe constructed(probe);
        Probe assigned(&m_log);
        assigned = probe;
        EXPECT_EQ(Broadcast(), "lLlLlLRrRrRr");
        assigned = constructed;
        EXPECT_EQ(Broadcast(), "lLlLlLRrRrRr");
    }
    EXPECT_EQ(Broadcast(), "lLRr") << "the end of a copy took the source's entry";
    probe = ofUnregistered;
    EXPECT_EQ(Broadcast(), "LR") << "an assignment took the object's own entry";
}

TEST_F(D3D9ResourceManagerTest, ABroadcastShowsEveryResourceTheSameCopy) {
    D3D9ResourceManager::Initialize();
    D3DPRESENT_PARAMETERS given{};
    given.BackBufferWidth = 640;
    std::vector<const D3DPRESENT_PARAMETERS*> seen;
    const auto see = [](D3D9ResourceBase*, void* user, IDirect3DDevice9* device,
                        const D3DPRESENT_PARAMETERS& parameters) {
        EXPECT_EQ(device, reinterpret_cast<IDirect3DDevice9*>(16));
        EXPECT_EQ(parameters.BackBufferWidth, 640U);
        static_cast<decltype(seen)*>(user)->push_back(&parameters);
    };
    Probe first(&m_log);
    first.Register();
    first.SetUserCallback(&seen, nullptr, see);
    const Probe second(first);
    D3D9ResourceManager::OnRecoverLost(reinterpret_cast<IDirect3DDevice9*>(16), given);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_NE(seen[0], &given);
    EXPECT_EQ(seen[0], seen[1]);
}

TEST_F(D3D9ResourceManagerTest, ThreadsRegisterAndLeaveAtOnce) {
    D3D9ResourceManager::Initialize();
    std::vector<std::string> logs(8);
    std::deque<Probe> staying;
    std::vector<std::thread> threads;
    for (std::string& log : logs) {
        threads.emplace_back([&probe = staying.emplace_back(&log)] {
            probe.Register();
            for (int round = 0; round < 500; ++round) {
                const Probe leaving(probe);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Broadcast();
    EXPECT_EQ(logs, std::vector<std::string>(logs.size(), "LR"));
}

}  // namespace
}  // namespace velm
