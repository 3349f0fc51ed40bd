#include "velm/D3D9ResourceManager.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "velm/D3D9ResourceBase.h"

namespace velm::d3_d9_resource_manager_test {

/// A resource that logs "L" for a loss and "R" for a recovery, and "l" and "r" for its callbacks.
class Probe final : public D3D9ResourceBase {
public:
    explicit Probe(std::string* log) : m_log(log) {}

    using D3D9ResourceBase::Register;

    void LogCallbacks() {
        SetUserCallback(
            m_log, [](D3D9ResourceBase*, void* log) { *static_cast<std::string*>(log) += "l"; },
            [](D3D9ResourceBase*, void* log, IDirect3DDevice9*, const D3DPRESENT_PARAMETERS&) {
                *static_cast<std::string*>(log) += "r";
            });
    }

    const D3DPRESENT_PARAMETERS* seen = nullptr;

protected:
    void OnLostImpl() override { *m_log += "L"; }
    void OnRecoverLostImpl(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& parameters) override {
        EXPECT_EQ(device, reinterpret_cast<IDirect3DDevice9*>(16));
        EXPECT_EQ(parameters.BackBufferWidth, 640U);
        seen = &parameters;
        *m_log += "R";
    }

private:
    std::string* m_log;
};

class D3D9ResourceManagerTest : public testing::Test {
protected:
    D3D9ResourceManagerTest() { m_parameters.BackBufferWidth = 640; }
    ~D3D9ResourceManagerTest() override { D3D9ResourceManager::Finalize(); }

    /// What the probes log for a loss and a recovery.
    std::string Broadcast() {
        m_log.clear();
        D3D9ResourceManager::OnLost();
        D3D9ResourceManager::OnRecoverLost(reinterpret_cast<IDirect3DDevice9*>(16), m_parameters);
        return m_log;
    }

    D3DPRESENT_PARAMETERS m_parameters{};
    std::string m_log;
};

TEST_F(D3D9ResourceManagerTest, BroadcastsWhileInitialized) {
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
    EXPECT_EQ(Broadcast(), "LR") << "an earlier manager's number removed another resource";
    D3D9ResourceManager::Finalize();  // before the resource
}

TEST_F(D3D9ResourceManagerTest, RegistersEveryCopySeparately) {
    D3D9ResourceManager::Initialize();
    Probe probe(&m_log);
    const Probe ofUnregistered(probe);
    EXPECT_EQ(Broadcast(), "");
    probe.LogCallbacks();
    probe.Register();
    probe.Register();
    EXPECT_EQ(Broadcast(), "lLRr") << "notified twice, or callbacks in the wrong order";
    {
        Probe constructed(probe);
        Probe assigned(&m_log);
        for (const Probe* const source : {&probe, &constructed}) {
            assigned = *source;
            EXPECT_EQ(Broadcast(), "lLlLlLRrRrRr");
        }
        EXPECT_EQ(constructed.seen, assigned.seen) << "resources of one broadcast got different parameters";
        EXPECT_NE(constructed.seen, &m_parameters);
    }
    EXPECT_EQ(Broadcast(), "lLRr") << "destroying a copy removed the source's entry";
    probe = ofUnregistered;
    EXPECT_EQ(Broadcast(), "LR") << "assignment removed the object's entry, or kept the callbacks";
}

TEST_F(D3D9ResourceManagerTest, SurvivesConcurrentRegistration) {
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

}  // namespace velm::d3_d9_resource_manager_test
