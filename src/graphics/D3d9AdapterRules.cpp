#include "velm/D3d9AdapterRules.h"

#include <new>

#include "graphics/AdapterRuleReader.h"
#include "graphics/AdapterRuleValue.h"
#include "graphics/D3d9AdapterChecker.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velm {
namespace {

constexpr unsigned long long kLargestRules = 1024 * 1024;

}  // namespace

struct D3d9AdapterRules::Impl {
    ErrorCode Read(const char* text, unsigned long long size) {
        if (size > kLargestRules) {
            error.message = "larger than 1 MiB";
            return VELM_ERROR_UTIL_DATA_BROKEN;
        }
        if (!ReadAdapterRules({text, static_cast<std::size_t>(size)}, rules, error)) {
            rules.clear();
            return VELM_ERROR_UTIL_DATA_BROKEN;
        }
        return 0;
    }

    std::vector<AdapterRule> rules;
    AdapterRuleError error;
};

D3d9AdapterRules::D3d9AdapterRules() = default;
D3d9AdapterRules::~D3d9AdapterRules() = default;

ErrorCode D3d9AdapterRules::Read(const char* text, unsigned long long size) {
    m_pImpl.reset(new (std::nothrow) Impl);
    if (text == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (m_pImpl == nullptr) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    try {
        return m_pImpl->Read(text, size);
    } catch (const std::bad_alloc&) {
        m_pImpl.reset();
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
}

ErrorCode D3d9AdapterRules::ReadFile(const char* utf8Path) {
    m_pImpl.reset();
    FileReader reader;
    const ErrorCode opened = reader.Open(utf8Path);
    if (opened.IsFailed()) {
        return opened;
    }
    const std::unique_ptr<char[]> text(new (std::nothrow) char[kLargestRules + 1]);
    if (text == nullptr) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    unsigned long long size = 0;
    const ErrorCode result = reader.Read(&size, text.get(), kLargestRules + 1);
    if (result.IsFailed() && result != VELM_ERROR_CORE_END_OF_DATA) {
        return result;
    }
    return Read(text.get(), size);
}

unsigned int D3d9AdapterRules::GetErrorLine() const {
    return m_pImpl ? m_pImpl->error.line : 0;
}

unsigned int D3d9AdapterRules::GetErrorColumn() const {
    return m_pImpl ? m_pImpl->error.column : 0;
}

const char* D3d9AdapterRules::GetErrorMessage() const {
    return m_pImpl ? m_pImpl->error.message.c_str() : "";
}

ErrorCode D3d9AdapterRules::AddTo(D3d9AdapterCheckSet* set) const {
    if (set == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    try {
        D3d9AdapterCheckSet grown(*set);
        for (unsigned int i = 0; i < GetCount(); ++i) {
            grown.AddItem(GetItem(i));
        }
        *set = grown;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    return 0;
}

unsigned int D3d9AdapterRules::GetCount() const {
    return m_pImpl ? static_cast<unsigned int>(m_pImpl->rules.size()) : 0;
}

Tr1SharedPtr<D3d9AdapterCheckItem> D3d9AdapterRules::GetItem(unsigned int index) const {
    return index < GetCount() ? m_pImpl->rules[index].item : Tr1SharedPtr<D3d9AdapterCheckItem>();
}

const char* D3d9AdapterRules::GetText(unsigned int index) const {
    return index < GetCount() ? m_pImpl->rules[index].text.c_str() : nullptr;
}

const char* D3d9AdapterRules::GetFactName(D3d9AdapterCheckCommand command) {
    const D3d9AdapterCommand* const entry = FindAdapterCommand(command);
    return entry != nullptr ? entry->name : nullptr;
}

ErrorCode D3d9AdapterRules::GetFactText(std::string& text, const D3d9AdapterContext* context,
                                        D3d9AdapterCheckCommand command) {
    const D3d9AdapterCommand* const entry = FindAdapterCommand(command);
    if (entry == nullptr || context == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    try {
        text = FormatAdapterFact(*entry, *context);
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    return 0;
}

}  // namespace velm
