#include "velm/core/ErrorRegistry.h"

#include <iterator>
#include <list>
#include <mutex>
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

class Registry {
public:
    static Registry& Get() {
        static Registry registry;
        return registry;
    }

    void Add(unsigned int code, std::string facility, std::string name) {
        const std::lock_guard lock(m_mutex);
        if (FindLocked(code) != nullptr) {
            return;
        }
        Entry& entry = m_entries.emplace_back();
        entry.facility = std::move(facility);
        entry.name = std::move(name);
        entry.info = {code, entry.facility.c_str(), entry.name.c_str()};
    }

    const ErrorCodeInfo* Find(unsigned int code) {
        const std::lock_guard lock(m_mutex);
        return FindLocked(code);
    }

    std::vector<ErrorCodeInfo> All() {
        const std::lock_guard lock(m_mutex);
        std::vector<ErrorCodeInfo> all;
        all.reserve(m_entries.size());
        for (const Entry& entry : m_entries) {
            all.push_back(entry.info);
        }
        return all;
    }

private:
    struct Entry {
        std::string facility;
        std::string name;
        ErrorCodeInfo info;
    };

    const ErrorCodeInfo* FindLocked(unsigned int code) const {
        for (const ErrorCodeInfo& info : kCoreCodes) {
            if (info.code == code) {
                return &info;
            }
        }
        for (const Entry& entry : m_entries) {
            if (entry.info.code == code) {
                return &entry.info;
            }
        }
        return nullptr;
    }

    std::mutex m_mutex;
    // A list never moves its elements, so pointers into them stay good, and it takes no memory while empty.
    std::list<Entry> m_entries;
};

}  // namespace

void RegisterErrorCode(unsigned int code, const char* facility, const char* name) {
    try {
        Registry::Get().Add(code, facility != nullptr ? facility : "", name != nullptr ? name : "");
    } catch (...) {
        // Out of memory while a library loads: the code stays without a name, and the load goes on.
    }
}

const ErrorCodeInfo* FindErrorCode(unsigned int code) {
    return Registry::Get().Find(code);
}

std::vector<ErrorCodeInfo> GetRegisteredErrorCodes() {
    return Registry::Get().All();
}

}  // namespace velm
