#include "velm/core/ErrorRegistry.h"

#include <atomic>
#include <memory>
#include <string>

#include "velm/core/CoreErrorCode.h"

namespace velm {
namespace {

constexpr char kCoreFacility[] = "VELM_FACILITY_CORE";

constexpr ErrorCodeInfo kCoreCodes[] = {
    {VELM_ERROR_CORE_UNKNOWN, kCoreFacility, "VELM_ERROR_CORE_UNKNOWN"},
    {VELM_ERROR_CORE_NOT_ENOUGH_MEMORY, kCoreFacility, "VELM_ERROR_CORE_NOT_ENOUGH_MEMORY"},
    {VELM_ERROR_CORE_INVALID_PARAM, kCoreFacility, "VELM_ERROR_CORE_INVALID_PARAM"},
    {VELM_ERROR_CORE_ILLEGAL_CALL, kCoreFacility, "VELM_ERROR_CORE_ILLEGAL_CALL"},
    {VELM_ERROR_CORE_NOT_INITIALIZED, kCoreFacility, "VELM_ERROR_CORE_NOT_INITIALIZED"},
    {VELM_ERROR_CORE_NOT_EXIST, kCoreFacility, "VELM_ERROR_CORE_NOT_EXIST"},
    {VELM_ERROR_CORE_ACCESS_DENIED, kCoreFacility, "VELM_ERROR_CORE_ACCESS_DENIED"},
    {VELM_ERROR_CORE_DATA_LENGTH, kCoreFacility, "VELM_ERROR_CORE_DATA_LENGTH"},
    {VELM_ERROR_CORE_END_OF_DATA, kCoreFacility, "VELM_ERROR_CORE_END_OF_DATA"},
    {VELM_ERROR_CORE_READ_FAILED, kCoreFacility, "VELM_ERROR_CORE_READ_FAILED"},
    {VELM_ERROR_CORE_LIMIT_EXCEEDED, kCoreFacility, "VELM_ERROR_CORE_LIMIT_EXCEEDED"},
    {VELM_ERROR_CORE_THREAD_EXCEPTION, kCoreFacility, "VELM_ERROR_CORE_THREAD_EXCEPTION"},
    {VELM_ERROR_CORE_NOTHING_TO_READ, kCoreFacility, "VELM_ERROR_CORE_NOTHING_TO_READ"},
};

/// The registered codes as a linked list that grows only at its end. Lock-free and constant-initialized, so
/// it works under the loader lock and before static constructors run. Entries and their strings stay in place
/// until the library is unloaded. At process exit they are not freed: other threads may still read them.
class Registry {
public:
    constexpr Registry() = default;
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    void Clear() {
        for (const Entry* entry = m_first.exchange(nullptr); entry != nullptr;) {
            entry = std::unique_ptr<const Entry>(entry)->next.load();
        }
    }

    void Add(unsigned int code, const char* facility, const char* name) {
        if (Find(code) != nullptr) {
            return;
        }
        auto entry = std::make_unique<Entry>(code, facility, name);
        std::atomic<Entry*>* link = &m_first;
        Entry* existing = nullptr;
        while (!link->compare_exchange_strong(existing, entry.get())) {
            if (existing->info.code == code) {
                return;  // another thread registered it first
            }
            link = &existing->next;
            existing = nullptr;
        }
        static_cast<void>(entry.release());  // the list owns it now
    }

    const ErrorCodeInfo* Find(unsigned int code) const {
        for (const ErrorCodeInfo& info : kCoreCodes) {
            if (info.code == code) {
                return &info;
            }
        }
        for (const Entry* entry = m_first.load(); entry != nullptr; entry = entry->next.load()) {
            if (entry->info.code == code) {
                return &entry->info;
            }
        }
        return nullptr;
    }

    std::vector<ErrorCodeInfo> All() const {
        std::vector<ErrorCodeInfo> all;
        for (const Entry* entry = m_first.load(); entry != nullptr; entry = entry->next.load()) {
            all.push_back(entry->info);
        }
        return all;
    }

private:
    struct Entry {
        Entry(unsigned int code, const char* facilityText, const char* nameText)
            : facility(facilityText), name(nameText), info{code, facility.c_str(), name.c_str()} {}

        const std::string facility;
        const std::string name;
        const ErrorCodeInfo info;
        std::atomic<Entry*> next{nullptr};
    };

    // The exchange that links an entry publishes it to the loads that walk the list.
    std::atomic<Entry*> m_first{nullptr};
};

constinit Registry g_registry;

}  // namespace

void ClearErrorRegistry() {
    g_registry.Clear();
}

void RegisterErrorCode(unsigned int code, const char* facility, const char* name) {
    try {
        g_registry.Add(code, facility != nullptr ? facility : "", name != nullptr ? name : "");
    } catch (...) {
        // Out of memory: the code gets no name, but the library that registers it still loads.
    }
}

const ErrorCodeInfo* FindErrorCode(unsigned int code) {
    return g_registry.Find(code);
}

std::vector<ErrorCodeInfo> GetRegisteredErrorCodes() {
    return g_registry.All();
}

}  // namespace velm
